// The one table from errno to the home platform's system error numbers.
#pragma once

#include <Platform/SystemErrors.h>

#include <string>

namespace ORL {
namespace Linux {

/// What was asked of a path: the same errno means different numbers.
enum class PathOperation {
    kOpen,         // open, create, delete, query
    kMakeFolder,   // an existing name is 183, not 80
    kMove,         // likewise
    kRemoveFolder, // a file in the folder's place is 267
};

/// The number of an error that concerns an open file or no path at all. A number that the table does not know is 31,
/// general failure; 0 is 0.
SystemError SystemErrorFromErrno(int inErrno) noexcept;

/// The number of an error that concerns inHostPath. A missing name is 2 where its folder exists and 3 where the
/// folder is missing too, which is asked of the system here and now.
SystemError SystemErrorFromErrno(int inErrno, const std::string& inHostPath,
                                 PathOperation inOperation = PathOperation::kOpen);

} // namespace Linux
} // namespace ORL
