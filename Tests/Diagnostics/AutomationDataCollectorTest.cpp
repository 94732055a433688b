// Tests AutomationDataCollector and its output format, which another library parses.
#include <ORLAutomationDataCollector.h>

#include <TextHelpers.h>
#include <tvxcore/Text.h>

#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>
#include <sstream>
#include <type_traits>

using namespace ORLTest;
using ORL::AutomationDataCollector;
using Result = AutomationDataCollector::Result;
using Results = AutomationDataCollector::Results;
using Collection = AutomationDataCollector::Collection;

namespace {

static_assert(std::has_virtual_destructor_v<AutomationDataCollector>);
static_assert(std::is_same_v<Collection, std::map<UTF16String, std::vector<std::pair<UTF16String, UTF16String>>>>);

class Collector : public testing::Test
{
protected:
    Collector() { Store().Clear(); }
    ~Collector() override { Store().Clear(); }

    static AutomationDataCollector& Store() { return *AutomationDataCollector::Instance(); }
};

std::string Json(const Collection& inCollection)
{
    std::ostringstream stream;
    ORL::WriteAutomationResults(stream, inCollection);
    return stream.str();
}

std::string Narrow(const UTF16String& inText)
{
    return std::string(inText.begin(), inText.end());
}

} // namespace

TEST_F(Collector, Instance_IsTheSameEachTime)
{
    EXPECT_EQ(AutomationDataCollector::Instance(), AutomationDataCollector::Instance());
}

TEST_F(Collector, Tags_HaveTheirValues)
{
    EXPECT_EQ("__Performance", Narrow(AutomationDataCollector::kPerformanceTag));
    EXPECT_EQ("__Success", Narrow(AutomationDataCollector::kSuccessTag));
    EXPECT_EQ("__Results", Narrow(AutomationDataCollector::kResultsTag));
    EXPECT_EQ("__Error", Narrow(AutomationDataCollector::kErrorTag));
    static_assert(!std::is_const_v<decltype(AutomationDataCollector::kErrorTag)>);
}

TEST_F(Collector, Results_StayInTheOrderOfArrivalUnderTheirName)
{
    Store().AddResult(Units(u"b"), {Units(u"2"), Units(u"two")});
    Store().AddResult(Units(u"a"), {Units(u"x"), Units(u"y")});
    Store().AddResult(Units(u"b"), {Units(u"1"), Units(u"one")});
    Store().AddResults(Units(u"b"), {{Units(u"3"), Units(u"three")}, {Units(u"0"), Units(u"zero")}});
    const Collection collection = Store().GetCollection();
    ASSERT_EQ(2u, collection.size());
    EXPECT_EQ("a", Narrow(collection.begin()->first));
    const Results& results = collection.at(Units(u"b"));
    ASSERT_EQ(4u, results.size());
    EXPECT_EQ("2", Narrow(results[0].first));
    EXPECT_EQ("1", Narrow(results[1].first));
    EXPECT_EQ("3", Narrow(results[2].first));
    EXPECT_EQ("zero", Narrow(results[3].second));
}

TEST_F(Collector, AddResultsWithNone_MakesANameWithoutResults)
{
    Store().AddResults(Units(u"empty"), {});
    const Collection collection = Store().GetCollection();
    ASSERT_EQ(1u, collection.size());
    EXPECT_TRUE(collection.at(Units(u"empty")).empty());
}

TEST_F(Collector, GetCollection_GivesACopy)
{
    Store().AddResult(Units(u"a"), {Units(u"k"), Units(u"v")});
    const Collection before = Store().GetCollection();
    Store().AddResult(Units(u"a"), {Units(u"k"), Units(u"v")});
    Store().AddResult(Units(u"b"), {Units(u"k"), Units(u"v")});
    EXPECT_EQ(1u, before.size());
    EXPECT_EQ(1u, before.at(Units(u"a")).size());
    EXPECT_EQ(2u, Store().GetCollection().size());
}

TEST_F(Collector, Clear_RemovesAllNames)
{
    Store().AddResults(Units(u"a"), {});
    Store().AddResult(Units(u"b"), {});
    Store().Clear();
    EXPECT_TRUE(Store().GetCollection().empty());
    Store().Clear();
}

TEST_F(Collector, OneResultAddedTwice_IsKeptTwice)
{
    const Result result(Units(u"k"), Units(u"v"));
    Store().AddResult(Units(u"a"), result);
    Store().AddResult(Units(u"a"), result);
    EXPECT_EQ((Results{result, result}), Store().GetCollection().at(Units(u"a")));
}

TEST_F(Collector, AddResults_OfAVectorOfTheCollectionsOwn_IsACopy)
{
    Store().AddResult(Units(u"a"), {Units(u"k"), Units(u"v")});
    Store().AddResults(Units(u"a"), Store().GetCollection().at(Units(u"a")));
    EXPECT_EQ(2u, Store().GetCollection().at(Units(u"a")).size());
}

TEST_F(Collector, SpecifyPerformanceTest_ReturnsThePairAndAddsNothing)
{
    const Result pair = Store().SpecifyPerformanceTest();
    EXPECT_EQ("__Performance", Narrow(pair.first));
    EXPECT_EQ("True", Narrow(pair.second));
    EXPECT_TRUE(Store().GetCollection().empty());
}

TEST(WriteAutomationResults, ACollection_IsOneJsonObject)
{
    EXPECT_EQ("{}\n", Json({}));
    EXPECT_EQ("{\n  \"a\": []\n}\n", Json({{Units(u"a"), {}}}));
    EXPECT_EQ("{\n  \"a\": [\n    {\"key\":\"k\",\"value\":\"v\"},\n    {\"key\":\"k\",\"value\":\"v\"}\n  ],\n  "
              "\"b\": []\n}\n",
              Json({{Units(u"a"), {{Units(u"k"), Units(u"v")}, {Units(u"k"), Units(u"v")}}}, {Units(u"b"), {}}}));
}

TEST(WriteAutomationResults, TextsOfEveryKind_ReadBackWithAnotherParser)
{
    const std::u16string texts[] = {u"plain",
                                    u"",
                                    u"\"quoted\" \\ /",
                                    u"tab\tline\nreturn\r",
                                    u"caf\u00e9 \u65e5\u672c \U0001F600",
                                    std::u16string(u"zero\0inside", 11),
                                    u"\u0001\u001f\u007f\u2028",
                                    u"a.b.c"};
    Collection collection;
    Results& results = collection[Units(u"name")];
    for (const std::u16string& text : texts) {
        results.emplace_back(Units(u"key"), Units(text));
    }
    std::istringstream stream(Json(collection));
    boost::property_tree::ptree tree;
    ASSERT_NO_THROW(boost::property_tree::read_json(stream, tree));
    const auto& array = tree.get_child("name");
    ASSERT_EQ(std::size(texts), array.size());
    std::size_t at = 0;
    for (const auto& [unused, element] : array) {
        EXPECT_EQ("key", element.get<std::string>("key"));
        const std::string value = element.get<std::string>("value");
        const UTF8String expected = tvxcore::utility::UTF16to8(Units(texts[at]));
        EXPECT_EQ(std::string(expected.begin(), expected.end()), value) << "text " << at;
        ++at;
    }
}

TEST(WriteAutomationResults, HalfASurrogatePair_IsReplacedAndNamesStayApart)
{
    const Collection collection = {{UTF16String(1, 0xD800), {{Units(u"k"), UTF16String(1, 0xDC00)}}},
                                   {UTF16String(1, 0xD801), {}}};
    EXPECT_EQ(
        "{\n  \"\xEF\xBF\xBD\": [\n    {\"key\":\"k\",\"value\":\"\xEF\xBF\xBD\"}\n  ],\n  \"\xEF\xBF\xBD\": []\n}\n",
        Json(collection));
}
