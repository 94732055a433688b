// The extremes of a sound, column by column of its picture, found by the threads of a queue.
#pragma once

#include "WavFile.h"

#include <ORLFoundation.h>

#include <iosfwd>
#include <string>
#include <vector>

/// What one channel does within one column.
struct Peak
{
    float mLowest = 0;
    float mHighest = 0;
    float mLoudness = 0; ///< the root of the mean square
};

/// One sound on its way into the picture.
struct Sound
{
    std::string mPath;
    ORL::ImmutableString mName; ///< the file's, shared by all who speak of it
    WavFormat mFormat;
    std::vector<std::vector<Peak>> mPeaks; ///< for each channel and column
};

/// Finds the peaks of some columns. Each request writes columns of its own, so nobody waits for anybody.
class FindPeaks : public ORL::UnknownImpl<ORL::IThreadedQueueRequest, ORL::IThreadedQueueRequest>
{
public:
    FindPeaks(Sound& ioSound, std::size_t inFirstColumn, std::size_t inEndColumn);

    void Process() override;

    /// Empty when all went well. To be asked when Process has returned.
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
