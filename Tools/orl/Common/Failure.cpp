#include "Failure.h"

#include "Text.h"

#include <iostream>

namespace orl {

void ReportError(const std::string& inText)
{
    std::cout.flush();
    std::cerr << "orl: " << WithoutControlCharacters(inText) << std::endl;
}

std::string Describe(ORL::Result inResult)
{
    switch (inResult) {
    case ORL::kSuccess: return "success";
    case ORL::kDiskFull: return "the disk is full";
    case ORL::kFileNotFound: return "file not found";
    case ORL::kPathNotFound: return "path not found";
    case ORL::kAccessDenied: return "access denied";
    case ORL::kOperationAborted: return "stopped by the user";
    case ORL::kSharingViolation: return "in use by another program";
    case ORL::kAlreadyExists: return "it exists already";
    case kOutOfResources: return "too many open files, or too little memory";
    default: return ORL::ResultSucceeded(inResult) ? "success" : "the system refused";
    }
}

} // namespace orl
