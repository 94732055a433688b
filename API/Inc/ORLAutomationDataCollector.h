// Floor: Diagnostics
// A process-wide store of named results of automation runs, and its export as JSON.
//
// Not thread-safe: callers on several threads must serialise their calls, including the first call of Instance.
#pragma once

#include <ORLConfig.h>

#include <tvxcore/String.h>

#include <map>
#include <ostream>
#include <utility>
#include <vector>

namespace ORL {

/// Stores results by name, in the order they were added; duplicates are kept. The library itself adds no results.
///
/// Owner:    the library owns the instance.
/// Threads:  not thread-safe.
/// Failure:  throws only std::bad_alloc.
class ORL_API AutomationDataCollector
{
public:
    /// A key and a value.
    using Result = std::pair<UTF16String, UTF16String>;
    using Results = std::vector<Result>;

    /// Maps each name to its results. Ordered by the 16-bit units of the names.
    using Collection = std::map<UTF16String, Results>;

    // Well-known keys.
    static UTF16String kPerformanceTag; ///< "__Performance": the run is a performance test
    static UTF16String kSuccessTag;     ///< "__Success"
    static UTF16String kResultsTag;     ///< "__Results"
    static UTF16String kErrorTag;       ///< "__Error"

    virtual ~AutomationDataCollector();

    /// Returns the store. The first call creates it; it is destroyed when the process exits.
    static AutomationDataCollector* Instance();

    /// Appends a result to the results of inName. Adds the name if it is new.
    void AddResult(const UTF16String& inName, const Result& inResult);

    /// Appends all results in order. Adds the name even if inResults is empty.
    void AddResults(const UTF16String& inName, const Results& inResults);

    /// Returns a copy of all names with their results.
    Collection GetCollection();

    /// Removes all names and their results.
    void Clear();

    /// Returns the pair of kPerformanceTag and "True", with which a caller marks a performance test. Does not add it.
    Result SpecifyPerformanceTest();

private:
    Collection mCollection;
};

/// Writes a collection as one JSON object in UTF-8, followed by a newline. Each name is a member; its value is an array
/// of objects with the members "key" and "value". An unpaired surrogate is written as U+FFFD. Names and results keep
/// their order.
ORL_API void WriteAutomationResults(std::ostream& ioStream, const AutomationDataCollector::Collection& inCollection);

} // namespace ORL
