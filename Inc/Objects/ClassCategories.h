// Finds or creates the list of a category's classes.
#pragma once

#include <ORLDebug.h>
#include <tvxcore/Guid.h>

#include <vector>

namespace ORL {

/// Returns the vector of a category; creates it if missing. CategoryMap is a std::map from Guid to std::vector<Guid>.
template <class CategoryMap>
std::vector<tvxcore::utility::Guid>& GetOrCreateClassIDVector(CategoryMap& inCategoryMap,
                                                              const tvxcore::utility::Guid& inCategory)
{
    typename CategoryMap::iterator i = inCategoryMap.find(inCategory);
    if (i != inCategoryMap.end()) {
        return i->second;
    }
    inCategoryMap.insert(typename CategoryMap::value_type(inCategory, std::vector<tvxcore::utility::Guid>()));
    i = inCategoryMap.find(inCategory);
    ORL_ASSERT_AT(i != inCategoryMap.end(), "ClassFactory", 288, "ORL::ClassFactory::GetOrCreateClassIDVector");
    return i->second;
}

} // namespace ORL
