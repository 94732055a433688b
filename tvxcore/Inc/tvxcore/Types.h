// The 64-bit integer under the name that Windows hosts use.
#pragma once

#ifndef __int64
#  define __int64 long long
#endif
