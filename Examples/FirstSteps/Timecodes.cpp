// Shows a frame in several formats, and frames that drop-frame labels skip: example_timecodes FRAME
#include <ORLConstants.h>
#include <ORLString.h>
#include <ORLTimecode.h>

#include <cstdlib>
#include <iostream>

using namespace tvxmediatypes;

namespace {

void Show(long long inFrame, TimeDisplay inDisplay, const char* inName)
{
    const FrameRate& rate = ORL::kFrameRate_VideoNTSC;
    const ORL::Timecode code(TickTime(inFrame, rate), rate, inDisplay);
    std::cout << ORL::MakeStdString(code.GetString()) << "  " << inName << '\n';
}

} // namespace

int main(int inCount, char** inArguments)
{
    const long long frame = inCount > 1 ? std::atoll(inArguments[1]) : 1800;
    Show(frame - 1, kTimeDisplay_2997DropTimecode, "drop-frame, the frame before");
    Show(frame, kTimeDisplay_2997DropTimecode, "drop-frame");
    Show(frame, kTimeDisplay_2997NonDropTimecode, "non-drop");
    Show(frame, kTimeDisplay_Frames, "frames");
}
