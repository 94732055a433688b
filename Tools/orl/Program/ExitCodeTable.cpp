#include "ExitCodeTable.h"

#include "Failure.h"
#include "Verify/VerifyReport.h"

#include <map>

namespace orl {

namespace {

const ExitCodeEntry kDone = {kExitSuccess, "the work is done"};
const ExitCodeEntry kInvalid = {kExitUsage, "the command line is invalid"};
const ExitCodeEntry kStopped = {kExitStopped, "stopped by the user: Ctrl-C, or the signals SIGTERM and SIGHUP"};

ExitCodes Usual(const std::string& inFailure)
{
    return {"", {kDone, {kExitFailure, inFailure}, kInvalid, kStopped}};
}

ExitCodes OfIngest()
{
    return {"The first error decides; if the user stops the run, the code is 130.",
            {kDone,
             {kExitFailure, "any other error"},
             kInvalid,
             {kExitNoSpace, "a destination is full, or would become full"},
             {kExitUnreadable, "a file or folder of the source cannot be read"},
             {kExitChanged, "a file changed while it was copied"},
             {kExitDisappeared, "the source or a destination is gone, or a disk does not answer"},
             {kExitMismatch, "a copy reads back differently"},
             {kExitNameConflict, "a destination has a different file with the same name"},
             {kExitEmpty, "the source contains no file"},
             kStopped}};
}

ExitCodes OfVerify()
{
    return {"The first that applies:",
            {kInvalid,
             kStopped,
             {kExitDisappeared, "a folder is gone or a disk does not answer"},
             {kExitMismatch, "a file has changed"},
             {kExitMissing, "a listed file is missing"},
             {kExitUnreadable, "a file or folder cannot be read"},
             {kExitFailure, "any other error"},
             {kExitEmpty, "the list names no file"},
             {kExitNew, "a file is not in the list"},
             {kExitSuccess, "everything is as listed"}}};
}

constexpr char kBadValue[] = "a value cannot be read; the others are printed";
constexpr char kBadFile[] = "a file cannot be read; the others are done";

} // namespace

ExitCodes ExitCodesOf(const std::string& inCommand)
{
    static const std::map<std::string, std::string> failures = {
        {"stream", "a file cannot be read, or reads differently through the cache; the others are done"},
        {"hash", kBadFile},
        {"tc show", kBadValue},
        {"tc parse", kBadValue},
        {"tc add", kBadValue},
        {"tc convert", kBadValue},
        {"reg check", "a store is damaged"},
        {"res check", "a file has faults or cannot be read"},
        {"make-clip", "the clip could not be written"},
    };
    if (inCommand == "ingest") {
        return OfIngest();
    }
    if (inCommand == "verify") {
        return OfVerify();
    }
    const auto found = failures.find(inCommand);
    return Usual(found != failures.end() ? found->second : "the work could not be done");
}

} // namespace orl
