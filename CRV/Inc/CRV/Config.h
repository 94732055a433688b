// The macro that exports the symbols of CRV to hosts.
#pragma once

#if defined(_WIN32)
#  if defined(CRV_BUILDING)
#    define CRV_API __declspec(dllexport)
#  else
#    define CRV_API
#  endif
#else
#  define CRV_API __attribute__((visibility("default")))
#endif
