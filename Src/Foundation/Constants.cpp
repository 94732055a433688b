// Here the constants of the public headers become symbols of the library.
#define ORL_CONSTANTS_EMIT

#include <ORLConstants.h>
#include <ORLDiskUtils.h>
#include <ORLLanguage.h>
#include <PropertyKeys.h>

// Built before every other object of the library that does not ask for the same, whatever source it stands in.
#define ORL_BUILT_FIRST __attribute__((init_priority(101)))

namespace ORL {

ORL_BUILT_FIRST const UTF16String kResType_ColorTable = TVX_UTF16("ORLCOLORTABLE");
ORL_BUILT_FIRST const UTF16String kResType_FontTable = TVX_UTF16("ORLFONTTABLE");
ORL_BUILT_FIRST const UTF16String kResType_BrushTable = TVX_UTF16("ORLBRUSHTABLE");
ORL_BUILT_FIRST const UTF16String kResType_PenTable = TVX_UTF16("ORLPENTABLE");
ORL_BUILT_FIRST const UTF16String kResType_DirectoryTable = TVX_UTF16("ORLDIRECTORYTABLE");

ORL_BUILT_FIRST const UTF16String kPropertyKey_FrameRate = TVX_UTF16("BE.FrameRate");
ORL_BUILT_FIRST const UTF16String kPropertyKey_SampleRate = TVX_UTF16("BE.FrameRate [Audio Sample Rate]");
ORL_BUILT_FIRST const UTF16String kPropertyKey_ItemCount = TVX_UTF16("item.count");
ORL_BUILT_FIRST const UTF16String kPropertyKey_ItemName = TVX_UTF16("item.name");
ORL_BUILT_FIRST const UTF16String kPropertyKey_ItemType = TVX_UTF16("item.type");
ORL_BUILT_FIRST const UTF16String kPropertyKey_ItemHasVideo = TVX_UTF16("item.has.video");
ORL_BUILT_FIRST const UTF16String kPropertyKey_ItemHasAudio = TVX_UTF16("item.has.audio");
ORL_BUILT_FIRST const UTF16String kPropertyKey_ItemDuration = TVX_UTF16("item.duration");
ORL_BUILT_FIRST const UTF16String kPropertyKey_InPoint = TVX_UTF16("in.point");
ORL_BUILT_FIRST const UTF16String kPropertyKey_OutPoint = TVX_UTF16("out.point");
ORL_BUILT_FIRST const UTF16String kPropertyKey_AudioDisplay = TVX_UTF16("audio.display");
ORL_BUILT_FIRST const UTF16String kPropertyKey_WorkInPoint = TVX_UTF16("workin.point");
ORL_BUILT_FIRST const UTF16String kPropertyKey_WorkOutPoint = TVX_UTF16("workout.point");
ORL_BUILT_FIRST const UTF16String kPropertyKey_FrameSize = TVX_UTF16("frame.size");
ORL_BUILT_FIRST const UTF16String kPropertyKey_AspectRatio = TVX_UTF16("aspect.ratio");
ORL_BUILT_FIRST const UTF16String kPropertyKey_HasAlpha = TVX_UTF16("has.alpha");
ORL_BUILT_FIRST const UTF16String kPropertyKey_SampleSize = TVX_UTF16("sample.size");
ORL_BUILT_FIRST const UTF16String kPropertyKey_ChannelType = TVX_UTF16("channel.type");
ORL_BUILT_FIRST const UTF16String kPropertyKey_AudioTrackCount = TVX_UTF16("audio.track.count");
ORL_BUILT_FIRST const UTF16String kPropertyKey_WorkBarAdjusted = TVX_UTF16("workbar.adjusted");

} // namespace ORL
