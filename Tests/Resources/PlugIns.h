// The modules with resources that were built beside the tests.
#pragma once

#include <ProcessRunner.h>
#include <TextHelpers.h>

#include <ORLHostPath.h>
#include <ORLHostSettings.h>
#include <ORLModule.h>
#include <ORLResult.h>

#include <gtest/gtest.h>
#include <string>

namespace ORLTest {

using ModulePtr = ORL::ObjectPtr<ORL::Module, ORL::AtomicValue>;

/// While it lives, localised lookups ask for this language.
class LanguageScope
{
public:
    explicit LanguageScope(unsigned short inLanguage) : mEarlier(ORL::GetLanguageID())
    {
        ORL::SetLanguageID(inLanguage);
    }
    ~LanguageScope() { ORL::SetLanguageID(mEarlier); }
    LanguageScope(const LanguageScope&) = delete;
    LanguageScope& operator=(const LanguageScope&) = delete;

private:
    const unsigned short mEarlier;
};

/// How often the platform was asked for the path of a module.
unsigned int CountOfPathQueries();

/// The host path of a file beside this program.
inline std::string FileBeside(const std::string& inName)
{
    return FolderOfThisProgram() + inName;
}

inline std::string PlugInFile(const std::string& inName)
{
    return FileBeside(inName + ORL_PLUG_IN_SUFFIX);
}

inline UTF16String LibraryPath(const std::string& inHostPath)
{
    return ORL::PathUtils::FromHostPath(inHostPath);
}

inline ModulePtr LoadModule(const std::string& inHostPath)
{
    ModulePtr module;
    EXPECT_EQ(ORL::kSuccess, ORL::Module::Load(LibraryPath(inHostPath), module)) << inHostPath;
    return module;
}

inline ModulePtr LoadPlugIn(const std::string& inName)
{
    return LoadModule(PlugInFile(inName));
}

/// The data of a lookup as text; "-" for none.
inline std::string TextOf(const void* inData, int inSize)
{
    return inData != nullptr ? std::string(static_cast<const char*>(inData), static_cast<std::size_t>(inSize)) : "-";
}

/// The data that inLookup returns, as text. It stores the size where it is told to.
template <class Lookup>
std::string AnswerOf(const Lookup& inLookup)
{
    int size = 0;
    const void* const data = inLookup(size);
    return TextOf(data, size);
}

} // namespace ORLTest
