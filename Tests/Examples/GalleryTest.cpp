// Runs the gallery as a user does.
#include "PngReader.h"

#include <ProcessRunner.h>
#include <TempFolder.h>

#include <gtest/gtest.h>
#include <string>

using namespace ORLTest;

namespace {

constexpr std::size_t kColumn = 144; // width of a cell
constexpr std::size_t kRow = 188;
constexpr std::size_t kLeft = 32; // x of the first picture: the sheet's margin plus the cell's
constexpr std::size_t kTop = 52;

std::string ColourAt(const DecodedPicture& inSheet, std::size_t inColumn, std::size_t inRow, std::size_t inX,
                     std::size_t inY)
{
    const std::uint8_t* const pixel = inSheet.At(kLeft + inColumn * kColumn + inX, kTop + inRow * kRow + inY);
    return std::to_string(pixel[0]) + " " + std::to_string(pixel[1]) + " " + std::to_string(pixel[2]);
}

} // namespace

TEST(Gallery, GreetsInFiveLanguagesAndDrawsTheSheet)
{
    const TempFolder folder;
    const std::string path = (folder.Host() / "sheet.png").string();
    const ProcessResult result = RunBesideThisProgram("example_gallery", {path});
    ASSERT_EQ(0, result.mExitCode) << result.mErrors;
    EXPECT_EQ("", result.mErrors);
    EXPECT_EQ("shapes   en_US  Shapes for your titles\n"
              "shapes   de_DE  Formen f\u00FCr Ihre Titel\n"
              "shapes   es_ES  Formas para sus t\u00EDtulos\n"
              "shapes   fr_FR  Des formes pour vos g\u00E9n\u00E9riques\n"
              "shapes   it_IT  Forme per i vostri titoli\n"
              "signals  en_US  Signals to measure by\n"
              "signals  de_DE  Signale zum Messen\n"
              "signals  es_ES  Se\u00F1ales para medir\n"
              "signals  fr_FR  Des signaux pour mesurer\n"
              "signals  it_IT  Segnali per misurare\n"
                  + path + ": 2 plug-ins, 592 by 392 pixels\n",
              result.mOutput);
    const DecodedPicture sheet = ReadPng(path);
    ASSERT_EQ(592u, sheet.mWidth);
    ASSERT_EQ(392u, sheet.mHeight);
    const DecodedPicture shown = ReadPng(std::string(ORL_EXAMPLES) + "/../Docs/gallery.png");
    EXPECT_TRUE(shown.mPixels == sheet.mPixels) << "the picture in the README is of an earlier version";
    // The pictures are not flipped vertically: the first colour bar is at the top, and the black part of the strip is
    // at the bottom left.
    EXPECT_EQ("191 191 191", ColourAt(sheet, 3, 1, 5, 5));
    EXPECT_EQ("0 0 191", ColourAt(sheet, 3, 1, 92, 5));
    EXPECT_EQ("0 0 0", ColourAt(sheet, 3, 1, 5, 90));
    // The cell's background is visible around the colour wheel; the centre of the wheel is white.
    EXPECT_EQ("44 48 58", ColourAt(sheet, 2, 0, 1, 1));
    const std::uint8_t* const middle = sheet.At(kLeft + 2 * kColumn + 48, kTop + 48);
    EXPECT_GT(middle[0] + middle[1] + middle[2], 3 * 240);
}

TEST(Gallery, ASheetThatCannotBeWritten_IsReported)
{
    const TempFolder folder;
    const ProcessResult result =
        RunBesideThisProgram("example_gallery", {(folder.Host() / "no" / "sheet.png").string()});
    EXPECT_EQ(1, result.mExitCode);
    EXPECT_NE(std::string::npos, result.mErrors.find("example_gallery: ")) << result.mErrors;
}

TEST(Gallery, WithoutASheet_ShowsItsUsage)
{
    const ProcessResult result = RunBesideThisProgram("example_gallery", {});
    EXPECT_EQ(2, result.mExitCode);
    EXPECT_EQ("usage: example_gallery SHEET.png\n", result.mErrors);
}
