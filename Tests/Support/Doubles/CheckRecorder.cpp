#include <CheckRecorder.h>

#include <utility>

namespace ORLTest {

namespace {

CheckRecorder* sRecorder = nullptr;

} // namespace

CheckRecorder::CheckRecorder()
{
    sRecorder = this;
    tvxcore::debug::Dialogs dialogs;
    dialogs.mAssert = &OnAssert;
    dialogs.mContract = &OnContract;
    dialogs.mDisplay = &OnDisplay;
    mOldDialogs = tvxcore::debug::InstallDialogs(dialogs);
    mOldManager = tvxcore::config::InstallErrorManager(this);
}

CheckRecorder::~CheckRecorder()
{
    tvxcore::config::InstallErrorManager(mOldManager);
    tvxcore::debug::InstallDialogs(mOldDialogs);
    sRecorder = nullptr;
}

void CheckRecorder::ThrowError(tvxcore::config::ErrorLevel inLevel, const char* inZString, unsigned long inPackage,
                               long inErrorID, bool inFlag, const tvxcore::config::ReplacementValue& inFirst,
                               const tvxcore::config::ReplacementValue& inSecond,
                               const tvxcore::config::ReplacementValue& inThird,
                               const tvxcore::config::ReplacementValue& inFourth) const
{
    CheckReport report;
    report.mKind = CheckReport::kError;
    report.mExpression = inZString;
    report.mLine = inErrorID;
    report.mPackage = inPackage;
    report.mLevel = inLevel;
    report.mFlag = inFlag;
    report.mValues = {&inFirst, &inSecond, &inThird, &inFourth};
    Add(std::move(report));
    if (mThrow) {
        throw ContractError{inErrorID};
    }
}

std::vector<CheckReport> CheckRecorder::Reports() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mReports;
}

std::vector<CheckReport> CheckRecorder::Reports(CheckReport::Kind inKind) const
{
    std::vector<CheckReport> found;
    for (CheckReport& report : Reports()) {
        if (report.mKind == inKind) {
            found.push_back(std::move(report));
        }
    }
    return found;
}

void CheckRecorder::Clear()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mReports.clear();
}

void CheckRecorder::Add(CheckReport inReport) const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mReports.push_back(std::move(inReport));
}

bool CheckRecorder::OnAssert(bool& ioIgnore, const char* inExpression, const unsigned char* inMessage,
                             const char* inFile, long inLine, const char* inFunction)
{
    CheckReport report;
    report.mKind = CheckReport::kAssert;
    report.mExpression = inExpression;
    report.mMessage = reinterpret_cast<const char*>(inMessage);
    report.mFile = inFile;
    report.mLine = inLine;
    report.mFunction = inFunction;
    sRecorder->Add(std::move(report));
    ioIgnore = ioIgnore || sRecorder->mIgnoreForGood;
    if (sRecorder->mThrowAssert) {
        throw ContractError{0};
    }
    return false;
}

bool CheckRecorder::OnContract(const char* inExpression, const char* inFile, long inLine)
{
    CheckReport report;
    report.mKind = CheckReport::kContract;
    report.mExpression = inExpression;
    report.mFile = inFile;
    report.mLine = inLine;
    sRecorder->Add(std::move(report));
    return false;
}

long CheckRecorder::OnDisplay(const char* inTitle, const char* inText)
{
    CheckReport report;
    report.mKind = CheckReport::kDisplay;
    report.mExpression = inTitle;
    report.mMessage = inText;
    sRecorder->Add(std::move(report));
    return sRecorder->mDisplayChoice;
}

} // namespace ORLTest
