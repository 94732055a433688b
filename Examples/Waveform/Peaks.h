// The extremes of a sound for each column of its picture, computed on a queue's threads.
#pragma once

#include "WavFile.h"

#include <ORLFoundation.h>

#include <iosfwd>
#include <string>
#include <vector>

/// The extremes of one channel within one column.
struct Peak
{
    float mLowest = 0;
    float mHighest = 0;
    float mLoudness = 0; ///< root mean square
};

/// A sound and its analysis.
struct Sound
{
    std::string mPath;
    ORL::ImmutableString mName; ///< the file's name, shared by all its requests
    WavFormat mFormat;
    std::vector<std::vector<Peak>> mPeaks; ///< peaks per channel and column
};

/// Finds the peaks of some columns. Each request writes only its own columns, so no locking is needed.
class FindPeaks : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
{
public:
    FindPeaks(Sound& ioSound, std::size_t inFirstColumn, std::size_t inEndColumn);

    void Process() override;

    /// Returns the error, or an empty string on success. Call after Process has returned.
    const std::string& GetFailure() const { return mFailure; }

private:
    void FindAll();
    void ReadColumn(std::ifstream& ioFile, ORL::MemoryBufferWrapper& ioBuffer, std::size_t inColumn);

    Sound& mSound;
    const std::size_t mFirstColumn;
    const std::size_t mEndColumn;
    const ORL::ImmutableString mName;
    std::string mFailure;
};
