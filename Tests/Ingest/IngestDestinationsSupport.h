// A fixture that runs an ingest to several destinations in this process.
#pragma once

#include "IngestRunSupport.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace ORLTest {

class IngestDestinations : public IngestRun
{
protected:
    using OnStepOf = std::function<void(std::size_t, orl::IngestStep, const orl::IngestItem&)>;

    std::filesystem::path DiskOf(std::size_t inNumber) const
    {
        return mFolder.Host() / ("disk" + std::to_string(inNumber));
    }

    std::vector<orl::IngestDestination> RunTo(std::size_t inCount, const OnStepOf& inOnStep = {},
                                              const orl::IngestSettings& inSettings = {})
    {
        std::vector<std::string> disks;
        for (std::size_t i = 0; i < inCount; ++i) {
            disks.push_back(DiskOf(i).u8string());
        }
        std::vector<orl::IngestDestination> destinations = orl::MakeDestinations(Card().u8string(), disks);
        orl::IngestWatcher watcher;
        watcher.mIsStopped = [this] { return mIsStopped.load(); };
        watcher.mShow = [](std::uint64_t, std::size_t) {};
        watcher.mOnStep = inOnStep;
        mSource = orl::Ingest(destinations, kManifest, inSettings, watcher);
        return destinations;
    }

    std::uint64_t BytesOfCard() const
    {
        std::uint64_t bytes = 0;
        for (const auto& [name, contents] : mCard) {
            bytes += contents.size();
        }
        return bytes;
    }

    void ExpectOnlyTrouble(const orl::IngestDestination& inDestination, int inExitCode) const
    {
        ASSERT_EQ(1u, inDestination.mOutcome.mTroubles.size());
        EXPECT_EQ(inExitCode, inDestination.mOutcome.mTroubles[0].mExitCode)
            << inDestination.mOutcome.mTroubles[0].mText;
    }

    orl::IngestedSource mSource;
};

} // namespace ORLTest
