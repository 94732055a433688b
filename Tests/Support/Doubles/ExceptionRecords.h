// Creates exception records. The platform sources hide the header that defines the type of a record.
#pragma once

#include <cstdint>
#include <memory>

struct _EXCEPTION_RECORD;

namespace ORLTest {

struct RecordFields
{
    std::uint32_t mCode;
    std::uint32_t mFlags;
    std::uint64_t mAddress;
    std::uint64_t mFirstParameter;
    std::uint64_t mSecondParameter;
};

class ExceptionRecord
{
public:
    explicit ExceptionRecord(const RecordFields& inFields);

    const _EXCEPTION_RECORD* Get() const { return mRecord.get(); }

private:
    std::shared_ptr<_EXCEPTION_RECORD> mRecord;
};

} // namespace ORLTest
