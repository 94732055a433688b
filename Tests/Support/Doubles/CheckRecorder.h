// Records and answers every report that a check makes during the recorder's lifetime.
#pragma once

#include <tvxcore/Debug.h>
#include <tvxcore/ErrorManager.h>

#include <array>
#include <mutex>
#include <string>
#include <vector>

namespace ORLTest {

struct CheckReport
{
    enum Kind { kAssert, kContract, kError, kDisplay };
    Kind mKind;
    std::string mExpression; // the expression of a check, the ZString of an error or the title of a displayed message
    std::string mMessage;    // the message of an assertion or the text of a display
    std::string mFile;
    long mLine = 0; // the line of a check or the identifier of an error
    std::string mFunction;
    unsigned long mPackage = 0;                                        // set for an error
    int mLevel = 0;                                                    // set for an error
    bool mFlag = false;                                                // set for an error
    std::array<const tvxcore::config::ReplacementValue*, 4> mValues{}; // set for an error; dangling after ThrowError
};

/// Only one recorder may exist at a time. While an instance exists, a failed contract returns to its caller, or throws
/// ContractError if mThrow is set.
class CheckRecorder : public tvxcore::config::ErrorManager
{
public:
    struct ContractError
    {
        long mErrorID;
    };

    CheckRecorder();
    ~CheckRecorder() override;

    void ThrowError(tvxcore::config::ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID,
                    bool inFlag, const tvxcore::config::ReplacementValue& inFirst,
                    const tvxcore::config::ReplacementValue& inSecond, const tvxcore::config::ReplacementValue& inThird,
                    const tvxcore::config::ReplacementValue& inFourth) const override;

    /// Returns all reports so far, in order. Thread-safe.
    std::vector<CheckReport> Reports() const;

    /// Returns the reports of one kind, in order. Thread-safe.
    std::vector<CheckReport> Reports(CheckReport::Kind inKind) const;

    void Clear();

    bool mThrow = false;         // contract errors throw ContractError
    bool mThrowAssert = false;   // assertions throw ContractError, for code that must not continue after a failure
    bool mIgnoreForGood = false; // the user's answer to an assertion
    long mDisplayChoice = 1;     // the user's choice for a displayed message

private:
    static bool OnAssert(bool& ioIgnore, const char*, const unsigned char*, const char*, long, const char*);
    static bool OnContract(const char*, const char*, long);
    static long OnDisplay(const char*, const char*);
    void Add(CheckReport inReport) const;

    mutable std::mutex mMutex;
    mutable std::vector<CheckReport> mReports;
    tvxcore::debug::Dialogs mOldDialogs;
    tvxcore::config::ErrorManager* mOldManager;
};

} // namespace ORLTest
