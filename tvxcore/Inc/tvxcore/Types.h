// The 64-bit integer by the name that hosts of the home platform use.
#pragma once

#ifndef __int64
#  define __int64 long long
#endif
