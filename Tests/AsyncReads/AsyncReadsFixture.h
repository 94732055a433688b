// A fixture that starts asynchronous reads with the engine that its test parameter names.
#pragma once

#include "AsyncEngines.h"
#include "AsyncReadSupport.h"

#include <Files/AsyncFileReaderImpl.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace ORLTest {

inline constexpr unsigned kBlock = 65536;

/// Reads one block and waits for it.
inline Delivered ReadOne(ORL::AsyncFileReader& ioReader, std::uint64_t inPosition, unsigned inSize, void* outBuffer)
{
    Deliveries deliveries;
    EXPECT_EQ(0, ioReader.QueueReadRequest(inPosition, inSize, outBuffer, &Deliveries::OnRead, &deliveries, nullptr,
                                           nullptr));
    ioReader.WaitForPendingReads();
    const std::vector<Delivered> all = deliveries.All();
    EXPECT_EQ(1u, all.size()) << "the callback has returned when the wait returns";
    return all.empty() ? Delivered{} : all[0];
}

inline Delivered ReadOne(ORL::AsyncFileReader& ioReader, std::uint64_t inPosition, unsigned inSize,
                         const AlignedBuffer& inBuffer)
{
    return ReadOne(ioReader, inPosition, inSize, inBuffer.Get());
}

class AsyncReads : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        mEngine = UseAsyncEngine(GetParam());
        ORL::StartupAsyncFileOperations();
    }

    void TearDown() override
    {
        ORL::TerminateAsyncFileOperations();
        EXPECT_EQ(0u, ORL::TheAsyncReadRequests().CountBusyRecords()) << "every record goes back to the pool";
    }

    UTF16String MakeClip(const std::string& inName, std::size_t inSize) const
    {
        mFolder.MakeFile(inName, MakeContents(inSize));
        return mFolder.Path(std::u16string(inName.begin(), inName.end()));
    }

    TempFolder mFolder;
    std::unique_ptr<AsyncEngine> mEngine;
};

inline std::string NameOfEngine(const testing::TestParamInfo<std::string>& inInfo)
{
    return inInfo.param;
}

} // namespace ORLTest
