#include <ORLDirectoryRegistry.h>

#include <Core/UntilUnload.h>
#include <ORLDebug.h>
#include <ORLPathUtils.h>
#include <ORLResourceCollection.h>
#include <ORLString.h>
#include <Strings/Tokenizer.h>
#include <System/DirectoryPattern.h>

#include <tvxcore/StringStream.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace ORL {
namespace DirectoryRegistry {

namespace {

using Text = std::basic_string_view<unsigned short>;
using Table = std::map<UTF16String, UTF16String, std::less<>>;

Table& Directories()
{
    static UntilUnload<Table> directories;
    return directories.Get();
}

// No reasonable table is nested deeper. The limit bounds the recursion, so it fits the smallest stacks that hosts use.
constexpr int kMaxReferenceDepth = 64;

// A symbol that is being expanded, and the expansion whose pattern refers to it.
struct Expansion
{
    const UTF16String& mSymbol;
    const Expansion* mOuter;
    int mDepth;
};

bool IsBeingExpanded(const UTF16String& inSymbol, const Expansion* inExpansion)
{
    for (; inExpansion != nullptr; inExpansion = inExpansion->mOuter) {
        if (inExpansion->mSymbol == inSymbol) {
            return true;
        }
    }
    return false;
}

bool MayExpand(const UTF16String& inSymbol, const Expansion& inExpansion)
{
    const bool isCycleOrTooDeep = inExpansion.mDepth >= kMaxReferenceDepth || IsBeingExpanded(inSymbol, &inExpansion);
    ORL_ASSERT_MESSAGE_IN(
        !isCycleOrTooDeep,
        ("The symbolic directory " + MakeStdString(inSymbol) + " refers to itself or is nested too deeply.\r\n")
            .c_str(),
        "ORL::DirectoryRegistry::`anonymous-namespace'::ExpandPath");
    return !isCycleOrTooDeep;
}

UTF16String ExpandPath(const UTF16String& inPattern, const Expansion& inExpansion);

UTF16String Find(Text inSymbolicName, Table::const_iterator inEntry, const Expansion* inOuter)
{
    UTF16String pathname;
    if (inEntry != Directories().end()) {
        pathname = ExpandPath(inEntry->second, {inEntry->first, inOuter, inOuter == nullptr ? 0 : inOuter->mDepth + 1});
    }
    if (!pathname.empty()) {
        ORL_OUTPUT_CONTRACT_AT(PathUtils::IsValidPath(pathname), "DirectoryRegistry", 321);
    } else {
        const UTF16String symbol(inSymbolicName.begin(), inSymbolicName.end());
        ORL_ASSERT_MESSAGE_AT(!pathname.empty(), "!pathname.empty()",
                              ("The symbolic directory " + MakeStdString(symbol) + " is not registered.\r\n").c_str(),
                              "DirectoryRegistry", 325, "ORL::DirectoryRegistry::FindDirectory");
    }
    return pathname;
}

UTF16String ExpandPath(const UTF16String& inPattern, const Expansion& inExpansion)
{
    const unsigned short* const currRawChar = inPattern.c_str();
    ORL_ASSERT_AT(currRawChar != NULL, "DirectoryRegistry", 144,
                  "ORL::DirectoryRegistry::`anonymous-namespace'::ExpandPath");
    UTF16String path;
    DirectoryPattern pattern(inPattern);
    for (PatternPiece piece{}; pattern.GetNext(piece);) {
        const auto found = piece.mSymbol.empty() ? Directories().end() : Directories().find(piece.mSymbol);
        if (found != Directories().end() && MayExpand(found->first, inExpansion)) {
            path += Find(piece.mSymbol, found, &inExpansion);
        } else {
            path.append(piece.mText);
        }
    }
    return path;
}

UTF16String Trimmed(const Tokenizer::Token& inToken)
{
    const auto isBlank = [](unsigned short inUnit) { return inUnit == ' ' || inUnit == '\t'; };
    const unsigned short* begin = inToken.mBegin;
    const unsigned short* end = begin + inToken.mSize;
    while (begin != end && isBlank(*begin)) {
        ++begin;
    }
    while (begin != end && isBlank(end[-1])) {
        --end;
    }
    return UTF16String(begin, end);
}

void RegisterLine(const UTF16String& inLine)
{
    Tokenizer tokens(inLine, UTF16String(1, '='), Tokenizer::Runs::kSkip);
    const UTF16String symbol = Trimmed(tokens.NextToken());
    const UTF16String path = Trimmed(tokens.NextToken());
    RegisterDirectory(path, symbol);
}

} // namespace

void RegisterDirectory(const UTF16String& inFullPathname, const UTF16String& inSymbolicName)
{
    ORL_INPUT_CONTRACT_AT(!inFullPathname.empty(), "DirectoryRegistry", 283);
    ORL_INPUT_CONTRACT_AT(!inSymbolicName.empty(), "DirectoryRegistry", 284);
    UTF16String pattern = inFullPathname;
    Directories()[inSymbolicName].swap(pattern);
}

void UnregisterDirectory(const UTF16String& inSymbolicName)
{
    ORL_INPUT_CONTRACT_AT(!inSymbolicName.empty(), "DirectoryRegistry", 296);
    Directories().erase(inSymbolicName);
}

UTF16String FindDirectory(const UTF16String& inSymbolicName)
{
    ORL_INPUT_CONTRACT_AT(!inSymbolicName.empty(), "DirectoryRegistry", 306);
    return Find(inSymbolicName, Directories().find(inSymbolicName), nullptr);
}

void RegisterDirectories(const ResourceCollection& inResources, const short& inResourceID)
{
    int size = 0;
    void* const resData = inResources.LoadResource(inResourceID, MakeString("ORLDIRECTORYTABLE"), size);
    ORL_ASSERT_AT(resData != 0, "DirectoryRegistry", 249, "ORL::DirectoryRegistry::RegisterDirectories");
    if (resData == nullptr) {
        return;
    }
    const std::string bytes(static_cast<const char*>(resData), static_cast<std::size_t>(size));
    tvxcore::iUTF16StringStream lines(MakeString(bytes));
    for (UTF16String line; std::getline(lines, line, static_cast<unsigned short>('\n'));) {
        RegisterLine(line);
    }
    inResources.ReleaseResource(resData);
}

} // namespace DirectoryRegistry
} // namespace ORL
