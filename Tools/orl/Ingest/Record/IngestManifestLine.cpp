#include "IngestManifest.h"

namespace orl {

namespace {

constexpr std::size_t kDigits = 64;
constexpr char kHexadecimal[] = "0123456789abcdefABCDEF";

bool IsSum(const std::string& inText, std::size_t inFewest)
{
    return inText.size() >= inFewest && inText.size() % 2 == 0
           && inText.find_first_not_of(kHexadecimal) == std::string::npos;
}

// the form "SHA256 (name) = digits"
bool IsTagged(const std::string& inText)
{
    const std::size_t name = inText.find(" (");
    const std::size_t end = inText.rfind(") = ");
    return name != std::string::npos && name > 0 && name < 24 && end != std::string::npos && end > name
           && IsSum(inText.substr(end + 4), 32);
}

} // namespace

std::string EscapedName(const std::string& inName)
{
    std::string escaped;
    for (const char character : inName) {
        switch (character) {
        case '\\': escaped += "\\\\"; break;
        case '\n': escaped += "\\n"; break;
        case '\r': escaped += "\\r"; break;
        default: escaped += character;
        }
    }
    return escaped;
}

std::string UnescapedName(const std::string& inText)
{
    std::string name;
    for (std::size_t i = 0; i < inText.size(); ++i) {
        if (inText[i] == '\\' && i + 1 < inText.size()) {
            ++i;
            name += inText[i] == 'n' ? '\n' : inText[i] == 'r' ? '\r' : inText[i];
        } else {
            name += inText[i];
        }
    }
    return name;
}

namespace {

// A backslash at the end, or before another character, is not part of an escaped name.
bool IsEscapedName(const std::string& inText)
{
    for (std::size_t at = inText.find('\\'); at != std::string::npos; at = inText.find('\\', at + 2)) {
        if (at + 1 == inText.size() || std::string("\\nr").find(inText[at + 1]) == std::string::npos) {
            return false;
        }
    }
    return true;
}

} // namespace

std::string FormatManifestLine(const IngestManifest::Line& inLine)
{
    const std::string name = EscapedName(inLine.mName);
    return (name == inLine.mName ? "" : "\\") + inLine.mDigest + "  " + name + "\n";
}

bool ParseManifestLine(const std::string& inText, IngestManifest::Line& outLine)
{
    const std::size_t start = !inText.empty() && inText[0] == '\\' ? 1 : 0;
    const std::size_t blank = start + kDigits;
    const bool hasForm = inText.size() > blank + 2 && IsSum(inText.substr(start, kDigits), kDigits)
                         && inText[blank] == ' ' && (inText[blank + 1] == ' ' || inText[blank + 1] == '*');
    if (!hasForm) {
        return false;
    }
    std::string name = inText.substr(blank + 2);
    if (start == 1 && !IsEscapedName(name)) {
        return false;
    }
    if (start == 0 && name.size() > 1 && name.back() == '\r') { // a list with the line ends of Windows
        name.pop_back();
    }
    outLine.mDigest = inText.substr(start, kDigits);
    outLine.mName = start == 1 ? UnescapedName(name) : name;
    return true;
}

bool IsLineOfSums(const std::string& inText)
{
    if (inText.empty() || inText == "\r" || inText[0] == '#') {
        return inText.find('\0') == std::string::npos;
    }
    const std::size_t start = inText[0] == '\\' ? 1 : 0;
    const std::size_t blank = inText.find(' ', start);
    const bool isPlain = blank != std::string::npos && inText.size() > blank + 2
                         && IsSum(inText.substr(start, blank - start), 32)
                         && (inText[blank + 1] == ' ' || inText[blank + 1] == '*');
    return isPlain || IsTagged(inText);
}

} // namespace orl
