// A process whose host, environment and registry the tests choose.
//   settings_host code-page              prints the number of the default code page
//   settings_host keys NAME VERSION      prints the four key paths; the host changes its name before the last one
//   settings_host current-version NAME VERSION
#include <ORLFoundation.h>

#include <CRV/Application.h>

#include <iostream>
#include <string>

namespace {

int PrintKeys()
{
    // The settings and help keys come first: each of them builds the base key while it holds its own lock.
    const UTF16String settings = ORL::GetRegistrySettingsKey();
    const UTF16String help = ORL::GetRegistryHelpKey();
    CRV::SetApplicationName("another name");
    CRV::SetApplicationVersion("another version");
    std::cout << ORL::MakeStdString(ORL::GetRegistryBaseKey()) << '\n'
              << ORL::MakeStdString(settings) << '\n'
              << ORL::MakeStdString(help) << '\n'
              << ORL::MakeStdString(ORL::GetRegistryCurrentVersionKey()) << '\n';
    return 0;
}

} // namespace

int main(int inCount, char** inArguments)
{
    const std::string command = inCount > 1 ? inArguments[1] : "";
    if (command == "code-page") {
        std::cout << ORL::StringUtils::GetDefaultCodePage() << '\n';
        return 0;
    }
    if (inCount != 4) {
        return 2;
    }
    CRV::SetApplicationName(inArguments[2]);
    CRV::SetApplicationVersion(inArguments[3]);
    if (command == "current-version") {
        std::cout << ORL::MakeStdString(ORL::GetRegistryCurrentVersionKey()) << '\n';
        return 0;
    }
    return command == "keys" ? PrintKeys() : 2;
}
