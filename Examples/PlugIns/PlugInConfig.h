// The export declaration for a plug-in's function.
#pragma once

#if defined(_WIN32)
#  define PLUG_IN_EXPORT extern "C" __declspec(dllexport)
#else
#  define PLUG_IN_EXPORT extern "C" __attribute__((visibility("default")))
#endif
