#pragma once

#include "Touch.h"

#include <ORLFoundation.h>
#include <ORLRegistryKey.h>
#include <ORLRegistryStore.h>

#include <string>
#include <vector>

namespace Consumer {

// What changes a registry is only linked.
inline void TouchRegistry()
{
    using namespace ORL;
    RegistryKey key;
    RegistryKey copy(key);
    copy = key;
    copy.Swap(key);
    Touch(key.GetParentKeyPath(), &RegistryKey::EnumerateSubKeys, &RegistryKey::DeleteValue, &RegistryKey::DeleteSubKey,
          &RegistryKey::SetUInt32Value, &RegistryKey::SetUInt64Value, &RegistryKey::GetUInt32Value,
          &RegistryKey::GetUInt64Value, &RegistryKey::GetParentKeyPathLastPart);
    if (IsWanted()) {
        const UTF16String text = MakeString("text");
        UTF16String wide;
        std::string narrow;
        std::vector<char> bytes(3);
        unsigned __int64 size = 0;
        key.Open(RegistryRootKeys::kUser, text, RegistryKeyAccess::kRead | RegistryKeyAccess::kWrite);
        key.Open(copy, text);
        key.Create(RegistryRootKeys::kUser, text);
        key.Create(copy, text);
        key.SetStringValue(text, text);
        key.SetStringValue(text, narrow);
        key.GetStringValue(text, wide);
        key.GetStringValue(text, narrow);
        key.SetBinaryValue(text, bytes);
        key.SetBinaryValue(text, bytes.data(), bytes.size());
        key.GetBinaryValue(text, bytes);
        key.GetBinaryValue(text, bytes.data(), &size);
    }
}

inline void TouchRegistryStore()
{
    using namespace ORL;
    const RegistryEdit edit;
    const RegistryValue value;
    const RegistryStoreState::SetAside setAside{};
    Touch(edit, value, setAside, RegistryValueTypes::kNone, &RegistryStore::ListSubKeys, &RegistryStore::ListValues,
          &RegistryStore::GetValue, &RegistryStore::Apply, &RegistryStore::Check, &RegistryStore::GetState);
}

inline void TouchSystem()
{
    TouchRegistry();
    TouchRegistryStore();
}

} // namespace Consumer
