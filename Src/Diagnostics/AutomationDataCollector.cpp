#include <ORLAutomationDataCollector.h>

#include <tvxcore/Text.h>

namespace ORL {

using tvxcore::utility::AsciiToUTF16;

UTF16String AutomationDataCollector::kPerformanceTag = AsciiToUTF16("__Performance");
UTF16String AutomationDataCollector::kSuccessTag = AsciiToUTF16("__Success");
UTF16String AutomationDataCollector::kResultsTag = AsciiToUTF16("__Results");
UTF16String AutomationDataCollector::kErrorTag = AsciiToUTF16("__Error");

AutomationDataCollector::~AutomationDataCollector() = default;

AutomationDataCollector* AutomationDataCollector::Instance()
{
    static AutomationDataCollector sInstance;
    return &sInstance;
}

void AutomationDataCollector::AddResult(const UTF16String& inName, const Result& inResult)
{
    mCollection[inName].push_back(inResult);
}

void AutomationDataCollector::AddResults(const UTF16String& inName, const Results& inResults)
{
    Results& results = mCollection[inName];
    results.insert(results.end(), inResults.begin(), inResults.end());
}

AutomationDataCollector::Collection AutomationDataCollector::GetCollection()
{
    return mCollection;
}

void AutomationDataCollector::Clear()
{
    mCollection.clear();
}

AutomationDataCollector::Result AutomationDataCollector::SpecifyPerformanceTest()
{
    return {kPerformanceTag, AsciiToUTF16("True")};
}

} // namespace ORL
