// Converts an errno to a Windows error number.
#pragma once

#include <Platform/SystemErrors.h>

#include <string>

namespace ORL {
namespace Linux {

/// The operation on a path: one errno maps to different numbers for different operations.
enum class PathOperation {
    kOpen,         // open, create, delete, query
    kMakeFolder,   // an existing name becomes 183, not 80
    kMove,         // an existing name becomes 183, not 80
    kRemoveFolder, // a file in place of the folder becomes 267
};

/// Converts an error that concerns an open file or no path at all. An unknown errno becomes 31, general failure; 0
/// becomes 0.
SystemError SystemErrorFromErrno(int inErrno) noexcept;

/// Converts an error that concerns inHostPath. A missing name becomes 2 if its folder exists and 3 if the folder is
/// also missing, which requires a query of the file system.
SystemError SystemErrorFromErrno(int inErrno, const std::string& inHostPath,
                                 PathOperation inOperation = PathOperation::kOpen);

} // namespace Linux
} // namespace ORL
