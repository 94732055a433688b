// Saves the position of its window and its language for the next start.
//
//   example_window_place [--move X Y] [--language NAME]
//
// The host prints the position of its window, and a greeting in its language. --move moves the window, --language sets
// the language of the next start: "de_DE", or "fr_FR". orl reg list 'HKCU\Software\Zerin\Window Place' --recursive
// shows the stored settings.
#include <ORLFoundation.h>

#include <CRV/Application.h>

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Place
{
    int mX = 100;
    int mY = 100;
};

// Separate numeric values instead of one string, so that each can be read and edited on its own.
constexpr char kX[] = "X";
constexpr char kY[] = "Y";

UTF16String WindowKey()
{
    return ORL::GetRegistrySettingsKey() + ORL::MakeString("Window");
}

// Leaves ioNumber unchanged if the registry has no value: on the first start, or after the setting was deleted.
void ReadNumber(const ORL::RegistryKey& inKey, const char* inName, int& ioNumber)
{
    unsigned int stored = 0;
    if (ORL::ResultSucceeded(inKey.GetUInt32Value(ORL::MakeString(inName), stored))) {
        ioNumber = static_cast<int>(stored); // positions left of the first screen are negative
    }
}

Place ReadPlace()
{
    Place place;
    ORL::RegistryKey key;
    if (ORL::ResultSucceeded(key.Open(ORL::RegistryRootKeys::kUser, WindowKey(), ORL::RegistryKeyAccess::kRead))) {
        ReadNumber(key, kX, place.mX);
        ReadNumber(key, kY, place.mY);
    }
    return place;
}

void Check(ORL::Result inResult, const char* inWhat)
{
    if (!ORL::ResultSucceeded(inResult)) {
        throw std::runtime_error(std::string("cannot store ") + inWhat);
    }
}

void KeepPlace(const Place& inPlace)
{
    ORL::RegistryKey key;
    Check(key.Create(ORL::RegistryRootKeys::kUser, WindowKey()), "the place of the window");
    Check(key.SetUInt32Value(ORL::MakeString(kX), static_cast<unsigned int>(inPlace.mX)), "the place of the window");
    Check(key.SetUInt32Value(ORL::MakeString(kY), static_cast<unsigned int>(inPlace.mY)), "the place of the window");
}

// The library reads this value once, when the language is first queried.
void KeepLanguage(const std::string& inLanguage)
{
    ORL::RegistryKey key;
    Check(key.Create(ORL::RegistryRootKeys::kUser, ORL::GetRegistryBaseKey()), "the language");
    Check(key.SetStringValue(ORL::MakeString("Language"), inLanguage), "the language");
}

const char* Greeting()
{
    switch (ORL::GetPrimaryLanguageID()) {
    case ORL::kLanguage_German: return "Guten Tag";
    case ORL::kLanguage_French: return "Bonjour";
    default: return "Good day";
    }
}

int NumberOf(const std::string& inText)
{
    char* end = nullptr;
    errno = 0;
    const long number = std::strtol(inText.c_str(), &end, 10);
    if (inText.empty() || *end != '\0' || errno != 0 || number < -100000 || number > 100000) {
        throw std::runtime_error("\"" + inText + "\" is no place on a screen");
    }
    return static_cast<int>(number);
}

void Run(const std::vector<std::string>& inArguments)
{
    Place place = ReadPlace();
    for (std::size_t at = 0; at < inArguments.size();) {
        if (inArguments[at] == "--move" && at + 2 < inArguments.size()) {
            place = {NumberOf(inArguments[at + 1]), NumberOf(inArguments[at + 2])};
            KeepPlace(place);
            at += 3;
        } else if (inArguments[at] == "--language" && at + 1 < inArguments.size()) {
            KeepLanguage(inArguments[at + 1]);
            at += 2;
        } else {
            throw std::runtime_error("usage: example_window_place [--move X Y] [--language NAME]");
        }
    }
    std::cout << Greeting() << ". The window stands at " << place.mX << ", " << place.mY << ".\n";
}

} // namespace

int main(int inCount, char** inArguments)
{
    CRV::SetApplicationName("Window Place");
    CRV::SetApplicationVersion("1.0");
    ORL::Foundation::Initialize();
    int exitCode = 0;
    try {
        ORL::GetLanguageID(); // reads the language now, so a change below applies to the next start
        Run(std::vector<std::string>(inArguments + 1, inArguments + inCount));
    } catch (const std::exception& failure) {
        std::cerr << "example_window_place: " << failure.what() << '\n';
        exitCode = 1;
    }
    ORL::Foundation::Terminate();
    return exitCode;
}
