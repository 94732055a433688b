#include "Failure.h"

#include <algorithm>
#include <iostream>

namespace orl {

void Complain(const std::string& inText)
{
    std::string line = inText;
    std::replace(line.begin(), line.end(), '\n', ' ');
    std::cout.flush();
    std::cerr << "orl: " << line << std::endl;
}

std::string Describe(ORL::Result inResult)
{
    switch (inResult) {
    case ORL::kSuccess:
        return "success";
    case ORL::kDiskFull:
        return "the disk is full";
    case ORL::kFileNotFound:
        return "file not found";
    case ORL::kPathNotFound:
        return "path not found";
    case ORL::kAccessDenied:
        return "access denied";
    case ORL::kOperationAborted:
        return "stopped by the user";
    case ORL::kSharingViolation:
        return "in use by another";
    case ORL::kAlreadyExists:
        return "it exists already";
    default:
        return ORL::ResultSucceeded(inResult) ? "success" : "the system refused";
    }
}

} // namespace orl
