// Floor: Core
// Constants that hosts share: limits, media times and rates, names of resource types, property keys.
//
// Numbers, times and rates are compile-time constants. The strings are initialised while the library is loaded: they
// are constructed before all its other objects and destroyed after them, so any other static object of the library may
// read them.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>
#include <tvxmediatypes/Constants.h>

// Defines a constant that compilers can evaluate and that the library also exports. Only the source file that
// defines ORL_CONSTANTS_EMIT emits the symbols.
#if defined(ORL_CONSTANTS_EMIT)
#  define ORL_CONSTANT ORL_API __attribute__((used)) inline constexpr
#else
#  define ORL_CONSTANT ORL_API inline constexpr
#endif

namespace ORL {

/// Maximum length of a plain path (one without \\?\), in units, terminator included.
ORL_CONSTANT int ORL_MAX_PATH = 260;

ORL_CONSTANT tvxmediatypes::TickTime kTime_Zero = tvxmediatypes::kTime_Zero;
ORL_CONSTANT tvxmediatypes::TickTime kTime_Max = tvxmediatypes::kTime_Max;
ORL_CONSTANT tvxmediatypes::TickTime kTime_Min = tvxmediatypes::kTime_Min;
ORL_CONSTANT tvxmediatypes::TickTime kTime_Invalid = tvxmediatypes::kTime_Invalid;

ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Zero = tvxmediatypes::kFrameRate_Zero;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Video10 = tvxmediatypes::kFrameRate_Video10;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Video12 = tvxmediatypes::kFrameRate_Video12;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Video12_5 = tvxmediatypes::kFrameRate_Video12_5;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Video15 = tvxmediatypes::kFrameRate_Video15;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_23976 = tvxmediatypes::kFrameRate_23976;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Film24 = tvxmediatypes::kFrameRate_Film24;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_VideoPAL = tvxmediatypes::kFrameRate_VideoPAL;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_VideoNTSC = tvxmediatypes::kFrameRate_VideoNTSC;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Video30 = tvxmediatypes::kFrameRate_Video30;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_VideoPAL_HD = tvxmediatypes::kFrameRate_VideoPAL_HD;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_VideoNTSC_HD = tvxmediatypes::kFrameRate_VideoNTSC_HD;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Video60 = tvxmediatypes::kFrameRate_Video60;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Video100 = tvxmediatypes::kFrameRate_Video100;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Video1000 = tvxmediatypes::kFrameRate_Video1000;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Audio8000 = tvxmediatypes::kFrameRate_Audio8000;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Audio11025 = tvxmediatypes::kFrameRate_Audio11025;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Audio22050 = tvxmediatypes::kFrameRate_Audio22050;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Audio32000 = tvxmediatypes::kFrameRate_Audio32000;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Audio44100 = tvxmediatypes::kFrameRate_Audio44100;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Audio48000 = tvxmediatypes::kFrameRate_Audio48000;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Audio88200 = tvxmediatypes::kFrameRate_Audio88200;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Audio96000 = tvxmediatypes::kFrameRate_Audio96000;
ORL_CONSTANT tvxmediatypes::FrameRate kFrameRate_Audio192000 = tvxmediatypes::kFrameRate_Audio192000;

/// Type names of the library's own resources.
ORL_API extern const UTF16String kResType_ColorTable;     // ORLCOLORTABLE
ORL_API extern const UTF16String kResType_FontTable;      // ORLFONTTABLE
ORL_API extern const UTF16String kResType_BrushTable;     // ORLBRUSHTABLE
ORL_API extern const UTF16String kResType_PenTable;       // ORLPENTABLE
ORL_API extern const UTF16String kResType_DirectoryTable; // ORLDIRECTORYTABLE

/// Keys under which hosts exchange properties of clips and sequences. The library defines the keys but does not use
/// them. The sample rate key is the frame rate key with a suffix.
ORL_API extern const UTF16String kPropertyKey_FrameRate;       // BE.FrameRate
ORL_API extern const UTF16String kPropertyKey_SampleRate;      // BE.FrameRate [Audio Sample Rate]
ORL_API extern const UTF16String kPropertyKey_ItemCount;       // item.count
ORL_API extern const UTF16String kPropertyKey_ItemName;        // item.name
ORL_API extern const UTF16String kPropertyKey_ItemType;        // item.type
ORL_API extern const UTF16String kPropertyKey_ItemHasVideo;    // item.has.video
ORL_API extern const UTF16String kPropertyKey_ItemHasAudio;    // item.has.audio
ORL_API extern const UTF16String kPropertyKey_ItemDuration;    // item.duration
ORL_API extern const UTF16String kPropertyKey_InPoint;         // in.point
ORL_API extern const UTF16String kPropertyKey_OutPoint;        // out.point
ORL_API extern const UTF16String kPropertyKey_AudioDisplay;    // audio.display
ORL_API extern const UTF16String kPropertyKey_WorkInPoint;     // workin.point
ORL_API extern const UTF16String kPropertyKey_WorkOutPoint;    // workout.point
ORL_API extern const UTF16String kPropertyKey_FrameSize;       // frame.size
ORL_API extern const UTF16String kPropertyKey_AspectRatio;     // aspect.ratio
ORL_API extern const UTF16String kPropertyKey_HasAlpha;        // has.alpha
ORL_API extern const UTF16String kPropertyKey_SampleSize;      // sample.size
ORL_API extern const UTF16String kPropertyKey_ChannelType;     // channel.type
ORL_API extern const UTF16String kPropertyKey_AudioTrackCount; // audio.track.count

} // namespace ORL
