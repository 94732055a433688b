#include "RegJson.h"

#include "RegKeyName.h"
#include "RegValueText.h"
#include "Text.h"

namespace orl {

namespace {

using Types = ORL::RegistryValueTypes;

const char* NameOf(ORL::RegistryEdit::Kind inKind)
{
    switch (inKind) {
    case ORL::RegistryEdit::kCreateKey: return "create";
    case ORL::RegistryEdit::kDeleteKey: return "delete";
    case ORL::RegistryEdit::kSetValue: return "set";
    default: return "unset";
    }
}

} // namespace

// Data that does not fit its type is shown as bytes.
Json JsonOfRegValue(const ORL::RegistryValue& inValue)
{
    Json value = {{"name", ToUTF8(inValue.mName)}, {"type", ShowRegType(inValue.mType)}};
    const bool isWellFormed = IsWellFormedRegValue(inValue);
    if (isWellFormed && (inValue.mType == Types::kUInt32 || inValue.mType == Types::kUInt64)) {
        value.Set("value", NumberOfRegValue(inValue));
    } else if (isWellFormed && (inValue.mType == Types::kString || inValue.mType == Types::kExpandString)) {
        value.Set("value", PlainRegValue(inValue));
    } else {
        value.Set("data", PlainRegValue(inValue));
    }
    return value;
}

Json JsonOfRegEdit(const ORL::RegistryEdit& inEdit)
{
    Json edit = {{"change", NameOf(inEdit.mKind)}, {"key", ShowRegKeyName({inEdit.mRoot, inEdit.mPath})}};
    if (inEdit.mKind == ORL::RegistryEdit::kSetValue) {
        edit.Set("value", JsonOfRegValue(inEdit.mValue));
    } else if (inEdit.mKind == ORL::RegistryEdit::kDeleteValue) {
        edit.Set("name", ToUTF8(inEdit.mValue.mName));
    }
    return edit;
}

} // namespace orl
