#include "ResourceCheck.h"

#include "ResourceNames.h"
#include "Text.h"

#include <map>
#include <set>

namespace orl {

namespace {

using ORL::Resources::FileEntry;

constexpr unsigned short kNeutral = 0;
constexpr unsigned short kMenu = 4;
constexpr unsigned short kDialog = 5;
constexpr unsigned short kString = 6;

// The parameters in a string ("%1" ...), each once.
using Parameters = std::set<std::string>;

Parameters ParametersOf(const UTF16String& inText)
{
    Parameters parameters;
    for (std::size_t place = 0; place + 1 < inText.size(); ++place) {
        if (inText[place] == '%' && inText[place + 1] == '%') {
            ++place;
        } else if (inText[place] == '%' && inText[place + 1] >= '0' && inText[place + 1] <= '9') {
            parameters.insert("%" + std::string(1, static_cast<char>(inText[place + 1])));
        }
    }
    return parameters;
}

std::string FormatSize(const Parameters& inParameters)
{
    std::string words;
    for (const std::string& parameter : inParameters) {
        words += (words.empty() ? "" : " ") + parameter;
    }
    return words.empty() ? "none" : words;
}

// Maps the displayed name of each translated resource to its parameters in each language.
class Translations
{
public:
    explicit Translations(const ORL::Resources::ResourceFile& inFile)
    {
        for (const FileEntry& entry : inFile.GetEntries()) {
            Add(entry);
        }
    }

    std::vector<std::string> TakeFaults()
    {
        for (const auto& translation : mTranslations) {
            FindMissing(translation.first, translation.second);
            FindDifferent(translation.first, translation.second);
        }
        return std::move(mFaults);
    }

private:
    using InLanguages = std::map<unsigned short, Parameters>;

    void Add(const FileEntry& inEntry)
    {
        const std::string where = NameOfType(inEntry.mType) + " " + NameOfResource(inEntry.mName);
        if (!ORL::Resources::IsWellFormed(inEntry)) {
            mFaults.push_back(where + ": cannot be read in " + NameOfLanguage(inEntry.mLanguage));
            return;
        }
        const unsigned short type = inEntry.mType.mIsText ? 0 : inEntry.mType.mID;
        if (type == kMenu || type == kDialog) {
            AddTranslation(where, inEntry.mLanguage, Parameters());
        } else if (type == kString && !inEntry.mName.mIsText) {
            AddStrings(inEntry);
        }
    }

    void AddStrings(const FileEntry& inEntry)
    {
        std::vector<UTF16String> texts;
        ORL::Resources::ReadStringBlock(inEntry, texts);
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (!texts[i].empty()) {
                const unsigned int id = (inEntry.mName.mID - 1u) * 16 + static_cast<unsigned int>(i);
                AddTranslation("text " + std::to_string(id), inEntry.mLanguage, ParametersOf(texts[i]));
            }
        }
    }

    void AddTranslation(const std::string& inWhere, unsigned short inLanguage, Parameters inParameters)
    {
        mTranslations[inWhere][inLanguage] = std::move(inParameters);
        if (inLanguage != kNeutral) {
            mLanguages.insert(inLanguage);
        }
    }

    void FindMissing(const std::string& inWhere, const InLanguages& inLanguages)
    {
        if (inLanguages.count(kNeutral) != 0) {
            return;
        }
        for (const unsigned short language : mLanguages) {
            if (inLanguages.count(language) == 0) {
                mFaults.push_back(inWhere + ": present in " + NameOfLanguage(inLanguages.begin()->first)
                                  + ", missing in " + NameOfLanguage(language));
            }
        }
    }

    void FindDifferent(const std::string& inWhere, const InLanguages& inLanguages)
    {
        const auto& first = *inLanguages.begin();
        for (const auto& other : inLanguages) {
            if (other.second != first.second) {
                mFaults.push_back(inWhere + ": parameters differ: " + NameOfLanguage(first.first) + " has "
                                  + FormatSize(first.second) + ", " + NameOfLanguage(other.first) + " has "
                                  + FormatSize(other.second));
            }
        }
    }

    std::map<std::string, InLanguages> mTranslations;
    std::set<unsigned short> mLanguages;
    std::vector<std::string> mFaults;
};

} // namespace

std::vector<std::string> FaultsOf(const ORL::Resources::ResourceFile& inFile)
{
    std::vector<std::string> faults = Translations(inFile).TakeFaults();
    if (inFile.IsDamaged()) {
        faults.insert(faults.begin(), "the file is damaged: some resources cannot be read");
    }
    return faults;
}

} // namespace orl
