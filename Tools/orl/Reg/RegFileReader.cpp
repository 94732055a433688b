#include "RegFile.h"

#include "RegFileCursor.h"
#include "RegFileEncoding.h"
#include "RegKeyName.h"
#include "RegValueText.h"
#include "Text.h"

#include <limits>

namespace orl {

namespace {

using ORL::RegistryEdit;
using ORL::RegistryValue;
using Types = ORL::RegistryValueTypes;

constexpr char kHeader[] = "Windows Registry Editor Version 5.00";

int DigitOf(unsigned inUnit)
{
    if (inUnit >= '0' && inUnit <= '9') {
        return static_cast<int>(inUnit - '0');
    }
    const unsigned lower = inUnit | 0x20;
    return lower >= 'a' && lower <= 'f' ? static_cast<int>(lower - 'a') + 10 : -1;
}

class Reader
{
public:
    explicit Reader(const UTF16String& inText) : mCursor(inText) {}

    std::vector<RegistryEdit> Read()
    {
        ReadHeader();
        while (!mCursor.AtEnd()) {
            ReadLine();
            mCursor.TakeLineEnd();
        }
        return std::move(mEdits);
    }

private:
    enum class Place { kBeforeKeys, kInKey, kInDeletedKey };

    void ReadHeader()
    {
        const std::string header = ToUTF8(mCursor.TakeRestOfLine());
        const std::size_t end = header.find_last_not_of(" \t");
        if (end == std::string::npos || header.substr(0, end + 1) != kHeader) {
            mCursor.Refuse(std::string("the first line is not \"") + kHeader + '"');
        }
        mCursor.TakeLineEnd();
    }

    void ReadLine()
    {
        mCursor.SkipBlanks();
        if (mCursor.AtLineEnd()) {
            return;
        }
        switch (mCursor.Peek()) {
        case ';': mCursor.TakeRestOfLine(); return;
        case '[': ReadKey(); return;
        case '@':
        case '"': ReadValue(); return;
        default: mCursor.Refuse("this is neither a key, a value nor a comment");
        }
    }

    // The last bracket of the line ends the key, because a key name may contain brackets.
    void ReadKey()
    {
        const UTF16String line = mCursor.TakeRestOfLine();
        const std::size_t end = line.rfind(']');
        if (end == UTF16String::npos) {
            mCursor.Refuse("\"]\" is missing after the key");
        }
        for (std::size_t at = end + 1; at < line.size() && line[at] != ';'; ++at) {
            if (line[at] != ' ' && line[at] != '\t') {
                mCursor.Refuse("unexpected text after the key");
            }
        }
        const bool deletes = line.size() > 1 && line[1] == '-';
        const std::size_t begin = deletes ? 2 : 1;
        RegKeyName key;
        if (end < begin || !SplitRegRoot(line.substr(begin, end - begin), key)) {
            mCursor.Refuse("the key is neither below HKEY_CURRENT_USER nor below HKEY_LOCAL_MACHINE");
        }
        const std::string error = RegPathError(key.mPath);
        if (!error.empty()) {
            mCursor.Refuse(error);
        }
        BeginKey(key, deletes);
    }

    void BeginKey(const RegKeyName& inKey, bool inDeletes)
    {
        if (inDeletes && inKey.mPath.empty()) {
            mCursor.Refuse("a root cannot be deleted");
        }
        mPlace = inDeletes ? Place::kInDeletedKey : Place::kInKey;
        mKey = inKey;
        if (!inKey.mPath.empty()) { // no edit for a root, which always exists
            Add(inDeletes ? RegistryEdit::kDeleteKey : RegistryEdit::kCreateKey, RegistryValue());
        }
    }

    void ReadValue()
    {
        if (mPlace != Place::kInKey) {
            mCursor.Refuse(mPlace == Place::kBeforeKeys ? "there is no key before this value"
                                                        : "the key of this value is deleted");
        }
        RegistryValue value;
        value.mName = ReadValueName();
        mCursor.SkipBlanks();
        mCursor.Expect('=', "a value must be a name, \"=\" and its data");
        mCursor.SkipBlanks();
        const bool deletes = mCursor.TakeIf('-');
        if (!deletes) {
            ReadData(value);
        }
        mCursor.SkipBlanks();
        if (!mCursor.AtLineEnd() && mCursor.Peek() != ';') {
            mCursor.Refuse("unexpected text after the value");
        }
        mCursor.TakeRestOfLine();
        Add(deletes ? RegistryEdit::kDeleteValue : RegistryEdit::kSetValue, value);
    }

    UTF16String ReadValueName()
    {
        if (mCursor.TakeIf('@')) {
            return UTF16String();
        }
        UTF16String name = ReadQuoted();
        if (name.size() > kMaxValueNameUnits) {
            mCursor.Refuse("the name of a value has at most 16383 characters");
        }
        return name;
    }

    UTF16String ReadQuoted()
    {
        const std::size_t firstLine = mCursor.Line();
        mCursor.Expect('"', "a quote is missing here");
        UTF16String text;
        while (!mCursor.TakeIf('"')) {
            if (mCursor.AtEnd()) {
                throw RegFileFault(firstLine, "the text that begins here has no closing quote");
            }
            if (mCursor.TakeIf('\\') && mCursor.Peek() != '"' && mCursor.Peek() != '\\') {
                mCursor.Refuse("in quotes a backslash must be followed by a quote or a backslash");
            }
            if (mCursor.Peek() == 0) {
                mCursor.Refuse("a text in quotes must not contain a zero character");
            }
            text.push_back(mCursor.Take());
        }
        return text;
    }

    void ReadData(RegistryValue& outValue)
    {
        if (!mCursor.AtLineEnd() && mCursor.Peek() == '"') {
            outValue.mType = Types::kString;
            outValue.mData = RegDataOfText(ReadQuoted());
        } else if (mCursor.TakeWord("dword:")) {
            outValue.mType = Types::kUInt32;
            const unsigned number = ReadHexNumber("\"dword:\"");
            for (int shift = 0; shift < 32; shift += 8) {
                outValue.mData.push_back(static_cast<unsigned char>(number >> shift & 0xFF));
            }
        } else if (mCursor.TakeWord("hex:")) {
            outValue.mType = Types::kBinary;
            outValue.mData = ReadBytes();
        } else if (mCursor.TakeWord("hex(")) {
            outValue.mType = ReadHexNumber("\"hex(\"");
            mCursor.Expect(')', "\")\" is missing after the type");
            mCursor.Expect(':', "\":\" is missing after the type");
            outValue.mData = ReadBytes();
        } else {
            mCursor.Refuse("the data is neither text in quotes nor dword:, hex: or hex(type):");
        }
    }

    unsigned ReadHexNumber(const std::string& inPrefix)
    {
        unsigned number = 0;
        int count = 0;
        for (; !mCursor.AtLineEnd() && DigitOf(mCursor.Peek()) >= 0; ++count) {
            number = number << 4 | static_cast<unsigned>(DigitOf(mCursor.Take()));
        }
        if (count == 0 || count > 8) {
            mCursor.Refuse("expected one to eight hexadecimal digits after " + inPrefix);
        }
        return number;
    }

    std::vector<unsigned char> ReadBytes()
    {
        std::vector<unsigned char> bytes;
        SkipToNextByte();
        while (!IsAtEndOfData()) {
            bytes.push_back(ReadByte());
            mCursor.SkipBlanks();
            if (!mCursor.TakeIf(',')) {
                break;
            }
            SkipToNextByte();
            if (IsAtEndOfData()) {
                mCursor.Refuse("a byte is missing after the last comma");
            }
        }
        return bytes;
    }

    bool IsAtEndOfData() { return mCursor.AtLineEnd() || mCursor.Peek() == ';'; }

    // Skips blanks, line continuations, and comment lines after a continuation.
    void SkipToNextByte()
    {
        mCursor.SkipBlanks();
        while (mCursor.TakeIf('\\')) {
            mCursor.SkipBlanks();
            if (!mCursor.AtLineEnd()) {
                mCursor.Refuse("a backslash in data must end its line");
            }
            do {
                mCursor.TakeLineEnd();
                mCursor.SkipBlanks();
            } while (mCursor.SkipComment());
        }
    }

    unsigned char ReadByte()
    {
        unsigned number = 0;
        int count = 0;
        for (; !mCursor.AtLineEnd() && DigitOf(mCursor.Peek()) >= 0; ++count) {
            number = number << 4 | static_cast<unsigned>(DigitOf(mCursor.Take()));
        }
        if (count == 0 || count > 2) {
            mCursor.Refuse("a byte must be one or two hexadecimal digits, with commas between bytes");
        }
        return static_cast<unsigned char>(number);
    }

    void Add(RegistryEdit::Kind inKind, const RegistryValue& inValue)
    {
        RegistryEdit edit;
        edit.mKind = inKind;
        edit.mRoot = mKey.mRoot;
        edit.mPath = mKey.mPath;
        edit.mValue = inValue;
        mEdits.push_back(edit);
    }

    RegFileCursor mCursor;
    Place mPlace = Place::kBeforeKeys;
    RegKeyName mKey;
    std::vector<RegistryEdit> mEdits;
};

} // namespace

std::vector<RegistryEdit> ReadRegFile(const std::string& inBytes)
{
    const UTF16String text = DecodeRegFile(inBytes);
    return Reader(text).Read();
}

} // namespace orl
