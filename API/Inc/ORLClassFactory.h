// Floor: Objects
// Classes published under an identifier, to be made by modules that know nothing else of them.
#pragma once

#include <ORLConfig.h>
#include <ORLInterface.h>
#include <ORLResult.h>
#include <tvxcore/Guid.h>

#include <vector>

namespace ORL {

/// Makes an instance and stores it in its argument. May throw; the exception reaches who asked for the instance.
using CreateClassFunction = void (*)(InterfaceRef<ORLUnknown, ORLUnknown>&);

/// Appends the categories of a class to an empty vector.
using GetClassCategoriesFunction = void (*)(std::vector<Guid>&);

/// What is known of one registered class. Its address is the class's token, stable for the life of the process.
struct ClassMapEntry
{
    Guid mClassID;                // the key under which the entry stands
    const char* mFirstName;       // the two texts of the registration: stored as pointers and not read here
    const char* mSecondName;
    CreateClassFunction mCreate;
};

/// The process's register of classes and categories.
///
/// No lock is taken: registration belongs to load and start-up, on one thread; making instances from several threads is
/// safe once all registrations are finished. Nothing is ever unregistered, so a module that has registered a class stays
/// loaded. Exceptions of a create function and std::bad_alloc pass through.
///
/// A registration that runs out of memory is not undone: the class may be known, and stand in its first categories but not in
/// the others. To register it again completes it, but puts it a second time where it stands already.
class ORL_API ClassFactory
{
public:
    /// Publishes a class and appends it to its categories. A class that is already registered keeps its first entry, but
    /// is appended to the categories again. The texts must live as long as the process. Always kSuccess.
    /// A class without categories passes ORLGetClassCategories.
    static Result RegisterORLClass(const Guid& inClassID, const char* inFirstName, const char* inSecondName,
                                   CreateClassFunction inCreate, GetClassCategoriesFunction inGetCategories);

    /// Makes an instance. kClassNotRegistered leaves outRef untouched; what the create function stored is not tested.
    static Result CreateInstanceRef(const Guid& inClassID, InterfaceRef<ORLUnknown, ORLUnknown>& outRef);

    /// Makes an instance of the class at a position, counted from 0 in order of registration, of a category.
    /// kCategoryNotRegistered, kCategoryIndexOutOfRange and kClassNotRegistered leave outRef untouched.
    static Result CreateClassByCategory(const Guid& inCategory, unsigned int inIndex,
                                        InterfaceRef<ORLUnknown, ORLUnknown>& outRef);

    /// The token of a class, null when it is unknown.
    static ClassMapEntry* GetClassTokenFromClassID(const Guid& inClassID);

    /// The class of a token, which must be one.
    static Guid GetClassIDFromClassToken(ClassMapEntry* const& inToken);

    /// Stores the wish, which starts as true. Nothing here reads it.
    static void SetWarnAboutUnregisteredClasses(bool inWarn);
};

/// Makes an instance. Throws exClassNotFound where ClassFactory::CreateInstanceRef answers kClassNotRegistered.
ORL_API InterfaceRef<ORLUnknown, ORLUnknown> CreateClassInstanceRef(const Guid& inClassID);

} // namespace ORL

/// The category function of a class that belongs to no category: leaves the vector empty.
ORL_API void ORLGetClassCategories(std::vector<ORL::Guid>& outCategories);
