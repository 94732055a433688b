// The user's registry, for one process alone where the system allows it.
#pragma once

#include <string>

namespace ORLTest {

/// While it lives, the user's store of this process and of those it starts lies in a new folder. On Windows, where the
/// system keeps the registry, nothing changes.
class OwnUserStore
{
public:
    OwnUserStore();
    ~OwnUserStore();
    OwnUserStore(const OwnUserStore&) = delete;
    OwnUserStore& operator=(const OwnUserStore&) = delete;

private:
    [[maybe_unused]] std::string mFolder;  // empty where nothing changed
    [[maybe_unused]] std::string mEarlier; // the variable that chose the place before; empty if it was not set
};

} // namespace ORLTest
