#include "RegTransfer.h"

#include "Console.h"
#include "Failure.h"
#include "RegFile.h"
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

bool Write(const std::filesystem::path& inFile, const std::string& inBytes)
{
    std::ofstream stream(inFile, std::ios::binary | std::ios::trunc);
    stream.write(inBytes.data(), static_cast<std::streamsize>(inBytes.size()));
    stream.close();
    return !stream.fail();
}

// An existing file stays until the new one is complete. Anything but a regular file, such as a pipe, is written
// directly.
bool WriteOrKeep(const std::filesystem::path& inFile, const std::string& inBytes)
{
    std::error_code error;
    const std::filesystem::file_type type = std::filesystem::symlink_status(inFile, error).type();
    if (type != std::filesystem::file_type::regular) {
        return Write(inFile, inBytes);
    }
    std::filesystem::path temporary = inFile;
    temporary += ".orl-export";
    if (!Write(temporary, inBytes)) {
        std::filesystem::remove(temporary, error);
        return false;
    }
    std::filesystem::rename(temporary, inFile, error);
    return !error;
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
    } else if (!WriteOrKeep(HostFile(inFile), EncodeRegFile(text))) {
        throw Failure("reg export: cannot write \"" + inFile + '"');
    }
}

void ImportRegFile(const std::string& inFile, bool inIsDryRun)
{
    const std::vector<RegistryEdit> edits = ReadEdits(inFile);
    if (!inIsDryRun) {
        ApplyRegEdits("reg import", inFile, edits);
        return;
    }
    for (const RegistryEdit& edit : edits) {
        Show(edit);
    }
}

} // namespace orl
