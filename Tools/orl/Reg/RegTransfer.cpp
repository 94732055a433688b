#include "RegTransfer.h"

#include "Console.h"
#include "Failure.h"
#include "OutputFile.h"
#include "RegFile.h"
#include "RegJson.h"
#include "RegTree.h"
#include "RegValueText.h"
#include "Text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace orl {

namespace {

using ORL::RegistryEdit;

void Collect(const RegKeyName& inKey, std::vector<RegFileKey>& ioKeys)
{
    const UTF16String name = LongRegKeyName(inKey);
    if (!CanWriteRegKey(name)) {
        throw Failure("reg export: the name of \"" + ShowRegKeyName(inKey)
                      + "\" contains a line end, which a registry text file cannot contain");
    }
    ioKeys.push_back({name, ReadRegValues("reg export", inKey)});
    for (const UTF16String& below : ReadRegSubKeys("reg export", inKey)) {
        Collect(RegSubKey(inKey, below), ioKeys);
    }
}

std::filesystem::path HostFile(const std::string& inArgument)
{
    return std::filesystem::u8path(HostTextOf(PathOfArgument(inArgument)));
}

std::string ReadWhole(const std::string& inFile)
{
    const std::filesystem::path file = HostFile(inFile);
    try {
        std::ifstream stream(file, std::ios::binary);
        if (stream.is_open()) {
            return std::string((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
        }
    } catch (const std::ios_base::failure&) { // a folder can be opened but not read
    }
    throw Failure("reg import: cannot read \"" + inFile + '"');
}

std::vector<RegistryEdit> ReadEdits(const std::string& inFile)
{
    try {
        return ReadRegFile(ReadWhole(inFile));
    } catch (const RegFileFault& fault) {
        throw Failure("reg import: line " + std::to_string(fault.Line()) + " of \"" + inFile + "\": " + fault.what()
                      + " (nothing was written)");
    }
}

void Show(const RegistryEdit& inEdit)
{
    const std::string key = ShowRegKeyName({inEdit.mRoot, inEdit.mPath});
    std::string line;
    switch (inEdit.mKind) {
    case RegistryEdit::kCreateKey: line = "create  " + key; break;
    case RegistryEdit::kDeleteKey: line = "delete  " + key; break;
    case RegistryEdit::kSetValue:
        line = "set     " + key + "  " + ShowRegValueName(inEdit.mValue.mName) + " = "
               + ShowRegType(inEdit.mValue.mType) + ' ' + ShowRegValue(inEdit.mValue);
        break;
    case RegistryEdit::kDeleteValue: line = "unset   " + key + "  " + ShowRegValueName(inEdit.mValue.mName); break;
    }
    std::cout << WithoutControlCharacters(line) << '\n';
}

} // namespace

void ExportRegKey(const RegKeyName& inKey, const std::string& inFile)
{
    std::vector<RegFileKey> keys;
    Collect(inKey, keys);
    const UTF16String text = WriteRegFile(keys);
    if (inFile.empty() && OutputIsTerminal()) {
        std::string shown = ToUTF8(text);
        shown.erase(std::remove(shown.begin(), shown.end(), '\r'), shown.end());
        std::cout << shown;
    } else if (inFile.empty()) {
        MakeOutputBinary();
        std::cout << EncodeRegFile(text);
    } else {
        OutputFile file("reg export", inFile);
        file.Write(EncodeRegFile(text));
        file.Finish();
    }
}

void ImportRegFile(const std::string& inFile)
{
    ApplyRegEdits("reg import", inFile, ReadEdits(inFile));
}

void ShowRegImport(const std::string& inFile, bool inAsJson)
{
    Json edits = Json::Array();
    for (const RegistryEdit& edit : ReadEdits(inFile)) {
        if (inAsJson) {
            edits.Append(JsonOfRegEdit(edit));
        } else {
            Show(edit);
        }
    }
    std::cout << (inAsJson ? edits.Document() : std::string());
}

} // namespace orl
