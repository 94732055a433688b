// Fails each kind of check once. The only argument is the answer to every report: "break" or "go on". The exit code
// confirms that execution reached the end.
#include <ORLDebug.h>

#include <tvxcore/Debug.h>

#include <cstring>

namespace {

const bool sGoesOn = false;
bool sAskToBreak = false;

} // namespace

int main(int argc, char** argv)
{
    sAskToBreak = argc > 1 && std::strcmp(argv[1], "break") == 0;
    tvxcore::debug::Dialogs dialogs;
    dialogs.mAssert = [](bool&, const char*, const unsigned char*, const char*, long, const char*) {
        return sAskToBreak;
    };
    dialogs.mContract = [](const char*, const char*, long) { return sAskToBreak; };
    tvxcore::debug::InstallDialogs(dialogs);
    ORL_ASSERT(sGoesOn);
    ORL_INPUT_CONTRACT(sGoesOn);
    ORL_OUTPUT_CONTRACT(sGoesOn);
    return 7;
}
