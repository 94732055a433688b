// Properties that must hold when arbitrary bytes are parsed as a registry text file. The fuzzer and the plain test that
// replays its corpus check the same properties.
//
// A file is either rejected with the number of one of its lines, or its changes are valid for a registry. The values of
// a valid file are the same after they are written to a file and read again.
#pragma once

#include <Reg/RegFile.h>
#include <Reg/RegKeyName.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace ORLFuzz {

inline bool IsPossible(const ORL::RegistryEdit& inEdit)
{
    return orl::RegPathError(inEdit.mPath).empty() && inEdit.mValue.mName.size() <= orl::kMaxValueNameUnits
           && inEdit.mValue.mName.find(static_cast<unsigned short>(0)) == UTF16String::npos
           && (inEdit.mKind != ORL::RegistryEdit::kDeleteKey || !inEdit.mPath.empty());
}

/// Returns the keys that the file creates or whose values it sets, including repetitions.
inline std::vector<orl::RegFileKey> KeysOf(const std::vector<ORL::RegistryEdit>& inEdits)
{
    std::vector<orl::RegFileKey> keys;
    for (const ORL::RegistryEdit& edit : inEdits) {
        const UTF16String name = orl::LongRegKeyName({edit.mRoot, edit.mPath});
        if (edit.mKind == ORL::RegistryEdit::kCreateKey) {
            keys.push_back({name, {}});
        } else if (edit.mKind == ORL::RegistryEdit::kSetValue) {
            if (keys.empty() || keys.back().mName != name) {
                keys.push_back({name, {}});
            }
            keys.back().mValues.push_back(edit.mValue);
        }
    }
    return keys;
}

/// Returns null, or a description of the property that failed.
inline const char* CheckRegFile(const std::string& inBytes)
{
    std::vector<ORL::RegistryEdit> edits;
    try {
        edits = orl::ReadRegFile(inBytes);
    } catch (const orl::RegFileFault& fault) {
        const auto lineEnds =
            std::count_if(inBytes.begin(), inBytes.end(), [](char byte) { return byte == '\n' || byte == '\r'; });
        const bool hasLine = fault.Line() >= 1 && fault.Line() <= static_cast<std::size_t>(lineEnds) + 1;
        return hasLine ? nullptr : "a fault in a line that the file does not have";
    }
    if (!std::all_of(edits.begin(), edits.end(), &IsPossible)) {
        return "a change that no registry can make";
    }
    const std::string first = orl::EncodeRegFile(orl::WriteRegFile(KeysOf(edits)));
    const std::string second = orl::EncodeRegFile(orl::WriteRegFile(KeysOf(orl::ReadRegFile(first))));
    return first == second ? nullptr : "what was written reads back differently";
}

} // namespace ORLFuzz
