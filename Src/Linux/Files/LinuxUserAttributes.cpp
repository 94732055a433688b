#include "LinuxCopyBytes.h"

#include "../Calls/SystemCalls.h"

#include <cstring>
#include <string>
#include <sys/xattr.h>
#include <vector>

namespace ORL {
namespace Linux {

namespace {

constexpr char kPrefix[] = "user.";
constexpr std::size_t kLargestValue = 65536; // maximum size of an attribute, and of a list of attribute names

// Calls inCall(name) for each attribute in the user namespace.
template <class Call>
void ForEachUserAttribute(int inFile, Call inCall)
{
    const ssize_t size = System().mFListXAttr(inFile, nullptr, 0);
    if (size <= 0) {
        return; // the usual case: no extended attributes
    }
    std::vector<char> names(kLargestValue);
    const ssize_t listed = System().mFListXAttr(inFile, names.data(), names.size());
    for (ssize_t at = 0; at < listed;) {
        const char* const name = names.data() + at;
        if (std::strncmp(name, kPrefix, sizeof(kPrefix) - 1) == 0) {
            inCall(name);
        }
        at += static_cast<ssize_t>(std::strlen(name)) + 1;
    }
}

} // namespace

void CopyUserAttributes(int inFrom, int inTo, ExistingAttributes inExisting)
{
    if (inExisting == ExistingAttributes::kReplace) {
        ForEachUserAttribute(inTo, [inTo](const char* inName) { System().mFRemoveXAttr(inTo, inName); });
    }
    std::vector<char> value;
    ForEachUserAttribute(inFrom, [&](const char* inName) {
        value.resize(kLargestValue);
        const ssize_t size = System().mFGetXAttr(inFrom, inName, value.data(), value.size());
        if (size >= 0) {
            System().mFSetXAttr(inTo, inName, value.data(), static_cast<std::size_t>(size),
                                inExisting == ExistingAttributes::kKeep ? XATTR_CREATE : 0);
        }
    });
}

} // namespace Linux
} // namespace ORL
