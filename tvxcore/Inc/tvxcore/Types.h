// Defines __int64, the 64-bit integer type of Windows compilers, if the compiler lacks it.
#pragma once

#ifndef __int64
#  define __int64 long long
#endif
