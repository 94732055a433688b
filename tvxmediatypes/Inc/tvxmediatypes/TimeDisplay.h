// Display formats of media times.
#pragma once

#include <tvxmediatypes/Config.h>

namespace tvxmediatypes {

/// How a time is displayed. No other value is valid.
enum TimeDisplay : int {
    kTimeDisplay_24Timecode = 100,
    kTimeDisplay_25Timecode = 101,
    kTimeDisplay_2997DropTimecode = 102,    // drop-frame: skips 2 labels each minute, except every tenth
    kTimeDisplay_2997NonDropTimecode = 103, // counts 30 labels a second at the NTSC rate
    kTimeDisplay_30Timecode = 104,
    kTimeDisplay_50Timecode = 105,
    kTimeDisplay_5994DropTimecode = 106,    // drop-frame: skips 4 labels each minute, except every tenth
    kTimeDisplay_5994NonDropTimecode = 107, // counts 60 labels a second at the NTSC HD rate
    kTimeDisplay_60Timecode = 108,
    kTimeDisplay_Frames = 109,         // a plain frame count
    kTimeDisplay_23976Timecode = 110,  // counts 24 labels a second at the 23.976 rate
    kTimeDisplay_16mmFeetFrames = 111, // 40 frames a foot
    kTimeDisplay_35mmFeetFrames = 112, // 16 frames a foot
    kTimeDisplay_AudioSamplesTimecode = 200,
    kTimeDisplay_AudioMsTimecode = 201
};

} // namespace tvxmediatypes
