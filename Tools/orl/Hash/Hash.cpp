// orl hash FILE...
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "Hash/Checksum.h"
#include "Ingest/Record/IngestManifest.h"
#include "Text.h"

#include <ORLAutomationDataCollector.h>
#include <ORLDirectory.h>
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
    std::string mChecksum; // empty: the library's hash
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

// Passes the file to the sink in blocks. An empty file counts as one empty block.
template <class Sink>
void ReadBlocks(const std::string& inName, const Sink& inSink)
{
    const UTF16String path = PathOfArgument(inName);
    if (ORL::Directory::IsDirectory(path)) {
        throw Failure("hash: cannot read \"" + WithoutControlCharacters(inName) + "\": it is a directory");
    }
    ORL::File file;
    const ORL::Result opened = ORL::File::Open(path, ORL::FileAccessFlags::kFileAccess_Read, file);
    if (!ORL::ResultSucceeded(opened)) {
        throw CannotRead(inName, opened);
    }
    std::vector<unsigned char> block(kBlockSize);
    unsigned int count = ReadBlock(file, inName, block);
    do {
        inSink(block.data(), count);
    } while (count == kBlockSize && (count = ReadBlock(file, inName, block)) != 0);
}

// Starts from 0:0:0.
std::string LibraryHashOf(const std::string& inName)
{
    ORL::HashValue hash(0, 0, 0);
    ReadBlocks(inName, [&hash](const unsigned char* inBytes, unsigned int inCount) {
        ORL::MixHash::Mix(hash, inBytes, inCount);
    });
    tvxcore::oUTF16StringStream stream;
    stream << hash;
    return ToUTF8(stream.str());
}

std::string ChecksumOf(const std::string& inName, ChecksumKind inKind)
{
    Checksum checksum(inKind);
    ReadBlocks(inName,
               [&checksum](const unsigned char* inBytes, unsigned int inCount) { checksum.Add(inBytes, inCount); });
    return checksum.Finish();
}

// The line of a checksum, without its line break. It has the format of coreutils, so md5sum -c and its relatives can
// read it, but names on a terminal contain no control characters. In a line without a backslash at its start, a
// backslash stands for itself.
std::string ChecksumLine(const std::string& inName, const std::string& inChecksum)
{
    if (OutputIsTerminal()) {
        return inChecksum + "  " + WithoutControlCharacters(inName);
    }
    const bool isEscaped = inName.find_first_of("\n\r") != std::string::npos;
    return (isEscaped ? "\\" : "") + inChecksum + "  " + (isEscaped ? EscapedName(inName) : inName);
}

void HashOne(const std::string& inFile, const Options& inOptions)
{
    using Collector = ORL::AutomationDataCollector;
    const bool isChecksum = !inOptions.mChecksum.empty();
    const std::string text = isChecksum ? ChecksumOf(inFile, FindChecksum(inOptions.mChecksum)) : LibraryHashOf(inFile);
    if (inOptions.mAsJson) {
        Collector::Instance()->AddResults(
            ToUTF16(inFile), {{Collector::kSuccessTag, ToUTF16("True")}, {Collector::kResultsTag, ToUTF16(text)}});
    } else {
        std::cout << (isChecksum ? ChecksumLine(inFile, text) : text + "  " + WithoutControlCharacters(inFile)) << '\n';
    }
}

void Run(const Options& inOptions)
{
    using Collector = ORL::AutomationDataCollector;
    bool hasFailed = false;
    for (const std::string& file : inOptions.mFiles) {
        try {
            HashOne(file, inOptions);
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
    CLI::App* command =
        ioProgram.add_subcommand("hash", "Hash files: three words, fast and not for security, or a checksum");
    command->add_option("FILE", options->mFiles, "host paths or library paths")->required();
    command
        ->add_option("--hash", options->mChecksum,
                     "compute a checksum instead: sha256, xxh64, xxh3, xxh128, md5, sha1 or c4 (SMPTE ST 2114)")
        ->type_name("HASH")
        ->check(CLI::IsMember(ChecksumNames()).description(""));
    command->add_flag("--json", options->mAsJson, "write one JSON object, keyed by file");
    command->callback([options] { Run(*options); });
}

} // namespace orl
