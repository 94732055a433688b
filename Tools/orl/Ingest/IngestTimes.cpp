#include "IngestTimes.h"

#include "IngestSystem.h"

#include <ORLFile.h>

namespace orl {

namespace {

using ORL::File;

bool GetTime(const UTF16String& inPath, unsigned __int64& outTime)
{
    return ORL::ResultSucceeded(File::GetLastModificationTime(inPath, outTime));
}

// Closed before it is asked, since an open file may still have a finer time.
bool SetTimeOfNewFile(const UTF16String& inPath, unsigned __int64 inTime)
{
    File file;
    return ORL::ResultSucceeded(file.Create(inPath, ORL::FileAccessFlags::kFileAccess_Write,
                                            static_cast<ORL::FileShareModeFlags::Type>(0),
                                            ORL::FileCreateDispositionFlags::kFileCreate_Always,
                                            ORL::FileAttributesFlags::kFileAttribute_Normal, true))
           && SetLastWriteTime(file, inTime);
}

} // namespace

bool HasTimeOf(const UTF16String& inSource, const UTF16String& inTarget, const UTF16String& inTemporary)
{
    unsigned __int64 source = 0;
    unsigned __int64 target = 0;
    if (!GetTime(inSource, source) || !GetTime(inTarget, target)) {
        return false;
    }
    if (source == target) {
        return true;
    }
    unsigned __int64 kept = 0;
    const bool isKnown = SetTimeOfNewFile(inTemporary, source) && GetTime(inTemporary, kept);
    File::Delete(inTemporary);
    return isKnown && kept == target;
}

} // namespace orl
