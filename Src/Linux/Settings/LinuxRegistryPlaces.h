// Floor: System
// Where the stores of the two roots lie.
#pragma once

#include <string>

namespace ORL {
namespace Registry {
namespace Linux {

/// The place of one store. Beside the database stand its journal and the board of changes, with the same name and an
/// ending of their own, and databases that were set aside.
struct Place
{
    std::string mFolder;   // host path without a slash at its end; empty if the process has no home
    std::string mDatabase; // host path
    bool mIsForAll = false; // everybody may read it
};

/// The user's store: in $XDG_DATA_HOME if that is an absolute path, else in .local/share below $HOME, or below the home
/// folder that the system knows for the user.
Place FindUserPlace();

/// The machine's store, below /var/lib.
Place FindMachinePlace();

/// Puts the machine's store into another folder, for tests; an empty path puts it back.
void SetMachineFolder(const std::string& inFolder);

} // namespace Linux
} // namespace Registry
} // namespace ORL
