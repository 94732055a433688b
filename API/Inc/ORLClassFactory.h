// Floor: Objects
// Classes registered under an identifier, so that modules can create instances without knowing the class.
#pragma once

#include <ORLConfig.h>
#include <ORLInterface.h>
#include <ORLResult.h>
#include <tvxcore/Guid.h>

#include <vector>

namespace ORL {

/// Creates an instance and stores it in the argument. May throw: the exception propagates to the caller that requested
/// the instance.
using CreateClassFunction = void (*)(InterfaceRef<ORLUnknown, ORLUnknown>&);

/// Appends the categories of a class to an empty vector.
using GetClassCategoriesFunction = void (*)(std::vector<Guid>&);

/// The record of one registered class. The record's address is the class's token, stable for the life of the process.
struct ClassMapEntry
{
    Guid mClassID;               ///< the key of the entry
    const char* mFirstName;      ///< the two names passed at registration; the pointers are stored, never dereferenced
    const char* mSecondName;     ///< see mFirstName
    CreateClassFunction mCreate; ///< creates one instance
};

/// The process's registry of classes and categories.
///
/// Nothing is ever unregistered, so a module that has registered a class must stay loaded.
/// Owner:    the process. The caller owns the names that it passes.
/// Threads:  takes no lock. Register on one thread, at load or start-up. After the last registration, instances may be
///           created from any thread.
/// Failure:  std::bad_alloc and exceptions thrown by a create function propagate. If memory runs out, a registration is
///           not undone: the class may be registered, but listed only in the first of its categories. Registering the
///           class again completes the registration, but adds a second entry to each category that already lists the
///           class.
class ORL_API ClassFactory
{
public:
    /// Registers a class and appends it to its categories. A class that is already registered keeps its first entry,
    /// but is appended to the categories again. Both names must live as long as the process. Always returns kSuccess.
    /// For a class without categories, pass ORLGetClassCategories as inGetCategories.
    static Result RegisterORLClass(const Guid& inClassID, const char* inFirstName, const char* inSecondName,
                                   CreateClassFunction inCreate, GetClassCategoriesFunction inGetCategories);

    /// Creates an instance. Returns kClassNotRegistered, with outRef untouched, for an unknown class. Does not check
    /// the instance that the create function stored.
    static Result CreateInstanceRef(const Guid& inClassID, InterfaceRef<ORLUnknown, ORLUnknown>& outRef);

    /// Creates an instance of one class of a category. inIndex counts from 0 in order of registration. Returns
    /// kCategoryNotRegistered, kCategoryIndexOutOfRange or kClassNotRegistered, with outRef untouched, if there is no
    /// such class.
    static Result CreateClassByCategory(const Guid& inCategory, unsigned int inIndex,
                                        InterfaceRef<ORLUnknown, ORLUnknown>& outRef);

    /// Returns the token of a class, or null if it is unknown.
    static ClassMapEntry* GetClassTokenFromClassID(const Guid& inClassID);

    /// Returns the class identifier of a token. inToken must be valid.
    static Guid GetClassIDFromClassToken(ClassMapEntry* const& inToken);

    /// Stores a flag, initially true, that the library does not read.
    static void SetWarnAboutUnregisteredClasses(bool inWarn);
};

/// Creates an instance. Throws exClassNotFound if the class is not registered.
ORL_API InterfaceRef<ORLUnknown, ORLUnknown> CreateClassInstanceRef(const Guid& inClassID);

} // namespace ORL

/// The category function of a class without categories: leaves the vector empty.
ORL_API void ORLGetClassCategories(std::vector<ORL::Guid>& outCategories);
