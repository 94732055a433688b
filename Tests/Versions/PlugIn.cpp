// A plug-in that brings its own version of the library.
#include "UseLibrary.h"

#if defined(_WIN32)
#  define PLUG_IN_API extern "C" __declspec(dllexport)
#else
#  define PLUG_IN_API extern "C" __attribute__((visibility("default")))
#endif

PLUG_IN_API void StartPlugIn()
{
    Versions::Start("plug-in", 1036);
}

PLUG_IN_API void UsePlugIn(const char* inFile, Versions::Report* outReport)
{
    Versions::Use(inFile, "plug-in", *outReport);
}

PLUG_IN_API void StopPlugIn()
{
    Versions::Stop();
}
