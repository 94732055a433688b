// Decides whether a row meets its goal, and whether its rounds can be compared at all.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

/// The library's goal: a ratio to a peer. An empty name means the best peer.
struct Goal
{
    double mRatio;
    bool mAtMost;
    std::string mPeer;
};

inline Goal AtMost(double inRatio, std::string inPeer = std::string())
{
    return Goal{inRatio, true, std::move(inPeer)};
}

inline Goal AtLeast(double inRatio, std::string inPeer = std::string())
{
    return Goal{inRatio, false, std::move(inPeer)};
}

namespace Detail {

/// Rounds that differ by more than this factor did not measure the same thing: other processes held the processors.
constexpr double kUsableSpread = 100;

/// Returns whether the slowest round took at most kUsableSpread times as long as the fastest. No figure is negative.
inline bool IsUsable(const std::vector<double>& inFigures)
{
    const auto [least, most] = std::minmax_element(inFigures.begin(), inFigures.end());
    return least == inFigures.end() || *most <= kUsableSpread * *least;
}

enum class Verdict { Met, Missed, Unusable };

/// inRatio is the median ratio of both rows. If the rounds of either row are unusable, so is their ratio.
inline Verdict VerdictOf(const Goal& inGoal, double inRatio, const std::vector<double>& inOurs,
                         const std::vector<double>& inPeer)
{
    if (!IsUsable(inOurs) || !IsUsable(inPeer)) {
        return Verdict::Unusable;
    }
    const bool met = inGoal.mAtMost ? inRatio <= inGoal.mRatio : inRatio >= inGoal.mRatio;
    return met ? Verdict::Met : Verdict::Missed;
}

inline const char* NameOf(Verdict inVerdict)
{
    switch (inVerdict) {
    case Verdict::Met: return "met";
    case Verdict::Missed: return "MISSED";
    case Verdict::Unusable: return "unusable";
    }
    return "";
}

} // namespace Detail

} // namespace Bench
