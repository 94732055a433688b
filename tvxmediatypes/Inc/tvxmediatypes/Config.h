// The macro that exports the symbols of tvxmediatypes to hosts.
#pragma once

#if defined(_WIN32)
#  if defined(tvxmediatypes_BUILDING)
#    define TVXMEDIATYPES_API __declspec(dllexport)
#  else
#    define TVXMEDIATYPES_API
#  endif
#else
#  define TVXMEDIATYPES_API __attribute__((visibility("default")))
#endif
