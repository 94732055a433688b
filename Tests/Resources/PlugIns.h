// Helpers for the tests that load the plug-ins with resources.
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

/// While an instance exists, localised lookups use its language.
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

/// Returns the number of times that the library queried the path of a module.
unsigned int CountOfPathQueries();

/// Returns the host path of a file in this program's folder.
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

/// Returns the data of a lookup as a string, or "-" if nothing was found.
inline std::string TextOf(const void* inData, int inSize)
{
    return inData != nullptr ? std::string(static_cast<const char*>(inData), static_cast<std::size_t>(inSize)) : "-";
}

/// Returns the data that inLookup finds, as a string. inLookup stores the size of the data in its argument.
template <class Lookup>
std::string AnswerOf(const Lookup& inLookup)
{
    int size = 0;
    const void* const data = inLookup(size);
    return TextOf(data, size);
}

} // namespace ORLTest
