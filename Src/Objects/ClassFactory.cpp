#include <ORLClassFactory.h>

#include <ClassCategories.h>
#include <ORLDebug.h>
#include <ORLException.h>

#include <map>

namespace ORL {

namespace {

using ClassMap = std::map<Guid, ClassMapEntry>;
using CategoryMap = std::map<Guid, std::vector<Guid>>;

ClassMap& Classes()
{
    static ClassMap classes;
    return classes;
}

CategoryMap& Categories()
{
    static CategoryMap categories;
    return categories;
}

bool sWarnAboutUnregisteredClasses = true;

// Null for an unknown class.
CreateClassFunction FindCreateFunction(const Guid& inClassID)
{
    const ClassMap::const_iterator item = Classes().find(inClassID);
    return item != Classes().end() ? item->second.mCreate : nullptr;
}

} // namespace

Result ClassFactory::RegisterORLClass(const Guid& inClassID, const char* inFirstName, const char* inSecondName,
                                      CreateClassFunction inCreate, GetClassCategoriesFunction inGetCategories)
{
    Classes().insert(
        ClassMap::value_type(inClassID, ClassMapEntry{inClassID, inFirstName, inSecondName, inCreate}));
    std::vector<Guid> categories;
    inGetCategories(categories);
    for (const Guid& category : categories) {
        GetOrCreateClassIDVector(Categories(), category).push_back(inClassID);
    }
    return kSuccess;
}

Result ClassFactory::CreateInstanceRef(const Guid& inClassID, InterfaceRef<ORLUnknown, ORLUnknown>& outRef)
{
    const CreateClassFunction create = FindCreateFunction(inClassID);
    if (create == nullptr) {
        return kClassNotRegistered;
    }
    create(outRef);
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

void ORLGetClassCategories(std::vector<ORL::Guid>&) {}
