// orl hash FILE...
#include "Commands.h"
#include "Failure.h"
#include "Text.h"

#include <ORLAutomationDataCollector.h>
#include <ORLFile.h>
#include <ORLHashValue.h>
#include <tvxcore/StringStream.h>

#include <iostream>
#include <memory>

namespace orl {

namespace {

struct Options
{
    std::vector<std::string> mFiles;
    bool mAsJson = false;
};

// Must not change: the printed hash depends on the block size.
constexpr unsigned int kBlockSize = 1 << 20;

Failure CannotRead(const std::string& inFile, ORL::Result inResult)
{
    // File::Open returns -1, which has no description, if the file does not exist.
    return Failure("hash: cannot read \"" + WithoutControlCharacters(inFile)
                   + "\": " + Describe(inResult == -1 ? ORL::kFileNotFound : inResult));
}

// Fills a block and returns its size in bytes, which is less than kBlockSize only at the end of the file.
unsigned int ReadBlock(ORL::File& ioFile, const std::string& inName, std::vector<unsigned char>& outBlock)
{
    unsigned int filled = 0;
    while (filled < kBlockSize) {
        unsigned int given = 0;
        const ORL::Result result = ioFile.Read(outBlock.data() + filled, kBlockSize - filled, given);
        if (!ORL::ResultSucceeded(result)) {
            throw CannotRead(inName, result);
        }
        if (given == 0) {
            break;
        }
        filled += given;
    }
    return filled;
}

// Starts from 0:0:0 and adds 1 MiB blocks. An empty file counts as one empty block.
ORL::HashValue HashOf(const std::string& inName)
{
    ORL::File file;
    const ORL::Result opened = ORL::File::Open(PathOfArgument(inName), ORL::FileAccessFlags::kFileAccess_Read, file);
    if (!ORL::ResultSucceeded(opened)) {
        throw CannotRead(inName, opened);
    }
    ORL::HashValue hash(0, 0, 0);
    std::vector<unsigned char> block(kBlockSize);
    unsigned int count = ReadBlock(file, inName, block);
    do {
        ORL::MixHash::Mix(hash, block.data(), count);
    } while (count == kBlockSize && (count = ReadBlock(file, inName, block)) != 0);
    return hash;
}

UTF16String TextOf(const ORL::HashValue& inHash)
{
    tvxcore::oUTF16StringStream stream;
    stream << inHash;
    return stream.str();
}

void HashOne(const std::string& inFile, bool inAsJson)
{
    using Collector = ORL::AutomationDataCollector;
    const UTF16String text = TextOf(HashOf(inFile));
    if (inAsJson) {
        Collector::Instance()->AddResults(ToUTF16(inFile),
                                          {{Collector::kSuccessTag, ToUTF16("True")}, {Collector::kResultsTag, text}});
    } else {
        std::cout << ToUTF8(text) << "  " << WithoutControlCharacters(inFile) << '\n';
    }
}

void Run(const Options& inOptions)
{
    using Collector = ORL::AutomationDataCollector;
    bool hasFailed = false;
    for (const std::string& file : inOptions.mFiles) {
        try {
            HashOne(file, inOptions.mAsJson);
        } catch (const Failure& failure) {
            ReportError(failure.what());
            Collector::Instance()->AddResult(ToUTF16(file), {Collector::kErrorTag, ToUTF16(failure.what())});
            hasFailed = true;
        }
    }
    if (inOptions.mAsJson) {
        ORL::WriteAutomationResults(std::cout, Collector::Instance()->GetCollection());
    }
    if (hasFailed) {
        throw PartialFailure();
    }
}

} // namespace

void AddHash(CLI::App& ioProgram)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command = ioProgram.add_subcommand("hash", "Hash files into three words, fast and not for security");
    command->add_option("FILE", options->mFiles, "host paths or library paths")->required();
    command->add_flag("--json", options->mAsJson, "write one JSON object, keyed by file");
    command->callback([options] { Run(*options); });
}

} // namespace orl
