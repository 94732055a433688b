// Emits the constants of the public headers as symbols of the library.
#define ORL_CONSTANTS_EMIT

#include <Core/ExportedText.h>
#include <Core/PropertyKeys.h>
#include <ORLConstants.h>
#include <ORLDiskUtils.h>
#include <ORLLanguage.h>

namespace ORL {

ORL_EXPORTED_TEXT(kResType_ColorTable, "_ZN3ORL19kResType_ColorTable", "ORLCOLORTABLE");
ORL_EXPORTED_TEXT(kResType_FontTable, "_ZN3ORL18kResType_FontTable", "ORLFONTTABLE");
ORL_EXPORTED_TEXT(kResType_BrushTable, "_ZN3ORL19kResType_BrushTable", "ORLBRUSHTABLE");
ORL_EXPORTED_TEXT(kResType_PenTable, "_ZN3ORL17kResType_PenTable", "ORLPENTABLE");
ORL_EXPORTED_TEXT(kResType_DirectoryTable, "_ZN3ORL23kResType_DirectoryTable", "ORLDIRECTORYTABLE");

ORL_EXPORTED_TEXT(kPropertyKey_FrameRate, "_ZN3ORL22kPropertyKey_FrameRate", "BE.FrameRate");
ORL_EXPORTED_TEXT(kPropertyKey_SampleRate, "_ZN3ORL23kPropertyKey_SampleRate", "BE.FrameRate [Audio Sample Rate]");
ORL_EXPORTED_TEXT(kPropertyKey_ItemCount, "_ZN3ORL22kPropertyKey_ItemCount", "item.count");
ORL_EXPORTED_TEXT(kPropertyKey_ItemName, "_ZN3ORL21kPropertyKey_ItemName", "item.name");
ORL_EXPORTED_TEXT(kPropertyKey_ItemType, "_ZN3ORL21kPropertyKey_ItemType", "item.type");
ORL_EXPORTED_TEXT(kPropertyKey_ItemHasVideo, "_ZN3ORL25kPropertyKey_ItemHasVideo", "item.has.video");
ORL_EXPORTED_TEXT(kPropertyKey_ItemHasAudio, "_ZN3ORL25kPropertyKey_ItemHasAudio", "item.has.audio");
ORL_EXPORTED_TEXT(kPropertyKey_ItemDuration, "_ZN3ORL25kPropertyKey_ItemDuration", "item.duration");
ORL_EXPORTED_TEXT(kPropertyKey_InPoint, "_ZN3ORL20kPropertyKey_InPoint", "in.point");
ORL_EXPORTED_TEXT(kPropertyKey_OutPoint, "_ZN3ORL21kPropertyKey_OutPoint", "out.point");
ORL_EXPORTED_TEXT(kPropertyKey_AudioDisplay, "_ZN3ORL25kPropertyKey_AudioDisplay", "audio.display");
ORL_EXPORTED_TEXT(kPropertyKey_WorkInPoint, "_ZN3ORL24kPropertyKey_WorkInPoint", "workin.point");
ORL_EXPORTED_TEXT(kPropertyKey_WorkOutPoint, "_ZN3ORL25kPropertyKey_WorkOutPoint", "workout.point");
ORL_EXPORTED_TEXT(kPropertyKey_FrameSize, "_ZN3ORL22kPropertyKey_FrameSize", "frame.size");
ORL_EXPORTED_TEXT(kPropertyKey_AspectRatio, "_ZN3ORL24kPropertyKey_AspectRatio", "aspect.ratio");
ORL_EXPORTED_TEXT(kPropertyKey_HasAlpha, "_ZN3ORL21kPropertyKey_HasAlpha", "has.alpha");
ORL_EXPORTED_TEXT(kPropertyKey_SampleSize, "_ZN3ORL23kPropertyKey_SampleSize", "sample.size");
ORL_EXPORTED_TEXT(kPropertyKey_ChannelType, "_ZN3ORL24kPropertyKey_ChannelType", "channel.type");
ORL_EXPORTED_TEXT(kPropertyKey_AudioTrackCount, "_ZN3ORL28kPropertyKey_AudioTrackCount", "audio.track.count");
ORL_PRIVATE_TEXT(kPropertyKey_WorkBarAdjusted, "_ZN3ORL28kPropertyKey_WorkBarAdjusted", "workbar.adjusted");

} // namespace ORL
