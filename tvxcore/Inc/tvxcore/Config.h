// What each symbol of tvxcore is marked with so that hosts can link to it.
#pragma once

#if defined(_WIN32)
#  if defined(tvxcore_BUILDING)
#    define TVXCORE_API __declspec(dllexport)
#  else
#    define TVXCORE_API
#  endif
#else
#  define TVXCORE_API __attribute__((visibility("default")))
#endif
