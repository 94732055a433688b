// orl colour COLOUR
#include "ColourForms.h"
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "Json.h"
#include "Text.h"

#include <iostream>
#include <memory>

namespace orl {

namespace {

struct Options
{
    std::string mColour;
    std::string mFrom = "rgb";
    std::vector<std::string> mTo = ColourFormNames();
    bool mAsJson = false;
};

// Prints two rows of blanks with the colour as background.
void PrintPatch(const ORL::ParamColor<unsigned long>& inColour)
{
    const std::string colour = std::to_string(inColour.GetRed()) + ";" + std::to_string(inColour.GetGreen()) + ";"
                               + std::to_string(inColour.GetBlue());
    for (int row = 0; row < 2; ++row) {
        std::cout << "\x1b[48;2;" << colour << "m" << std::string(24, ' ') << "\x1b[0m\n";
    }
}

void PrintText(const ORL::ParamColor<unsigned long>& inColour, const std::vector<std::string>& inForms)
{
    for (const std::string& name : inForms) {
        const ColourForm form = *ColourFormOf(name);
        const std::vector<std::string> numbers = ColourNumbers(inColour, form);
        std::cout << PaddedTo(7, name);
        if (form == ColourForm::kIRE) {
            std::cout << "luma " << numbers[0] << " (" << numbers[2] << " mV)  chroma " << numbers[1] << " ("
                      << numbers[3] << " mV)";
        } else {
            std::cout << PaddedTo(8, numbers[0]) << PaddedTo(8, numbers[1]) << numbers[2];
        }
        std::cout << (form == ColourForm::kRGB ? "     " + ColourAsHexadecimal(inColour) : std::string()) << '\n';
    }
}

void PrintJson(const ORL::ParamColor<unsigned long>& inColour, const std::vector<std::string>& inForms)
{
    Json colour = {{"hexadecimal", ColourAsHexadecimal(inColour)}};
    for (const std::string& name : inForms) {
        const ColourForm form = *ColourFormOf(name);
        const std::vector<std::string> numbers = ColourNumbers(inColour, form);
        const std::vector<std::string> names = ColourNumberNames(form);
        Json members = Json::Object();
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            members.Set(names[i], Json::Number(numbers[i]));
        }
        colour.Set(name, members);
    }
    std::cout << colour.Document();
}

void Run(const Options& inOptions)
{
    const ORL::ParamColor<unsigned long> colour = ReadColour(inOptions.mColour, *ColourFormOf(inOptions.mFrom));
    if (inOptions.mAsJson) {
        PrintJson(colour, inOptions.mTo);
        return;
    }
    const ColourOutput output;
    if (output.ShowsColours()) {
        PrintPatch(colour);
        std::cout.flush(); // before the destructor of output restores the console mode
    }
    PrintText(colour, inOptions.mTo);
}

} // namespace

void AddColour(CLI::App& ioProgram)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        ioProgram.add_subcommand("colour", "Show a colour in RGB, HSL, HSV, YUV, YPbPr, YIQ and as signal levels");
    command->add_option("COLOUR", options->mColour, "#rrggbb, or three comma-separated numbers in the form of --from")
        ->required();
    command->add_option("--from", options->mFrom, "rgb, hsl, hsv, yuv or ypbpr (default rgb)")
        ->type_name("FORM")
        ->check(CLI::IsMember(ReadableColourFormNames()).description(""));
    command->add_option("--to", options->mTo, "rgb, hsl, hsv, yuv, ypbpr, yiq, ire, separated by commas (default all)")
        ->type_name("FORMS")
        ->delimiter(',')
        ->check(CLI::IsMember(ColourFormNames()).description(""));
    command->add_flag("--json", options->mAsJson, "write one JSON object");
    command->callback([options] { Run(*options); });
}

} // namespace orl
