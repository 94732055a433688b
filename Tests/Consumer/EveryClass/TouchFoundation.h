#pragma once

#include "Touch.h"

#include <ORLFoundation.h>
#include <ORLVersion.h>

namespace Consumer {

inline void TouchFoundation()
{
    using namespace ORL;
    SetEmergencyMemoryMode(true);
    Touch(GetEmergencyMemoryMode(), ORL_VERSION, ORL::GetVersion(), Describe(kDiskFull));
    Touch(kTime_Invalid, kFrameRate_Audio48000, kLanguage_German, kSubLanguage_German_Swiss, ORL_MAX_PATH);
    Touch(kResType_ColorTable, kPropertyKey_FrameRate, kPropertyKey_AudioTrackCount);
}

} // namespace Consumer
