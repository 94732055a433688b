// A host with a static object that uses the library's own module from before main to behind it.
#include <ORLModule.h>
#include <ORLString.h>

#include <cstdio>
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

} // namespace

int main()
{
    Report("main");
    return 0;
}
