// orl res list|string|extract|picture|check
#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "Json.h"
#include "OutputFile.h"
#include "PictureFile.h"
#include "ResourceCheck.h"
#include "ResourceNames.h"
#include "Text.h"

#include <ORLResourceFile.h>

#include <iostream>
#include <memory>
#include <set>

namespace orl {

namespace {

using ORL::Resources::FileEntry;
using ORL::Resources::ResourceFile;

constexpr unsigned short kString = 6;

constexpr char kFileHelp[] = "a Windows module, a shared object or a .res file";

struct Options
{
    std::string mFile;
    std::vector<std::string> mFiles; // for check
    std::string mType;
    std::string mName;
    std::string mLanguage = "en_US";
    std::string mOutput; // empty: standard output
    std::vector<unsigned int> mIDs;
    bool mAsJson = false;
};

[[noreturn]] void Fail(const char* inCommand, const std::string& inFile, const std::string& inWhy)
{
    throw Failure("res " + std::string(inCommand) + ": cannot read \"" + inFile + "\": " + inWhy);
}

void Open(const char* inCommand, const std::string& inFile, ResourceFile& outFile)
{
    const ORL::Result result = outFile.Open(PathOfArgument(inFile));
    if (result == ORL::kGeneralFailure) {
        Fail(inCommand, inFile, "it is not a Windows module, a shared object or a compiled resource file");
    }
    if (!ORL::ResultSucceeded(result)) {
        Fail(inCommand, inFile, Describe(result));
    }
}

const char* NameOfFormat(const ResourceFile& inFile)
{
    switch (inFile.GetFormat()) {
    case ResourceFile::kCompiledFile: return "compiled resource file";
    case ResourceFile::kWindowsModule: return "Windows module";
    default: return "shared object";
    }
}

void WarnOfDamage(const char* inCommand, const std::string& inPath, const ResourceFile& inFile)
{
    if (inFile.IsDamaged()) {
        ReportError("res " + std::string(inCommand) + ": \"" + inPath
                    + "\" is damaged: some of its resources cannot be read");
    }
}

void PrintTable(const ResourceFile& inFile)
{
    std::cout << PaddedTo(14, "type") << PaddedTo(26, "name") << PaddedTo(10, "language") << "size\n";
    for (const FileEntry& entry : inFile.GetEntries()) {
        std::cout << PaddedTo(13, NameOfType(entry.mType)) << ' ' << PaddedTo(25, NameOfResource(entry.mName)) << ' '
                  << PaddedTo(9, NameOfLanguage(entry.mLanguage)) << ' ' << entry.mSize << '\n';
    }
}

Json JsonOf(const ORL::Resources::FileName& inName)
{
    return inName.mIsText ? Json(ToUTF8(inName.mText)) : Json(inName.mID);
}

void PrintJson(const ResourceFile& inFile)
{
    Json resources = Json::Array();
    for (const FileEntry& entry : inFile.GetEntries()) {
        resources.Append({{"type", JsonOf(entry.mType)},
                          {"name", JsonOf(entry.mName)},
                          {"language", entry.mLanguage},
                          {"languageName", NameOfLanguage(entry.mLanguage)},
                          {"size", entry.mSize}});
    }
    const Json file = {{"format", NameOfFormat(inFile)}, {"damaged", inFile.IsDamaged()}, {"resources", resources}};
    std::cout << file.Document();
}

void List(const Options& inOptions)
{
    ResourceFile file;
    Open("list", inOptions.mFile, file);
    if (inOptions.mAsJson) {
        PrintJson(file);
        return;
    }
    PrintTable(file);
    WarnOfDamage("list", inOptions.mFile, file);
}

// Returns the identifiers that have a string in any language.
std::set<unsigned int> IdentifiersOf(const ResourceFile& inFile)
{
    std::set<unsigned int> identifiers;
    for (const FileEntry& entry : inFile.GetEntries()) {
        std::vector<UTF16String> texts;
        if (entry.mType.mIsText || entry.mType.mID != kString || entry.mName.mIsText || entry.mName.mID == 0
            || !ORL::Resources::ReadStringBlock(entry, texts)) {
            continue;
        }
        for (unsigned int i = 0; i < texts.size(); ++i) {
            if (!texts[i].empty()) {
                identifiers.insert((entry.mName.mID - 1u) * 16 + i);
            }
        }
    }
    return identifiers;
}

struct FoundString
{
    unsigned int mID = 0;
    unsigned short mLanguage = 0;
    std::string mText;
};

bool FindString(const ResourceFile& inFile, unsigned int inID, unsigned short inLanguage,
                std::vector<FoundString>& ioStrings)
{
    UTF16String text;
    FoundString found;
    found.mID = inID;
    if (!inFile.FindString(inID, inLanguage, text, found.mLanguage)) {
        return false;
    }
    found.mText = ToUTF8(text);
    ioStrings.push_back(found);
    return true;
}

void PrintStrings(const std::vector<FoundString>& inStrings)
{
    for (const FoundString& found : inStrings) {
        std::cout << PaddedTo(7, std::to_string(found.mID)) << ' ' << PaddedTo(8, NameOfLanguage(found.mLanguage))
                  << ' ' << WithoutControlCharacters(found.mText) << '\n';
    }
}

void PrintStringsAsJson(const std::vector<FoundString>& inStrings)
{
    Json strings = Json::Array();
    for (const FoundString& found : inStrings) {
        strings.Append({{"id", found.mID},
                        {"language", found.mLanguage},
                        {"languageName", NameOfLanguage(found.mLanguage)},
                        {"text", found.mText}});
    }
    std::cout << strings.Document();
}

void String(const Options& inOptions)
{
    const unsigned short language = ReadLanguage(inOptions.mLanguage);
    ResourceFile file;
    Open("string", inOptions.mFile, file);
    WarnOfDamage("string", inOptions.mFile, file);
    std::vector<FoundString> strings;
    if (inOptions.mIDs.empty()) {
        for (const unsigned int id : IdentifiersOf(file)) {
            FindString(file, id, language, strings);
        }
    } else if (!FindString(file, inOptions.mIDs[0], language, strings)) {
        throw Failure("res string: \"" + inOptions.mFile + "\" has no text " + std::to_string(inOptions.mIDs[0])
                      + " for " + NameOfLanguage(language));
    }
    inOptions.mAsJson ? PrintStringsAsJson(strings) : PrintStrings(strings);
}

void WriteFile(const std::string& inCommand, const std::string& inArgument, const void* inData, std::size_t inSize)
{
    OutputFile file(inCommand, inArgument);
    file.Write(inData, inSize);
    file.Finish();
}

void Extract(const Options& inOptions)
{
    const unsigned short language = ReadLanguage(inOptions.mLanguage);
    ResourceFile file;
    Open("extract", inOptions.mFile, file);
    const FileEntry* const entry =
        file.FindLocalized(ReadName(inOptions.mName).c_str(), ReadType(inOptions.mType).c_str(), language);
    if (entry == nullptr) {
        throw Failure("res extract: \"" + inOptions.mFile + "\" has no " + inOptions.mType + " " + inOptions.mName
                      + " for " + NameOfLanguage(language));
    }
    if (!inOptions.mOutput.empty()) {
        WriteFile("res extract", inOptions.mOutput, entry->mData, entry->mSize);
        return;
    }
    WriteBytesToOutput();
    std::cout.write(reinterpret_cast<const char*>(entry->mData), static_cast<std::streamsize>(entry->mSize));
}

void WritePicture(const Options& inOptions)
{
    const unsigned short language = ReadLanguage(inOptions.mLanguage);
    ResourceFile file;
    Open("picture", inOptions.mFile, file);
    const PictureDecoder decoder;
    ORL::Resources::FilePicture picture;
    const unsigned int id = inOptions.mIDs[0];
    if (id > 0xFFFF || !file.FindPicture(static_cast<unsigned short>(id), language, picture)) {
        throw Failure("res picture: \"" + inOptions.mFile + "\" has no picture " + std::to_string(id) + " for "
                      + NameOfLanguage(language) + " that can be decoded");
    }
    const std::string png = ToPng(picture);
    WriteFile("res picture", inOptions.mOutput, png.data(), png.size());
}

void PrintFaults(const std::string& inPath, const std::vector<std::string>& inFaults)
{
    for (const std::string& fault : inFaults) {
        std::cout << WithoutControlCharacters(inPath) << ": " << WithoutControlCharacters(fault) << '\n';
    }
}

// Returns whether the file has no fault. Adds its faults to ioFiles or prints them.
bool CheckOne(const std::string& inPath, bool inAsJson, Json& ioFiles)
{
    ResourceFile file;
    Open("check", inPath, file);
    const std::vector<std::string> faults = FaultsOf(file);
    if (inAsJson) {
        ioFiles.Append({{"file", inPath}, {"faults", faults}});
    } else {
        PrintFaults(inPath, faults);
    }
    return faults.empty();
}

void Check(const Options& inOptions)
{
    bool isGood = true;
    Json files = Json::Array();
    for (const std::string& path : inOptions.mFiles) {
        try {
            isGood = CheckOne(path, inOptions.mAsJson, files) && isGood;
        } catch (const Failure& failure) {
            ReportError(failure.what());
            files.Append({{"file", path}, {"error", failure.what()}});
            isGood = false;
        }
    }
    std::cout << (inOptions.mAsJson ? files.Document() : std::string()) << std::flush;
    if (!isGood) {
        throw PartialFailure();
    }
}

CLI::App* AddCommand(CLI::App& ioResources, const std::shared_ptr<Options>& inOptions, const char* inName,
                     const char* inWhat, void (*inRun)(const Options&))
{
    CLI::App* const command = ioResources.add_subcommand(inName, inWhat);
    command->add_option("FILE", inOptions->mFile, kFileHelp)->required();
    command->callback([inOptions, inRun] { inRun(*inOptions); });
    return command;
}

void AddLanguage(CLI::App& ioCommand, const std::shared_ptr<Options>& inOptions)
{
    ioCommand.add_option("--language", inOptions->mLanguage, "de_DE, neutral, 1031 or 0x0407 (default en_US)")
        ->type_name("LANGUAGE");
}

void AddList(CLI::App& ioResources)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        AddCommand(ioResources, options, "list", "Show type, name, language and size of each resource", &List);
    command->add_flag("--json", options->mAsJson, "write one JSON object");
}

void AddString(CLI::App& ioResources)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command = AddCommand(ioResources, options, "string",
                                         "Show one text, or all, and the language in which it was found", &String);
    command->add_option("ID", options->mIDs, "the identifier of the text; default: all texts")->expected(0, 1);
    AddLanguage(*command, options);
    command->add_flag("--json", options->mAsJson, "write one JSON array, an object for each text");
}

void AddExtract(CLI::App& ioResources)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command = AddCommand(ioResources, options, "extract", "Write the bytes of one resource", &Extract);
    command->add_option("TYPE", options->mType, "the type: a name such as RCDATA, a number or a text")->required();
    command->add_option("NAME", options->mName, "the name: a number or a text")->required();
    AddLanguage(*command, options);
    command->add_option("-o,--output", options->mOutput, "the file to write; default: standard output")
        ->type_name("FILE");
}

void AddPicture(CLI::App& ioResources)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        AddCommand(ioResources, options, "picture", "Decode one picture like the bitmap loader and write it as PNG",
                   &WritePicture);
    command->add_option("ID", options->mIDs, "the identifier of a PNG or bitmap resource")->required()->expected(1);
    AddLanguage(*command, options);
    command->add_option("-o,--output", options->mOutput, "the file to write")->required()->type_name("FILE");
}

void AddCheck(CLI::App& ioResources)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command = ioResources.add_subcommand(
        "check", "Find texts, menus and dialogs missing in a language, different parameters, and unreadable resources");
    command->add_option("FILE", options->mFiles, kFileHelp)->required();
    command->add_flag("--json", options->mAsJson,
                      "write one JSON array, an object with the faults of each file, or with the error");
    command->callback([options] { Check(*options); });
}

} // namespace

void AddResources(CLI::App& ioProgram)
{
    CLI::App* const resources = ioProgram.add_subcommand("res", "Inspect the resources of modules and .res files");
    resources->require_subcommand(1);
    AddList(*resources);
    AddString(*resources);
    AddExtract(*resources);
    AddPicture(*resources);
    AddCheck(*resources);
}

} // namespace orl
