#include "IngestManifest.h"

#include "Failure.h"
#include "IngestSystem.h"
#include "Text.h"

#include <ORLPathUtils.h>

#include <algorithm>

namespace orl {

namespace {

using Access = ORL::FileAccessFlags;
using Share = ORL::FileShareModeFlags;
using Disposition = ORL::FileCreateDispositionFlags;
using Attributes = ORL::FileAttributesFlags;

constexpr std::size_t kDigits = 64;

bool IsDigest(const std::string& inText)
{
    return inText.size() == kDigits && inText.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
}

std::string Escaped(const std::string& inName)
{
    std::string escaped;
    for (const char character : inName) {
        switch (character) {
        case '\\':
            escaped += "\\\\";
            break;
        case '\n':
            escaped += "\\n";
            break;
        case '\r':
            escaped += "\\r";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

std::string Unescaped(const std::string& inText)
{
    std::string name;
    for (std::size_t i = 0; i < inText.size(); ++i) {
        if (inText[i] == '\\' && i + 1 < inText.size()) {
            ++i;
            name += inText[i] == 'n' ? '\n' : inText[i] == 'r' ? '\r' : inText[i];
        } else {
            name += inText[i];
        }
    }
    return name;
}

void Check(ORL::Result inResult, const char* inWhat, const UTF16String& inPath)
{
    if (ORL::ResultSucceeded(inResult)) {
        return;
    }
    if (inResult == ORL::kSharingViolation) {
        throw Failure("ingest: another ingest is at work on \"" + HostTextOf(inPath) + "\"");
    }
    throw Failure(std::string("ingest: cannot ") + inWhat + " \"" + HostTextOf(inPath) + "\": " + Describe(inResult),
                  inResult == ORL::kDiskFull ? kExitNoRoom : kExitFailure);
}

void WriteAll(ORL::File& ioFile, const std::string& inText, const UTF16String& inPath)
{
    for (std::size_t at = 0; at < inText.size();) {
        unsigned int written = 0;
        const auto count = static_cast<unsigned int>(std::min<std::size_t>(inText.size() - at, 1 << 20));
        Check(ioFile.Write(inText.data() + at, count, written), "write", inPath);
        at += written;
    }
    Check(FlushFile(ioFile) ? ORL::kSuccess : ORL::kGeneralFailure, "keep", inPath);
}

} // namespace

std::string FormatManifestLine(const IngestManifest::Line& inLine)
{
    const std::string name = Escaped(inLine.mName);
    return (name == inLine.mName ? "" : "\\") + inLine.mDigest + "  " + name + "\n";
}

bool ParseManifestLine(const std::string& inText, IngestManifest::Line& outLine)
{
    const std::size_t start = !inText.empty() && inText[0] == '\\' ? 1 : 0;
    const std::size_t blank = start + kDigits;
    const bool hasForm = inText.size() > blank + 2 && IsDigest(inText.substr(start, kDigits)) && inText[blank] == ' '
                         && (inText[blank + 1] == ' ' || inText[blank + 1] == '*');
    if (!hasForm) {
        return false;
    }
    const std::string name = inText.substr(blank + 2);
    outLine.mDigest = inText.substr(start, kDigits);
    outLine.mName = start == 1 ? Unescaped(name) : name;
    return true;
}

IngestManifest::IngestManifest(const UTF16String& inPath) : mPath(inPath)
{
}

IngestManifest::~IngestManifest()
{
    const bool isEmpty = mFile.IsOpen() && mFile.SizeOnDisk() == 0;
    mFile.Close();
    if (isEmpty) {
        ORL::File::Delete(mPath);
    }
}

void IngestManifest::OpenFile()
{
    Check(mFile.Create(mPath, Access::kFileAccess_Read | Access::kFileAccess_Write, Share::kFileShare_Read,
                       Disposition::kFileCreate_OpenAlways, Attributes::kFileAttribute_Normal, true),
          "open", mPath);
}

void IngestManifest::Open()
{
    OpenFile();
    const std::string text = ReadAll();
    const std::size_t whole = text.rfind('\n') + 1; // 0 where there is none
    mFile.SetFilePointer(static_cast<__int64>(whole), ORL::FilePointerMoveMethod::kFilePointer_Begin);
    if (whole != text.size()) {
        Check(mFile.SetEndOfFile() == 0 ? ORL::kSuccess : ORL::kGeneralFailure, "mend", mPath);
    }
    Parse(text.substr(0, whole));
}

std::string IngestManifest::ReadAll()
{
    std::string text;
    std::vector<char> block(1 << 16);
    for (;;) {
        unsigned int count = 0;
        Check(mFile.Read(block.data(), static_cast<unsigned int>(block.size()), count), "read", mPath);
        if (count == 0) {
            return text;
        }
        text.append(block.data(), count);
    }
}

void IngestManifest::Parse(const std::string& inText)
{
    for (std::size_t at = 0; at < inText.size();) {
        const std::size_t end = inText.find('\n', at);
        const std::string text = inText.substr(at, end - at);
        Line line;
        if (ParseManifestLine(text, line)) {
            mDigests[line.mName] = line.mDigest;
        } else {
            mForeign.push_back(text);
        }
        at = end + 1;
    }
}

// A line that may not be on disk goes again: the next run would take it for an acknowledgement.
void IngestManifest::Append(const std::string& inText)
{
    const auto end = static_cast<__int64>(mFile.SizeOnDisk());
    mFile.SetFilePointer(end, ORL::FilePointerMoveMethod::kFilePointer_Begin);
    try {
        WriteAll(mFile, inText, mPath);
    } catch (const Failure&) {
        mFile.SetFilePointer(end, ORL::FilePointerMoveMethod::kFilePointer_Begin);
        mFile.SetEndOfFile();
        throw;
    }
}

// Whole at every moment: the new list takes the old one's name when it is on disk.
void IngestManifest::Rewrite()
{
    const UTF16String temporary = mPath + ToUTF16(".part");
    {
        ORL::File file;
        Check(file.Create(temporary, Access::kFileAccess_Write, static_cast<Share::Type>(0),
                          Disposition::kFileCreate_Always, Attributes::kFileAttribute_Normal, true),
              "write", temporary);
        std::string text;
        for (const std::string& line : mForeign) {
            text += line + "\n";
        }
        for (const auto& [name, digest] : mDigests) {
            text += FormatManifestLine({name, digest});
        }
        WriteAll(file, text, temporary);
    }
    mFile.Close();
    const ORL::Result result = ORL::File::SwapTempFile(temporary, mPath);
    OpenFile();
    Check(result, "exchange", mPath);
}

void IngestManifest::Drop(const std::vector<std::string>& inNames)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    std::size_t dropped = 0;
    for (const std::string& name : inNames) {
        dropped += mDigests.erase(name);
    }
    if (dropped != 0) {
        Rewrite();
    }
}

std::string IngestManifest::Withdraw(const std::string& inName)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto line = mDigests.find(inName);
    if (line == mDigests.end()) {
        return std::string();
    }
    std::string digest = line->second;
    mDigests.erase(line);
    try {
        Rewrite();
    } catch (const Failure&) {
        mDigests[inName] = digest;
        throw;
    }
    return digest;
}

void IngestManifest::Acknowledge(const std::vector<Line>& inLines)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    std::string text;
    bool exchanges = false;
    for (const Line& line : inLines) {
        const auto earlier = mDigests.find(line.mName);
        if (earlier == mDigests.end()) {
            text += FormatManifestLine(line);
        } else {
            exchanges = exchanges || earlier->second != line.mDigest;
        }
        mDigests[line.mName] = line.mDigest;
    }
    if (exchanges) {
        Rewrite();
    } else if (!text.empty()) {
        Append(text);
    }
}

} // namespace orl
