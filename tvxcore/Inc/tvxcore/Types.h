// The 64-bit integer under the name used by hosts of the home platform.
#pragma once

#ifndef __int64
#  define __int64 long long
#endif
