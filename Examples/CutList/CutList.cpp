// Processes an edit decision list (CMX 3600 text): checks that every source is as long as its place in the programme
// and that no pictures overlap, sums the durations, or prints the list again.
//
//   example_cut_list LIST.edl [--print] [--fps 24 | 25 | 30]
//
// A ";" in an event's timecodes means drop-frame; otherwise the FCM line above the event decides. Without --fps the
// list counts NTSC frames. Timecodes are printed from their times, not from the input: --print reproduces the list
// exactly, or reports which timecode is not a label.
#include <ORLTimecode.h>

#include <tvxmediatypes/Constants.h>

#include <cctype>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using ORL::Timecode;
using namespace tvxmediatypes;

namespace {

struct Fault : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// A timecode in an event: the time, and the text it was read from, which determines its separators and its column.
struct Code
{
    std::size_t mColumn = 0;
    std::string mText;
    Timecode mCode;
};

enum { kSourceIn, kSourceOut, kRecordIn, kRecordOut, kCodes };

struct Event
{
    std::size_t mLine; // index into the list's lines
    std::string mNumber;
    std::string mReel;
    std::string mTracks;
    Code mCodes[kCodes];
    bool mHasMotion = false; // an M2 line follows: source and programme run at different speeds
};

struct CutList
{
    FrameRate mRate;
    std::vector<std::string> mLines;
    std::vector<Event> mEvents;
};

TimeDisplay FormatOf(const FrameRate& inRate, bool inIsDrop)
{
    if (inRate == kFrameRate_VideoNTSC) {
        return inIsDrop ? kTimeDisplay_2997DropTimecode : kTimeDisplay_2997NonDropTimecode;
    }
    if (inIsDrop) {
        throw Fault("drop-frame goes with NTSC alone");
    }
    return inRate == kFrameRate_Film24     ? kTimeDisplay_24Timecode
           : inRate == kFrameRate_VideoPAL ? kTimeDisplay_25Timecode
                                           : kTimeDisplay_30Timecode;
}

bool IsCode(const std::string& inText)
{
    for (std::size_t i = 0; i < inText.size(); ++i) {
        const bool isSeparator = inText[i] == ':' || inText[i] == ';' || inText[i] == '.';
        const bool isDigit = std::isdigit(static_cast<unsigned char>(inText[i])) != 0;
        if (i % 3 == 2 ? !isSeparator : !isDigit) {
            return false;
        }
    }
    return inText.size() == 11;
}

/// Returns the label of a timecode's time, with the separators of the input.
std::string Print(const Code& inCode)
{
    const UTF16String label = inCode.mCode.GetString();
    std::string text(label.begin(), label.end());
    for (std::size_t i = 2; i < text.size(); i += 3) {
        text[i] = inCode.mText[i];
    }
    return text;
}

void ReadCode(Code& ioCode, const FrameRate& inRate, bool inIsDrop)
{
    const UTF16String text(ioCode.mText.begin(), ioCode.mText.end());
    const TimeDisplay format = FormatOf(inRate, inIsDrop);
    ioCode.mCode = Timecode(Timecode::StringToTime(text, inRate, format, false), inRate, format);
    if (Print(ioCode) != ioCode.mText) {
        throw Fault(ioCode.mText + " is no label: it means " + Print(ioCode));
    }
}

struct Word
{
    std::size_t mColumn;
    std::string mText;
};

std::vector<Word> SplitLine(const std::string& inLine)
{
    std::vector<Word> words;
    for (std::size_t at = inLine.find_first_not_of(' '); at != std::string::npos;) {
        const std::size_t end = std::min(inLine.find(' ', at), inLine.size());
        words.push_back(Word{at, inLine.substr(at, end - at)});
        at = inLine.find_first_not_of(' ', end);
    }
    return words;
}

bool IsEvent(const std::vector<Word>& inWords)
{
    return !inWords.empty() && std::isdigit(static_cast<unsigned char>(inWords[0].mText[0])) != 0;
}

/// Parses number, reel, tracks, transition, the transition's length if any, and four timecodes.
Event ReadEvent(const std::vector<Word>& inWords, const CutList& inList, bool inIsDropList)
{
    if (inWords.size() < 8 || inWords.size() > 9) {
        throw Fault("an event has eight or nine columns, not " + std::to_string(inWords.size()));
    }
    Event event{inList.mLines.size() - 1, inWords[0].mText, inWords[1].mText, inWords[2].mText, {}, false};
    bool hasDropMark = false;
    for (int i = 0; i < kCodes; ++i) {
        const Word& word = inWords[inWords.size() - kCodes + static_cast<std::size_t>(i)];
        if (!IsCode(word.mText)) {
            throw Fault("\"" + word.mText + "\" is no timecode");
        }
        event.mCodes[i].mColumn = word.mColumn;
        event.mCodes[i].mText = word.mText;
        hasDropMark = hasDropMark || word.mText.find(';') != std::string::npos;
    }
    for (Code& code : event.mCodes) {
        const bool isDrop = hasDropMark ? code.mText.find(';') != std::string::npos : inIsDropList;
        ReadCode(code, inList.mRate, isDrop);
    }
    return event;
}

TickTime Length(const Event& inEvent, int inFrom, int inTo)
{
    TickTime time = inEvent.mCodes[inTo].mCode.GetTime();
    return time -= inEvent.mCodes[inFrom].mCode.GetTime();
}

/// Returns a duration in the event's own format.
std::string PrintLength(const Event& inEvent, const TickTime& inTime)
{
    const Timecode& like = inEvent.mCodes[kRecordIn].mCode;
    const UTF16String label = Timecode(inTime, like.GetFrameRate(), like.GetFormat()).GetString();
    return std::string(label.begin(), label.end());
}

void CheckEvent(const Event& inEvent)
{
    const TickTime source = Length(inEvent, kSourceIn, kSourceOut);
    const TickTime record = Length(inEvent, kRecordIn, kRecordOut);
    if (source < kTime_Zero || record < kTime_Zero) {
        throw Fault("event " + inEvent.mNumber + " ends before it starts");
    }
    if (source != record && !inEvent.mHasMotion) {
        throw Fault("event " + inEvent.mNumber + ": the source lasts " + PrintLength(inEvent, source)
                    + ", its place in the programme " + PrintLength(inEvent, record));
    }
}

bool HasPicture(const Event& inEvent)
{
    return inEvent.mTracks.find('V') != std::string::npos || inEvent.mTracks == "B";
}

/// Runs checks, prints each fault with its line, and records whether any fault was found.
class Inspector
{
public:
    explicit Inspector(const std::string& inFile) : mFile(inFile) {}

    template <class Function>
    void Try(std::size_t inLine, Function inFunction)
    {
        try {
            inFunction();
        } catch (const Fault& fault) {
            std::cerr << "cut_list: " << mFile << ':' << inLine + 1 << ": " << fault.what() << '\n';
            mIsSound = false;
        }
    }

    bool IsSound() const { return mIsSound; }

private:
    const std::string mFile;
    bool mIsSound = true;
};

CutList ReadList(std::istream& ioFile, const FrameRate& inRate, Inspector& ioInspector)
{
    CutList list{inRate, {}, {}};
    bool isDrop = false;
    for (std::string line; std::getline(ioFile, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        list.mLines.push_back(line);
        const std::vector<Word> words = SplitLine(line);
        if (line.compare(0, 4, "FCM:") == 0) {
            isDrop = line.find("NON") == std::string::npos;
        } else if (!words.empty() && words[0].mText == "M2" && !list.mEvents.empty()) {
            list.mEvents.back().mHasMotion = true;
        } else if (IsEvent(words)) {
            ioInspector.Try(list.mLines.size() - 1, [&] { list.mEvents.push_back(ReadEvent(words, list, isDrop)); });
        }
    }
    return list;
}

void CheckList(const CutList& inList, Inspector& ioInspector)
{
    const Event* before = nullptr;
    for (const Event& event : inList.mEvents) {
        ioInspector.Try(event.mLine, [&] { CheckEvent(event); });
        if (!HasPicture(event)) {
            continue;
        }
        ioInspector.Try(event.mLine, [&] {
            if (before != nullptr
                && event.mCodes[kRecordIn].mCode.GetTime() < before->mCodes[kRecordOut].mCode.GetTime()) {
                throw Fault("event " + event.mNumber + " covers the end of event " + before->mNumber);
            }
        });
        before = &event;
    }
}

void PrintList(const CutList& inList)
{
    std::vector<std::string> lines = inList.mLines;
    for (const Event& event : inList.mEvents) {
        for (const Code& code : event.mCodes) {
            lines[event.mLine].replace(code.mColumn, code.mText.size(), Print(code));
        }
    }
    for (const std::string& line : lines) {
        std::cout << line << '\n';
    }
}

void PrintSum(const char* inName, const CutList& inList, bool (*inCounts)(const Event&))
{
    TickTime sum;
    int count = 0;
    for (const Event& event : inList.mEvents) {
        if (inCounts(event)) {
            sum += Length(event, kRecordIn, kRecordOut);
            ++count;
        }
    }
    if (count != 0) {
        std::cout << inName << count << " events, " << PrintLength(inList.mEvents.front(), sum) << ", "
                  << sum.ToFrame64(inList.mRate) << " frames\n";
    }
}

void PrintReport(const CutList& inList)
{
    for (const Event& event : inList.mEvents) {
        const TickTime length = Length(event, kRecordIn, kRecordOut);
        std::cout << event.mNumber << "  " << std::left << std::setw(8) << event.mReel << ' ' << std::setw(5)
                  << event.mTracks << ' ' << Print(event.mCodes[kRecordIn]) << "  " << PrintLength(event, length)
                  << std::right << std::setw(8) << length.ToFrame64(inList.mRate) << " frames\n";
    }
    PrintSum("picture: ", inList, [](const Event& inEvent) { return HasPicture(inEvent); });
    PrintSum("sound alone: ", inList, [](const Event& inEvent) { return !HasPicture(inEvent); });
}

FrameRate RateOf(const std::string& inText)
{
    return inText == "24"   ? kFrameRate_Film24
           : inText == "25" ? kFrameRate_VideoPAL
           : inText == "30" ? kFrameRate_Video30
                            : kFrameRate_Zero;
}

int Run(const std::string& inFile, const FrameRate& inRate, bool inPrints)
{
    std::ifstream file(inFile, std::ios::binary);
    if (!file) {
        std::cerr << "cut_list: cannot open \"" << inFile << "\"\n";
        return 1;
    }
    Inspector inspector(inFile);
    const CutList list = ReadList(file, inRate, inspector);
    if (!inspector.IsSound()) {
        return 1;
    }
    CheckList(list, inspector);
    if (inPrints) {
        PrintList(list);
    } else {
        PrintReport(list);
    }
    return inspector.IsSound() ? 0 : 1;
}

} // namespace

int main(int inCount, char** inArguments)
{
    const std::vector<std::string> words(inArguments + 1, inArguments + inCount);
    std::string file;
    FrameRate rate = kFrameRate_VideoNTSC;
    bool prints = false;
    bool isSense = true;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--print") {
            prints = true;
        } else if (words[i] == "--fps") {
            rate = ++i < words.size() ? RateOf(words[i]) : kFrameRate_Zero;
        } else {
            isSense = isSense && file.empty() && words[i].compare(0, 2, "--") != 0;
            file = words[i];
        }
    }
    if (!isSense || file.empty() || rate == kFrameRate_Zero) {
        std::cerr << "usage: example_cut_list LIST.edl [--print] [--fps 24 | 25 | 30]\n";
        return 2;
    }
    return Run(file, rate, prints);
}
