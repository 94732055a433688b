#include <ORLResult.h>

namespace ORL {
namespace Win {

Result SystemErrorToORLResult(unsigned long inSystemError)
{
    switch (inSystemError) {
    case 2: return kFileNotFound;
    case 3: return kPathNotFound;
    case 5: return kAccessDenied;
    case 32: return kSharingViolation;
    case 39:  // ERROR_HANDLE_DISK_FULL
    case 112: // ERROR_DISK_FULL
        return kDiskFull;
    case 183: return kAlreadyExists;
    default: return kGeneralFailure;
    }
}

} // namespace Win
} // namespace ORL
