#include "IngestTimes.h"

#include "Failure.h"

#include <ORLFile.h>

namespace orl {

namespace {

// The file is closed before its time is queried: an open file may still report a finer time.
bool SetTimeOfNewFile(const UTF16String& inPath, unsigned __int64 inTime)
{
    ORL::File file;
    return ORL::ResultSucceeded(file.Create(
               inPath, ORL::FileAccessFlags::kFileAccess_Write, static_cast<ORL::FileShareModeFlags::Type>(0),
               ORL::FileCreateDispositionFlags::kFileCreate_New, ORL::FileAttributesFlags::kFileAttribute_Normal, true))
           && SetLastWriteTime(file, inTime);
}

} // namespace

unsigned __int64 StoredTimeFor(unsigned __int64 inTime, const HeldFolder& inHeld, const std::string& inFolder,
                               IngestRecord& ioRecord)
{
    std::string leaf;
    try {
        leaf = ioRecord.NewTemporary(inFolder);
    } catch (const Failure&) {
        return 0;
    }
    EntryStatus status;
    const bool isKnown = SetTimeOfNewFile(inHeld.PathOf(leaf), inTime)
                         && ORL::ResultSucceeded(inHeld.GetStatus(leaf, Links::kNoFollow, status));
    const ORL::Result result = inHeld.Remove(leaf);
    if (ORL::ResultSucceeded(result) || result == ORL::kFileNotFound) {
        ioRecord.ForgetTemporary(inFolder, leaf);
    }
    return isKnown ? status.mTime : 0;
}

} // namespace orl
