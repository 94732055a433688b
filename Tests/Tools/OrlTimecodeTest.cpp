// Runs orl tc as a user does at a prompt.
#include <JsonLayout.h>
#include <ProcessRunner.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

using Words = std::vector<std::string>;

ProcessResult Tc(const Words& inArguments, const std::string& inInput = std::string())
{
    Words arguments{"tc"};
    arguments.insert(arguments.end(), inArguments.begin(), inArguments.end());
    return RunBesideThisProgram("orl", arguments, std::string(), 60, inInput);
}

bool Contains(const std::string& inText, const std::string& inPart)
{
    return inText.find(inPart) != std::string::npos;
}

struct Row
{
    int mLine;
    Words mArguments;
    const char* mOutput;
};

template <std::size_t Count>
void ExpectAnswers(const Row (&inRows)[Count])
{
    for (const Row& row : inRows) {
        const ProcessResult result = Tc(row.mArguments);
        EXPECT_EQ(0, result.mExitCode) << "row at line " << row.mLine << ": " << result.mErrors;
        EXPECT_EQ(row.mOutput, result.mOutput) << "row at line " << row.mLine;
        EXPECT_EQ("", result.mErrors) << "row at line " << row.mLine;
    }
}

} // namespace

TEST(OrlTimecode, Show_GivesTheLabelOfAFrameCount)
{
    const Row rows[] = {
        {__LINE__, {"show", "107892", "--format", "2997drop"}, "01;00;00;00\n"},
        {__LINE__, {"show", "0", "1799", "1800", "17982"}, "00;00;00;00\n00;00;59;29\n00;01;00;02\n00;10;00;00\n"},
        {__LINE__, {"show", "1800", "--format", "29.97 NonDrop"}, "00:01:00:00\n"},
        {__LINE__, {"show", "3600", "--format", "5994drop"}, "00;01;00;04\n"},
        {__LINE__, {"show", "199", "--format", "35mm"}, "12+07\n"},
        {__LINE__, {"show", "199", "--format", "16mm"}, "4+39\n"},
        {__LINE__, {"show", "1234", "--format", "frames"}, "1234\n"},
        {__LINE__, {"show", "48450", "--format", "samples"}, "00:00:01:00450\n"},
        {__LINE__, {"show", "44450", "--format", "samples", "--rate", "44100"}, "00:00:01:00350\n"},
        {__LINE__, {"show", "3723045", "--format", "ms"}, "01:02:03.045\n"},
        {__LINE__, {"show", "-1", "+1"}, "-00;00;00;01\n00;00;00;01\n"},
        {__LINE__, {"show", "1", "--sign", "always"}, "+00;00;00;01\n"},
        {__LINE__, {"show", "-107892", "--sign", "never"}, "22;00;00;00\n"},
        {__LINE__, {"show", "107892", "--no-zeros"}, "1;0;0;0\n"},
        {__LINE__, {"show", "107892", "--no-hours"}, "00;00;00\n"},
        {__LINE__, {"show", "107892", "--previous-frame"}, "00;59;59;29\n"},
    };
    ExpectAnswers(rows);
}

TEST(OrlTimecode, Parse_GivesLabelCountAndSeconds)
{
    const Row rows[] = {
        {__LINE__,
         {"parse", "1:00;00.00", "--rate", "29.97", "--format", "2997drop"},
         "01;00;00;00  107892 frames  3599.9964 s\n"},
        {__LINE__, {"parse", "1234", "--format", "25"}, "00:00:13:09  334 frames  13.36 s\n"},
        {__LINE__, {"parse", ":1234", "--format", "25"}, "00:00:49:09  1234 frames  49.36 s\n"},
        {__LINE__, {"parse", "123456789", "--format", "25"}, "03:46:10:14  339264 frames  13570.56 s\n"},
        {__LINE__, {"parse", "25:00:00:00", "--format", "25"}, "01:00:00:00  90000 frames  3600 s\n"},
        {__LINE__, {"parse", "12+", "--format", "35mm"}, "12+00  192 frames  8 s\n"},
        {__LINE__, {"parse", "1:2", "--format", "ms"}, "00:00:01.002  1002 milliseconds  1.002 s\n"},
        {__LINE__, {"parse", "1", "--format", "samples"}, "00:00:00:00001  1 samples  0.000021 s\n"},
        {__LINE__, {"parse", "-00:00:00:01", "--format", "25"}, "-00:00:00:01  -1 frames  -0.04 s\n"},
        {__LINE__, {"parse", "00;00;59;29", "--previous-frame"}, "00;00;59;29  1800 frames  60.06 s\n"},
        {__LINE__, {"parse", "", "--format", "25"}, "00:00:00:00  0 frames  0 s\n"},
        {__LINE__, {"parse", ":120", "--format", "frames", "--rate", "30000/1001"}, "120  120 frames  4.004 s\n"},
    };
    ExpectAnswers(rows);
}

TEST(OrlTimecode, Add_MovesByFramesExactly)
{
    const Row rows[] = {
        {__LINE__, {"add", "00;00;59;29", "1"}, "00;01;00;02\n"},
        {__LINE__, {"add", "00;01;00;02", "-1"}, "00;00;59;29\n"},
        {__LINE__, {"add", "00;00;00;00", "17982"}, "00;10;00;00\n"},
        {__LINE__, {"add", "00;00;59;28", "00;00;59;29", "1"}, "00;00;59;29\n00;01;00;02\n"},
        {__LINE__, {"add", "01:00:00:00", "-00:00:00:01", "--format", "25"}, "00:59:59:24\n"},
        {__LINE__, {"add", "00:00:00:00", "-1:00", "--format", "25"}, "-00:00:01:00\n"},
        {__LINE__, {"add", "23:59:59:24", "1", "--format", "25"}, "00:00:00:00\n"},
        {__LINE__, {"add", "12+07", "1+09", "--format", "35mm"}, "14+00\n"},
        {__LINE__, {"add", "1", "1", "--format", "samples", "--rate", "192000"}, "00:00:00:2\n"},
        {__LINE__, {"add", "00:00:01:00", "1", "--format", "25", "--previous-frame"}, "00:00:01:01\n"},
    };
    ExpectAnswers(rows);
}

TEST(OrlTimecode, Convert_GivesTheLabelAtTheSameTime)
{
    const Row rows[] = {
        {__LINE__, {"convert", "01:00:00:00", "--from", "25", "--to", "2997drop"}, "01;00;00;00\n"},
        {__LINE__, {"convert", "01:00:00:00", "--from", "25", "--to", "2997nondrop"}, "00:59:56:12\n"},
        {__LINE__, {"convert", "00:00:01:12", "--from", "24", "--to", "samples"}, "00:00:01:24000\n"},
        {__LINE__,
         {"convert", "00:00:01:12", "--from", "24", "--to", "samples", "--to-rate", "44100"},
         "00:00:01:22050\n"},
        {__LINE__, {"convert", "48", "--from", "frames", "--from-rate", "24", "--to", "ms"}, "00:00:02.000\n"},
        {__LINE__, {"convert", "00;01;00;02", "--to", "35mm", "--to-rate", "29.97"}, "112+08\n"},
    };
    ExpectAnswers(rows);
}

TEST(OrlTimecode, Table_HasARowForEachFormat)
{
    const ProcessResult result = Tc({"table"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    const char* const rows[] = {
        "format          rate  digits  separators        a day  after 3723.5 s\n",
        "24               24        2  :::             2073600  01:02:03:12     film\n",
        "25               25        2  :::             2160000  01:02:03:12     PAL\n",
        "2997drop      29.97        2  ;;;             2589408  01;02;03;15     NTSC drop-frame, 2 labels skipped a "
        "minute\n",
        "2997nondrop   29.97        2  :::             2592000  01:01:59:23     NTSC, counts 30 a second\n",
        "30               30        2  :::             2592000  01:02:03:15",
        "50               50        2  :::             4320000  01:02:03:25     PAL HD\n",
        "5994drop      59.94        2  ;;;             5178816  01;02;03;30     NTSC HD drop-frame, ",
        "5994nondrop   59.94        2  :::             5184000  01:01:59:46     NTSC HD, counts 60 a second\n",
        "60               60        2  :::             5184000  01:02:03:30",
        "frames        29.97*     any  none            2589410  111593          a plain count\n",
        "23976        23.976        2  :::             2073600  01:01:59:18     film at NTSC speed, counts 24 a "
        "second\n",
        "16mm             24*       2  +               2073600  2234+04         feet and frames, 40 a foot\n",
        "35mm             24*       2  +               2073600  5585+04         feet and frames, 16 a foot\n",
        "samples       48000*       5  :::          4147200000  01:02:03:24000  audio\n",
        "ms             1000        3  ::.            86400000  01:02:03.500    audio\n",
    };
    for (const char* row : rows) {
        EXPECT_TRUE(Contains("\n" + result.mOutput, std::string("\n") + row)) << row << "in\n" << result.mOutput;
    }
}

TEST(OrlTimecode, UnreadableText_ShowsWhereReadingStoppedAndEndsWith1)
{
    struct Unreadable
    {
        int mLine;
        Words mArguments;
        const char* mErrors;
    };
    const Unreadable rows[] = {
        {__LINE__,
         {"parse", "1::2"},
         "orl: tc parse: cannot read \"1::2\": \":\" does not fit here, at character 3\n"
         "  \"1::2\"\n"
         "     ^\n"},
        {__LINE__,
         {"parse", "1:2:3:4:5"},
         "orl: tc parse: cannot read \"1:2:3:4:5\": \"5\" does not fit here, at character 9\n"
         "  \"1:2:3:4:5\"\n"
         "           ^\n"},
        {__LINE__,
         {"parse", "+"},
         "orl: tc parse: cannot read \"+\": a number is missing, at character 2\n"
         "  \"+\"\n"
         "    ^\n"},
        {__LINE__,
         {"parse", "12\xC3\xA9"},
         "orl: tc parse: cannot read \"12\xC3\xA9\": \"\xC3\xA9\" does not fit here, at character 3\n"
         "  \"12\xC3\xA9\"\n"
         "     ^\n"},
        {__LINE__,
         {"parse", "123456789", "--format", "16mm"},
         "orl: tc parse: cannot read \"123456789\": \"9\" does not fit here, at character 9\n"
         "  \"123456789\"\n"
         "           ^\n"},
        {__LINE__,
         {"show", "12.5"},
         "orl: tc show: cannot read \"12.5\": \".\" does not fit here, at character 3\n"
         "  \"12.5\"\n"
         "     ^\n"},
        {__LINE__,
         {"add", "00;00;59;29", "1f"},
         "orl: tc add: cannot read \"1f\": \"f\" does not fit here, at character 2\n"
         "  \"1f\"\n"
         "    ^\n"},
        {__LINE__,
         {"convert", "1:20", "--from", "frames", "--to", "25"},
         "orl: tc convert: cannot read \"1:20\": \":\" does not fit here, at character 2\n"
         "  \"1:20\"\n"
         "    ^\n"},
    };
    for (const Unreadable& row : rows) {
        const ProcessResult result = Tc(row.mArguments);
        EXPECT_EQ(1, result.mExitCode) << "row at line " << row.mLine;
        EXPECT_EQ("", result.mOutput) << "row at line " << row.mLine;
        EXPECT_EQ(row.mErrors, result.mErrors) << "row at line " << row.mLine;
    }
}

// The library accepts any number of digits and wraps around, so a user would get a time that was not typed.
TEST(OrlTimecode, NumberBeyondWhatTimesHold_IsNoTime)
{
    const Words rows[] = {
        {"parse", "99999999999999999999"},
        {"parse", "1:9999999999"},
        {"parse", ":9999999999999999999999"},
        {"parse", ":391760000000"},
        {"parse", "99999999+99999999999", "--format", "16mm"},
        {"show", "18446744073709551616"},
        {"show", "391760000000"},
        {"add", "00:00:00:01", "391760000000"},
        {"add", ":300000000000", "300000000000"},
        {"parse", "-23:59:59:29", "--format", "2997nondrop"},
        {"parse", "-23:59:59:23", "--format", "23976"},
    };
    for (const Words& row : rows) {
        const ProcessResult result = Tc(row);
        EXPECT_EQ(1, result.mExitCode) << row[1];
        EXPECT_EQ("", result.mOutput) << row[1];
        EXPECT_TRUE(Contains(result.mErrors, "too large") || Contains(result.mErrors, "outside the day"))
            << row[1] << ": " << result.mErrors;
    }
    EXPECT_EQ(0, Tc({"show", "390000000000"}).mExitCode) << "414 years are held";
}

TEST(OrlTimecode, OneUnreadableOfMany_LeavesTheOthersTheirAnswers)
{
    const ProcessResult result = Tc({"parse", "1:00", "1::2", "2:00", "--format", "25"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("00:00:01:00  25 frames  1 s\n00:00:02:00  50 frames  2 s\n", result.mOutput);
    EXPECT_TRUE(Contains(result.mErrors, "cannot read \"1::2\"")) << result.mErrors;
}

TEST(OrlTimecode, StandardInput_IsReadLineByLine)
{
    const ProcessResult result = Tc({"show", "--format", "25"}, "25\n\n50\r\n75");
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("00:00:01:00\n00:00:02:00\n00:00:03:00\n", result.mOutput);

    const ProcessResult broken = Tc({"show", "--format", "25"}, "25\n\nx\n75\n");
    EXPECT_EQ(1, broken.mExitCode);
    EXPECT_EQ("00:00:01:00\n00:00:03:00\n", broken.mOutput);
    EXPECT_EQ("orl: tc show: line 3: cannot read \"x\": \"x\" does not fit here, at character 1\n  \"x\"\n   ^\n",
              broken.mErrors);

    EXPECT_EQ("00;01;00;02\n00;10;00;00\n", Tc({"add", "1"}, "00;00;59;29\n00;09;59;29\n").mOutput);
    EXPECT_EQ("", Tc({"show"}, "").mOutput);
    EXPECT_EQ("[]\n", Tc({"show", "--json"}, "").mOutput);
}

TEST(OrlTimecode, Json_HasAnObjectForEachValue)
{
    const ProcessResult result = Tc({"parse", "--json", "1:00;00.00", "1::2"});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_EQ("[\n"
              R"(  {"input":"1:00;00.00","label":"01;00;00;00","frames":107892,"seconds":3599.9964,)"
              R"("format":"2997drop","rate":"30000/1001"},)"
              "\n"
              R"(  {"input":"1::2","error":"\":\" does not fit here","position":3})"
              "\n"
              "]\n",
              result.mOutput);
    EXPECT_EQ("", result.mErrors) << "the object says it";
    EXPECT_TRUE(Contains(Tc({"parse", "--json", "00;01;00;01"}).mOutput,
                         R"("rate":"30000/1001","remark":"drop-frame skips this label"})"));
    const ProcessResult samples = Tc({"show", "--json", "1", "--format", "samples"});
    EXPECT_TRUE(Contains(samples.mOutput, R"("samples":1,"seconds":2.1e-05,)")) << samples.mOutput;
    const ProcessResult table = Tc({"table", "--json"});
    EXPECT_TRUE(Contains(WithoutLayout(table.mOutput),
                         R"({"format":"2997drop","value":102,"rate":"30000/1001","ownRate":true,"digits":2,)"
                         R"("separators":";;;","framesPerDay":2589408,"sampleSeconds":3723.5,"sample":"01;02;03;15",)"))
        << table.mOutput;
}

TEST(OrlTimecode, LabelThatDropFrameLeavesOut_IsAnsweredWithARemark)
{
    const ProcessResult result = Tc({"parse", "00;01;00;01"});
    EXPECT_EQ(0, result.mExitCode);
    EXPECT_EQ("00;00;59;29  1799 frames  60.026633 s\n", result.mOutput);
    EXPECT_EQ("orl: tc parse: \"00;01;00;01\" is read as 00;00;59;29: drop-frame skips this label\n", result.mErrors);
    EXPECT_EQ("", Tc({"parse", "00;10;00;01"}).mErrors) << "a tenth minute has all its labels";
    EXPECT_TRUE(Contains(Tc({"parse", "00:01:00:03", "--format", "5994drop"}).mErrors, "skips this label"));
}

TEST(OrlTimecode, CommandLineThatMakesNoSense_EndsWith2AndOneLine)
{
    const Words lines[] = {
        {},
        {"frobnicate"},
        {"add"},
        {"convert", "1"},
        {"show", "1", "--format", "29"},
        {"show", "1", "--rate", "fast"},
        {"show", "1", "--rate", "0"},
        {"show", "1", "--rate", "30000/0"},
        {"show", "1", "--rate", "2000", "--format", "frames"},
        {"show", "1", "--rate", "25", "--format", "samples"},
        {"show", "1", "--sign", "sometimes"},
        {"table", "x"},
    };
    for (const Words& line : lines) {
        const ProcessResult result = Tc(line);
        const std::string shown = line.empty() ? "tc" : line.back();
        EXPECT_EQ(2, result.mExitCode) << shown;
        EXPECT_EQ("", result.mOutput) << shown;
        EXPECT_EQ(0u, result.mErrors.find("orl: ")) << shown << ": " << result.mErrors;
        EXPECT_EQ(result.mErrors.size() - 1, result.mErrors.find('\n')) << shown << ": " << result.mErrors;
    }
    EXPECT_TRUE(Contains(Tc({"frobnicate"}).mErrors, "frobnicate"));
}

TEST(OrlTimecode, Help_TellsOfEachCommand)
{
    const ProcessResult result = Tc({"--help"});
    EXPECT_EQ(0, result.mExitCode);
    for (const char* command : {"show", "parse", "add", "convert", "table"}) {
        EXPECT_TRUE(Contains(result.mOutput, std::string("  ") + command + " ")) << command;
        const ProcessResult help = Tc({command, "--help"});
        EXPECT_EQ(0, help.mExitCode) << command;
        EXPECT_TRUE(Contains(help.mOutput, "--json")) << command;
    }
}
