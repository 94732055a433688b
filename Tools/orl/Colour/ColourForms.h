// A colour in every colour model that the library supports, as numbers and as a string.
#pragma once

#include <ORLColor.h>

#include <optional>
#include <string>
#include <vector>

namespace orl {

enum class ColourForm { kRGB, kHSL, kHSV, kYUV, kYPbPr, kYIQ, kIRE };

/// Returns the command-line names of all forms in display order: "rgb", "hsl", ...
const std::vector<std::string>& ColourFormNames();

/// Returns the names of the forms that ReadColour accepts.
const std::vector<std::string>& ReadableColourFormNames();

/// Returns the form with that name, or nothing if there is no such form.
std::optional<ColourForm> ColourFormOf(const std::string& inName);

/// Parses a colour. "#rrggbb" is RGB in hexadecimal; otherwise three numbers, separated by commas: bytes for rgb,
/// degrees and percentages for hsl and hsv, a byte and two signed bytes for yuv, a number from 0 to 1 and two
/// from -0.5 to 0.5 for ypbpr. Throws Failure with exit code 2 if the string cannot be parsed.
ORL::ParamColor<unsigned long> ReadColour(const std::string& inText, ColourForm inForm);

/// Returns the components of a colour in a form as strings: "255", "128", "0".
std::vector<std::string> ColourNumbers(const ORL::ParamColor<unsigned long>& inColour, ColourForm inForm);

/// Returns the names of a form's components: "r", "g", "b".
std::vector<std::string> ColourNumberNames(ColourForm inForm);

/// Returns "#ff8000".
std::string ColourAsHexadecimal(const ORL::ParamColor<unsigned long>& inColour);

} // namespace orl
