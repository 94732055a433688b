// Floor: Diagnostics
// A process-wide store of named results, for automation runs to read back, and its text as JSON.
//
// Not thread-safe: callers on several threads serialise themselves, the first call of Instance included.
#pragma once

#include <ORLConfig.h>

#include <tvxcore/String.h>

#include <map>
#include <ostream>
#include <utility>
#include <vector>

namespace ORL {

/// Results are kept under a name, in order of arrival; equal ones are all kept. The library itself adds none.
/// Throws std::bad_alloc only.
class ORL_API AutomationDataCollector
{
public:
    /// A key and a value.
    using Result = std::pair<UTF16String, UTF16String>;
    using Results = std::vector<Result>;

    /// By name, in the order of the names' units.
    using Collection = std::map<UTF16String, Results>;

    // Keys that readers of a collection know.
    static UTF16String kPerformanceTag; ///< "__Performance": the run is a performance test
    static UTF16String kSuccessTag;     ///< "__Success"
    static UTF16String kResultsTag;     ///< "__Results"
    static UTF16String kErrorTag;       ///< "__Error"

    virtual ~AutomationDataCollector();

    /// The store. It is made by the first call, belongs to the library, and is destroyed when the process exits.
    static AutomationDataCollector* Instance();

    /// Appends a result to those of the name, which is entered if it is new.
    void AddResult(const UTF16String& inName, const Result& inResult);

    /// Appends all in order. The name is entered even if there are none.
    void AddResults(const UTF16String& inName, const Results& inResults);

    /// A copy of all names with their results.
    Collection GetCollection();

    /// Removes all names.
    void Clear();

    /// The pair of kPerformanceTag and "True". Adds nothing: the caller adds the pair to mark a run.
    Result SpecifyPerformanceTest();

private:
    Collection mCollection;
};

/// Writes a collection as one JSON object in UTF-8, with a line end after it. Each name is a member; its results are an
/// array of objects with the members "key" and "value". Half a surrogate pair is written as U+FFFD. Names and results
/// keep their order.
ORL_API void WriteAutomationResults(std::ostream& ioStream, const AutomationDataCollector::Collection& inCollection);

} // namespace ORL
