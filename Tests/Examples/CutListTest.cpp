// Runs the edit decision list example as a user does.
#include <ProcessRunner.h>
#include <TempFolder.h>

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

const std::string kHarbourReel = ORL_EXAMPLES "/CutList/harbour_reel.edl";

ProcessResult CutList(const std::vector<std::string>& inArguments)
{
    return RunBesideThisProgram("example_cut_list", inArguments);
}

// Returns the whole file with "\n" line endings.
std::string Contents(const std::string& inFile)
{
    std::ifstream file(inFile, std::ios::binary);
    std::string text;
    for (std::istreambuf_iterator<char> at(file), end; at != end; ++at) {
        text += *at == '\r' ? "" : std::string(1, *at);
    }
    return text;
}

class CutListExample : public testing::Test
{
protected:
    std::string File(const std::string& inContents) const
    {
        mFolder.MakeFile("list.edl", inContents);
        return (mFolder.Host() / "list.edl").u8string();
    }

    // Returns the error message without the file name: "12: ...".
    static std::string FaultOf(const ProcessResult& inResult)
    {
        const std::string mark = "list.edl:";
        const std::size_t at = inResult.mErrors.find(mark);
        return at == std::string::npos ? inResult.mErrors : inResult.mErrors.substr(at + mark.size());
    }

    TempFolder mFolder;
};

} // namespace

TEST_F(CutListExample, Print_GivesTheListBackLetterByLetter)
{
    const ProcessResult result = CutList({kHarbourReel, "--print"});
    EXPECT_EQ(0, result.mExitCode);
    EXPECT_EQ("", result.mErrors);
    EXPECT_GT(result.mOutput.size(), 1000u);
    EXPECT_EQ(Contents(kHarbourReel), result.mOutput);
}

TEST_F(CutListExample, Report_ShowsEachEventAndTheSums)
{
    const ProcessResult result = CutList({kHarbourReel});
    EXPECT_EQ(0, result.mExitCode);
    EXPECT_EQ("", result.mErrors);
    EXPECT_EQ("001  A012C004 V     01;00;00;00  00;00;04;00     120 frames\n"
              "002  A012C009 B     01;00;04;00  00;01;01;06    1834 frames\n"
              "003  A012C009 V     01;01;05;06  00;00;00;00       0 frames\n"
              "003  B007C001 V     01;01;05;06  00;09;00;22   16204 frames\n"
              "004  AX       AA    01;01;05;06  00;05;00;10    9000 frames\n"
              "005  B007C013 V     01;10;05;26  00;00;03;00      90 frames\n"
              "006  A013C002 V     01;10;08;26  00;00;00;00       0 frames\n"
              "006  A013C007 V     01;10;08;26  00;10;00;03   17985 frames\n"
              "007  BL       V     01;20;08;29  00;00;02;00      60 frames\n"
              "picture: 8 events, 00;20;10;29, 36293 frames\n"
              "sound alone: 1 events, 00;05;00;10, 9000 frames\n",
              result.mOutput);
}

TEST_F(CutListExample, ColonsUnderADropFrameMark_CountAsDropFrame)
{
    const std::string list = "TITLE: COLONS\nFCM: DROP FRAME\n"
                             "001  TAPE1    V     C        00:00:59:28 00:01:00:02 01:00:59:28 01:01:00:02\n";
    const ProcessResult report = CutList({File(list)});
    EXPECT_EQ(0, report.mExitCode) << report.mErrors;
    EXPECT_EQ("001  TAPE1    V     01:00:59:28  00;00;00;02       2 frames\n"
              "picture: 1 events, 00;00;00;02, 2 frames\n",
              report.mOutput);
    EXPECT_EQ(list, CutList({File(list), "--print"}).mOutput);

    const std::string nonDrop = "FCM: NON-DROP FRAME\n" + list.substr(list.find("001"));
    EXPECT_EQ("001  TAPE1    V     01:00:59:28  00:00:00:04       4 frames\n"
              "picture: 1 events, 00:00:00:04, 4 frames\n",
              CutList({File(nonDrop)}).mOutput);
}

TEST_F(CutListExample, OneDropMarkInTheCode_IsKeptWhereItStands)
{
    const std::string list = "001  TAPE1    V     C        10:00:00;00 10:00:05;00 01:00:00;00 01:00:05;00\n";
    const ProcessResult result = CutList({File(list), "--print"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ(list, result.mOutput);
}

TEST_F(CutListExample, OtherRates_CountTheirOwnFrames)
{
    const std::string list = "FCM: NON-DROP FRAME\n"
                             "001  TAPE1    B     C        10:00:00:24 10:00:02:00 01:00:00:00 01:00:01:01\n";
    const ProcessResult result = CutList({File(list), "--fps", "25"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("001  TAPE1    B     01:00:00:00  00:00:01:01      26 frames\n"
              "picture: 1 events, 00:00:01:01, 26 frames\n",
              result.mOutput);
    EXPECT_EQ("2: 10:00:00:24 is no label: it means 10:00:01:00\n", FaultOf(CutList({File(list), "--fps", "24"})));
}

TEST_F(CutListExample, LineThatIsNoEvent_IsNamedAndEndsWith1)
{
    struct Row
    {
        int mLine;
        const char* mList;
        const char* mFault;
    };
    const Row rows[] = {
        {__LINE__, "TITLE: X\n001  TAPE1    V     C        00:00:00:00 00:00:05:00 01:00:00:00\n",
         "2: an event has eight or nine columns, not 7\n"},
        {__LINE__, "001  TAPE1    V     C        00:00:00:00 00:00:05:0x 01:00:00:00 01:00:05:00\n",
         "1: \"00:00:05:0x\" is no timecode\n"},
        {__LINE__, "001  TAPE1    V     C        00:00:00:00 00:00:05:000 01:00:00:00 01:00:05:00\n",
         "1: \"00:00:05:000\" is no timecode\n"},
        {__LINE__, "001  TAPE1    V     C        00;01;00;01 00;01;05;01 01;00;00;00 01;00;05;00\n",
         "1: 00;01;00;01 is no label: it means 00;00;59;29\n"},
        {__LINE__, "001  TAPE1    V     C        00:00:00:30 00:00:05:00 01:00:00:00 01:00:05:00\n",
         "1: 00:00:00:30 is no label: it means 00:00:01:00\n"},
        {__LINE__, "001  TAPE1    V     C        00:61:00:00 00:00:05:00 01:00:00:00 01:00:05:00\n",
         "1: 00:61:00:00 is no label: it means 01:01:00:00\n"},
    };
    for (const Row& row : rows) {
        for (const std::vector<std::string>& mode : {std::vector<std::string>{}, {"--print"}}) {
            std::vector<std::string> arguments{File(row.mList)};
            arguments.insert(arguments.end(), mode.begin(), mode.end());
            const ProcessResult result = CutList(arguments);
            EXPECT_EQ(1, result.mExitCode) << "row at line " << row.mLine;
            EXPECT_EQ("", result.mOutput) << "row at line " << row.mLine;
            EXPECT_EQ(row.mFault, FaultOf(result)) << "row at line " << row.mLine;
        }
    }
}

TEST_F(CutListExample, DurationsThatDoNotFit_AreNamedBesideTheReport)
{
    const std::string list = "FCM: NON-DROP FRAME\n"
                             "001  TAPE1    V     C        00:00:00:00 00:00:05:00 01:00:00:00 01:00:04:29\n"
                             "002  TAPE1    V     C        00:00:00:00 00:00:05:00 01:00:04:00 01:00:09:00\n"
                             "003  TAPE2    V     C        00:00:05:00 00:00:00:00 01:00:09:00 01:00:14:00\n";
    const ProcessResult result = CutList({File(list)});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_NE(std::string::npos,
              result.mErrors.find("list.edl:2: event 001: the source lasts 00:00:05:00, its place in the programme "
                                  "00:00:04:29\n"))
        << result.mErrors;
    EXPECT_NE(std::string::npos, result.mErrors.find("list.edl:3: event 002 covers the end of event 001\n"))
        << result.mErrors;
    EXPECT_NE(std::string::npos, result.mErrors.find("list.edl:4: event 003 ends before it starts\n"))
        << result.mErrors;
    EXPECT_NE(std::string::npos, result.mOutput.find("picture: 3 events")) << result.mOutput;
}

TEST_F(CutListExample, MotionEffect_MayPlayItsSourceAtAnotherSpeed)
{
    const std::string event = "001  TAPE1    V     C        00:00:00:00 00:00:10:00 01:00:00:00 01:00:05:00\n";
    EXPECT_EQ(1, CutList({File(event)}).mExitCode);
    EXPECT_EQ(0, CutList({File(event + "M2   TAPE1          059.9                00:00:00:00\n")}).mExitCode);
}

TEST_F(CutListExample, MissingFileAndMissingSense_AreSaidOnOneLine)
{
    const ProcessResult missing = CutList({(mFolder.Host() / "no.edl").u8string()});
    EXPECT_EQ(1, missing.mExitCode);
    EXPECT_EQ(0u, missing.mErrors.find("cut_list: cannot open \""));
    for (const std::vector<std::string>& line :
         std::vector<std::vector<std::string>>{{}, {"a", "b"}, {"a", "--fps"}, {"a", "--fps", "29"}, {"--verbose"}}) {
        EXPECT_EQ(2, CutList(line).mExitCode);
    }
    EXPECT_EQ("", CutList({File("")}).mOutput) << "an empty list has nothing to say";
}
