// Question: is building a log line from a localised template fast enough for hot code?
#include <Harness.h>

#include <ORLParamString.h>
#include <ORLString.h>

#include <boost/algorithm/string.hpp>
#include <boost/format.hpp>
#include <string>
#include <vector>

namespace {

void CompareTemplates()
{
    const std::string narrowFormat = "Copying %1 of %2 files from %3 to %4";
    const ORL::StdParamVector narrowParams{"17", "240", "C:\\Cards\\A001", "D:\\Media"};
    const UTF16String format = ORL::MakeString(narrowFormat);
    const ORL::ParamVector params{ORL::MakeString("17"), ORL::MakeString("240"), ORL::MakeString("C:\\Cards\\A001"),
                                  ORL::MakeString("D:\\Media")};
    const std::vector<std::string> values{"17", "240", "C:\\Cards\\A001", "D:\\Media"};
    Bench::Group("template with 4 parameters")
        .Ours("ParseString", Bench::AtMost(0.25, "boost::format"),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      UTF16String text;
                      ORL::ParseString(format, params, text);
                      Bench::DoNotOptimize(text.data());
                  }
              })
        .Ours("ParseStdString", Bench::AtMost(0.25, "boost::format"),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      std::string text;
                      ORL::ParseStdString(narrowFormat, narrowParams, text);
                      Bench::DoNotOptimize(text.data());
                  }
              })
        .Peer("boost::format",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      boost::format text("Copying %1% of %2% files from %3% to %4%");
                      for (const std::string& value : values) {
                          text % value;
                      }
                      const std::string result = text.str();
                      Bench::DoNotOptimize(result.data());
                  }
              })
        .Run();
}

void CompareSplitting()
{
    const std::string narrow = "application=C:\\Program Files\\Editor";
    const UTF16String text = ORL::MakeString(narrow);
    const UTF16String separator = ORL::MakeString("=");
    const std::basic_string<char16_t> wide = u"application=C:\\Program Files\\Editor";
    Bench::Group("a line cut at its separator")
        .Ours("SplitString", Bench::AtMost(0.5, "boost::split of a 16-bit string"),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      UTF16String first;
                      UTF16String second;
                      ORL::SplitString(text, separator, first, second);
                      Bench::DoNotOptimize(second.data());
                  }
              })
        .Peer("boost::split of a 16-bit string",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      std::vector<std::u16string> parts;
                      boost::split(
                          parts, wide, [](char16_t unit) { return unit == u'='; }, boost::token_compress_on);
                      Bench::DoNotOptimize(parts.data());
                  }
              })
        .Peer("boost::split of an 8-bit string",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      std::vector<std::string> parts;
                      boost::split(
                          parts, narrow, [](char unit) { return unit == '='; }, boost::token_compress_on);
                      Bench::DoNotOptimize(parts.data());
                  }
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    CompareTemplates();
    CompareSplitting();
    return Bench::Finish();
}
