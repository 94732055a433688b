#include "OwnUserStore.h"

#include <cstdlib>
#include <filesystem>

namespace ORLTest {

OwnUserStore::OwnUserStore()
{
    std::string folder = (std::filesystem::temp_directory_path() / "orl-store-XXXXXX").string();
    const char* const earlier = std::getenv("XDG_DATA_HOME");
    mEarlier = earlier != nullptr ? earlier : "";
    if (::mkdtemp(folder.data()) != nullptr) {
        mFolder = folder;
        ::setenv("XDG_DATA_HOME", mFolder.c_str(), 1);
    }
}

OwnUserStore::~OwnUserStore()
{
    if (mEarlier.empty()) {
        ::unsetenv("XDG_DATA_HOME");
    } else {
        ::setenv("XDG_DATA_HOME", mEarlier.c_str(), 1);
    }
    std::error_code ignored;
    std::filesystem::remove_all(mFolder, ignored);
}

} // namespace ORLTest
