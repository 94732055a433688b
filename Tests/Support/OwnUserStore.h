// A private user registry for one process, on platforms that allow it.
#pragma once

#include <string>

namespace ORLTest {

/// While an instance exists, this process and its children use a user store in a new folder. On Windows, where the OS
/// owns the registry, this class does nothing.
class OwnUserStore
{
public:
    OwnUserStore();
    ~OwnUserStore();
    OwnUserStore(const OwnUserStore&) = delete;
    OwnUserStore& operator=(const OwnUserStore&) = delete;

    /// The new folder, a host path; empty on Windows.
    const std::string& Folder() const noexcept { return mFolder; }

private:
    std::string mFolder;                   // empty if the constructor changed nothing
    [[maybe_unused]] std::string mEarlier; // old value of the environment variable; empty if not set
};

} // namespace ORLTest
