// A host whose static object uses the library's own module before main begins and after it returns.
#include <ORLHostSettings.h>
#include <ORLModule.h>
#include <ORLString.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

void Report(const char* inWhen)
{
    UTF16String path;
    if (ORL::GetLibraryModule()) {
        ORL::GetLibraryModule()->GetPath(path);
    }
    const bool isOurs = ORL::MakeStdString(path).find("libORLFoundation") != std::string::npos;
    std::printf("%s: %s\n", inWhen, isOurs ? "libORLFoundation" : "missing");
    std::fflush(stdout);
}

struct Watcher
{
    Watcher() { Report("constructor"); }
    ~Watcher() { Report("destructor"); }
};

const Watcher sWatcher;

// Prints a resource's language, type and name, and whether the library's own module has it.
void ReportResource(unsigned short inLanguage, unsigned short inType, unsigned short inName)
{
    ORL::SetLanguageID(inLanguage);
    int size = 0;
    const void* const data =
        ORL::GetLibraryModule()->FindLocalizedResource(ORL::MakeResourceID(inName), ORL::MakeResourceID(inType), size);
    std::printf("%d %d %d %s\n", inLanguage, inType, inName, data != nullptr && size > 0 ? "found" : "missing");
}

} // namespace

int main(int inCount, char** inArguments)
{
    if (inCount == 2 && std::strcmp(inArguments[1], "resources") == 0) {
        constexpr unsigned short kLanguages[] = {1031, 1033, 1034, 1036, 1040};
        for (const unsigned short language : kLanguages) {
            ReportResource(language, 14, 14000);
            ReportResource(language, 5, 14400);
            ReportResource(language, 5, 14401);
        }
        return 0;
    }
    Report("main");
    return 0;
}
