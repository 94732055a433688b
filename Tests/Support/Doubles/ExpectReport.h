// Checks the fields of one recorded report in one statement. A failure message contains the line of that statement.
//
//   ExpectReport(reports[0]).Kind(CheckReport::kAssert).Expression("size != 0").Line(25);
#pragma once

#include <CheckRecorder.h>

#include <gtest/gtest.h>
#include <string>

namespace ORLTest {

class ExpectReport
{
public:
    explicit ExpectReport(const CheckReport& inReport, const char* inFile = __builtin_FILE(),
                          int inLine = __builtin_LINE())
        : mReport(inReport), mFile(inFile), mLine(inLine)
    {
    }

    const ExpectReport& Kind(CheckReport::Kind inKind) const { return Expect("kind", inKind, mReport.mKind); }
    const ExpectReport& Expression(const std::string& inText) const
    {
        return Expect("expression", inText, mReport.mExpression);
    }
    const ExpectReport& Message(const std::string& inText) const { return Expect("message", inText, mReport.mMessage); }
    const ExpectReport& File(const std::string& inName) const { return Expect("file", inName, mReport.mFile); }
    const ExpectReport& Line(long inLine) const { return Expect("line", inLine, mReport.mLine); }
    const ExpectReport& Function(const std::string& inName) const
    {
        return Expect("function", inName, mReport.mFunction);
    }
    const ExpectReport& Package(unsigned long inPackage) const
    {
        return Expect("package", inPackage, mReport.mPackage);
    }
    const ExpectReport& Level(int inLevel) const { return Expect("level", inLevel, mReport.mLevel); }
    const ExpectReport& Flag(bool inFlag) const { return Expect("flag", inFlag, mReport.mFlag); }

private:
    template <class T>
    const ExpectReport& Expect(const char* inField, const T& inExpected, const T& inActual) const
    {
        if (!(inExpected == inActual)) {
            ADD_FAILURE_AT(mFile, mLine) << "The " << inField << " of the report is "
                                         << testing::PrintToString(inActual) << ", expected "
                                         << testing::PrintToString(inExpected);
        }
        return *this;
    }

    const CheckReport& mReport;
    const char* mFile;
    int mLine;
};

} // namespace ORLTest
