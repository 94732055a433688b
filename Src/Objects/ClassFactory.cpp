#include <ORLClassFactory.h>

#include <Core/UntilUnload.h>
#include <ORLDebug.h>
#include <ORLException.h>
#include <Objects/ClassCategories.h>

#include <map>
#include <unordered_map>

namespace ORL {

namespace {

using ClassMap = std::map<Guid, ClassMapEntry>;

// Combines the two words of the Guid with one multiplication: both words are random except for a few bits.
struct HashOfGuid
{
    std::size_t operator()(const Guid& inID) const noexcept
    {
        return static_cast<std::size_t>(inID.FirstWord() ^ inID.SecondWord() * 0x9E3779B97F4A7C15u);
    }
};

// A second index in addition to the ordered map: with a thousand classes, a lookup costs ten cache misses in the map,
// but one or two in this index.
using ClassIndex = std::unordered_map<Guid, ClassMapEntry*, HashOfGuid>;
using CategoryMap = std::map<Guid, std::vector<Guid>>;

ClassMap& Classes()
{
    static UntilUnload<ClassMap> classes;
    return classes.Get();
}

ClassIndex& Index()
{
    static UntilUnload<ClassIndex> index;
    return index.Get();
}

CategoryMap& Categories()
{
    static UntilUnload<CategoryMap> categories;
    return categories.Get();
}

bool sWarnAboutUnregisteredClasses = true;

// Keeps an existing entry for the class. If this throws, nothing has changed.
void AddClass(const ClassMapEntry& inEntry)
{
    const auto [place, isNew] = Index().try_emplace(inEntry.mClassID, nullptr);
    if (!isNew) {
        return;
    }
    try {
        place->second = &Classes().insert(ClassMap::value_type(inEntry.mClassID, inEntry)).first->second;
    } catch (...) {
        Index().erase(place);
        throw;
    }
}

// Returns null for an unknown class.
ClassMapEntry* FindClass(const Guid& inClassID)
{
    const ClassIndex::const_iterator item = Index().find(inClassID);
    return item != Index().end() ? item->second : nullptr;
}

} // namespace

Result ClassFactory::RegisterORLClass(const Guid& inClassID, const char* inFirstName, const char* inSecondName,
                                      CreateClassFunction inCreate, GetClassCategoriesFunction inGetCategories)
{
    AddClass(ClassMapEntry{inClassID, inFirstName, inSecondName, inCreate});
    std::vector<Guid> categories;
    inGetCategories(categories);
    for (const Guid& category : categories) {
        GetOrCreateClassIDVector(Categories(), category).push_back(inClassID);
    }
    return kSuccess;
}

Result ClassFactory::CreateInstanceRef(const Guid& inClassID, InterfaceRef<ORLUnknown, ORLUnknown>& outRef)
{
    const ClassMapEntry* const entry = FindClass(inClassID);
    if (entry == nullptr || entry->mCreate == nullptr) {
        return kClassNotRegistered;
    }
    entry->mCreate(outRef);
    return kSuccess;
}

Result ClassFactory::CreateClassByCategory(const Guid& inCategory, unsigned int inIndex,
                                           InterfaceRef<ORLUnknown, ORLUnknown>& outRef)
{
    const CategoryMap::const_iterator category = Categories().find(inCategory);
    if (category == Categories().end()) {
        return kCategoryNotRegistered;
    }
    if (inIndex >= category->second.size()) {
        return kCategoryIndexOutOfRange;
    }
    return CreateInstanceRef(category->second[inIndex], outRef);
}

ClassMapEntry* ClassFactory::GetClassTokenFromClassID(const Guid& inClassID)
{
    const ClassMap::iterator item = Classes().find(inClassID);
    if (item == Classes().end()) {
        return nullptr;
    }
    ORL_ASSERT_AT(item->first == item->second.mClassID, "ClassFactory", 214,
                  "ORL::ClassFactory::GetClassTokenFromClassID");
    return &item->second;
}

Guid ClassFactory::GetClassIDFromClassToken(ClassMapEntry* const& inToken)
{
    return inToken->mClassID;
}

void ClassFactory::SetWarnAboutUnregisteredClasses(bool inWarn)
{
    sWarnAboutUnregisteredClasses = inWarn;
}

InterfaceRef<ORLUnknown, ORLUnknown> CreateClassInstanceRef(const Guid& inClassID)
{
    InterfaceRef<ORLUnknown, ORLUnknown> ref;
    if (!ResultSucceeded(ClassFactory::CreateInstanceRef(inClassID, ref))) {
        throw exClassNotFound();
    }
    return ref;
}

} // namespace ORL

void ORLGetClassCategories(std::vector<ORL::Guid>&)
{
}
