// Runs orl colour as a user does.
#include <JsonLayout.h>
#include <ProcessRunner.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace ORLTest;

namespace {

ProcessResult Colour(std::vector<std::string> inArguments)
{
    inArguments.insert(inArguments.begin(), "colour");
    return RunBesideThisProgram("orl", inArguments);
}

} // namespace

TEST(OrlColour, OfAnOrange_ShowsEveryForm)
{
    const ProcessResult result = Colour({"#ff8000"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("rgb    255     128     0     #ff8000\n"
              "hsl    30      100     50\n"
              "hsv    30      100     100\n"
              "yuv    146     -75     64\n"
              "ypbpr  0.5937  -0.3350 0.2898\n"
              "yiq    0.5937  0.4255  -0.1231\n"
              "ire    luma 59.4 (424.0 mV)  chroma 46.1 (329.2 mV)\n",
              result.mOutput);
}

TEST(OrlColour, EveryFormThatCanBeRead_LeadsToTheSameColour)
{
    const std::vector<std::vector<std::string>> commands = {
        {"#Ff0000"},
        {"255,0,0"},
        {"0,100,50", "--from", "hsl"},
        {"0,100,100", "--from", "hsv"},
        {"360,100,100", "--from", "hsv"},
        {"0.299,-0.168736,0.5", "--from", "ypbpr"},
    };
    for (std::vector<std::string> command : commands) {
        const std::string shown = command[0];
        command.insert(command.end(), {"--to", "rgb"});
        EXPECT_EQ("rgb    255     0       0     #ff0000\n", Colour(command).mOutput) << shown;
    }
    EXPECT_EQ("rgb    252     0       0     #fc0000\n", Colour({"81,-38,111", "--from", "yuv", "--to", "rgb"}).mOutput);
    EXPECT_EQ("rgb    0       0       0     #000000\n", Colour({"360,100,50", "--from", "hsl", "--to", "rgb"}).mOutput);
}

TEST(OrlColour, ChosenForms_AreShownInTheirOrder)
{
    EXPECT_EQ("hsv    0       0       0\nhsl    0       0       0\n", Colour({"#000000", "--to", "hsv,hsl"}).mOutput);
    EXPECT_EQ("yiq    1.0000  0.0000  0.0000\n", Colour({"255,255,255", "--to", "yiq"}).mOutput);
}

TEST(OrlColour, Json_IsOneObjectOfNumbers)
{
    const ProcessResult result = Colour({"#ff8000", "--json", "--to", "rgb,ire"});
    EXPECT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ(R"({"hexadecimal":"#ff8000","rgb":{"r":255,"g":128,"b":0},)"
              R"("ire":{"luma":59.4,"chroma":46.1,"lumaMillivolts":424.0,"chromaMillivolts":329.2}})",
              WithoutLayout(result.mOutput));
}

TEST(OrlColour, WhatCannotBeRead_IsAMistakeOfTheCommandLine)
{
    const struct
    {
        int mLine;
        std::vector<std::string> mArguments;
        const char* mErrors;
    } rows[] = {
        {__LINE__, {"#ff80"}, "orl: colour: cannot read \"#ff80\": # and six hexadecimal digits are needed\n"},
        {__LINE__, {"#ff80zz"}, "orl: colour: cannot read \"#ff80zz\": # and six hexadecimal digits are needed\n"},
        {__LINE__, {"#-f8000"}, "orl: colour: cannot read \"#-f8000\": # and six hexadecimal digits are needed\n"},
        {__LINE__,
         {"1,2"},
         "orl: colour: cannot read \"1,2\": rgb is three numbers, separated by commas, or # and six hexadecimal "
         "digits\n"},
        {__LINE__, {"1,2,256"}, "orl: colour: cannot read \"1,2,256\": b is a whole number from 0 to 255\n"},
        {__LINE__, {"1,2.5,3"}, "orl: colour: cannot read \"1,2.5,3\": g is a whole number from 0 to 255\n"},
        {__LINE__, {"1,,3"}, "orl: colour: cannot read \"1,,3\": g is not a number\n"},
        {__LINE__, {"1,nan,3"}, "orl: colour: cannot read \"1,nan,3\": g is not a number\n"},
        {__LINE__,
         {"0,0,361", "--from", "hsl"},
         "orl: colour: cannot read \"0,0,361\": l is a whole number from 0 to 100\n"},
        {__LINE__, {"0,0,0.6", "--from", "ypbpr"}, "orl: colour: cannot read \"0,0,0.6\": pr is from -0.5 to 0.5\n"},
        {__LINE__,
         {"#000000", "--from", "hsl"},
         "orl: colour: cannot read \"#000000\": hsl is three numbers, separated by commas\n"},
    };
    for (const auto& row : rows) {
        const ProcessResult result = Colour(row.mArguments);
        EXPECT_EQ(2, result.mExitCode) << "row at line " << row.mLine;
        EXPECT_EQ("", result.mOutput) << "row at line " << row.mLine;
        EXPECT_EQ(row.mErrors, result.mErrors) << "row at line " << row.mLine;
    }
    EXPECT_EQ(2, Colour({}).mExitCode);
    EXPECT_EQ(2, Colour({"#000000", "--to", "cmyk"}).mExitCode);
    EXPECT_EQ(2, Colour({"1,2,3", "--from", "yiq"}).mExitCode);
}

// Output to a file or a pipe has no escape sequences.
TEST(OrlColour, IntoAPipe_HasNoPatch)
{
    EXPECT_EQ(std::string::npos, Colour({"#ff8000"}).mOutput.find('\x1b'));
}
