#include "ExceptionRecords.h"

#include <windows.h>

namespace ORLTest {

ExceptionRecord::ExceptionRecord(const RecordFields& inFields) : mRecord(std::make_shared<_EXCEPTION_RECORD>())
{
    mRecord->ExceptionCode = inFields.mCode;
    mRecord->ExceptionFlags = inFields.mFlags;
    mRecord->ExceptionAddress = reinterpret_cast<void*>(inFields.mAddress);
    mRecord->NumberParameters = 2;
    mRecord->ExceptionInformation[0] = inFields.mFirstParameter;
    mRecord->ExceptionInformation[1] = inFields.mSecondParameter;
}

} // namespace ORLTest
