// Floor: Core
// What each symbol of ORLFoundation is marked with so that hosts can link to it.
#pragma once

#if defined(_WIN32)
#  if defined(ORLFoundation_BUILDING)
#    define ORL_API __declspec(dllexport)
#  else
#    define ORL_API
#  endif
#else
#  define ORL_API __attribute__((visibility("default")))
#endif
