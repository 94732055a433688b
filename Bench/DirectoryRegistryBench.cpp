// Question: can a host afford to look up a symbolic directory each time it opens a file?
#include <Harness.h>

#include <ORLDirectoryRegistry.h>

#include <map>
#include <string>

namespace {

using Table = std::map<UTF16String, UTF16String>;

UTF16String Text(const std::string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

// Replaces each "$(symbol)" with the expansion of its pattern, as a host's own code would.
UTF16String Expand(const Table& inTable, const UTF16String& inSymbol)
{
    const auto found = inTable.find(inSymbol);
    if (found == inTable.end()) {
        return UTF16String();
    }
    const UTF16String& pattern = found->second;
    const unsigned short kOpen[] = {'$', '(', 0};
    UTF16String path;
    std::size_t place = 0;
    while (true) {
        const std::size_t open = pattern.find(kOpen, place);
        const std::size_t close = open == UTF16String::npos ? open : pattern.find(')', open);
        if (close == UTF16String::npos) {
            path.append(pattern, place, UTF16String::npos);
            return path;
        }
        path.append(pattern, place, open - place);
        path += Expand(inTable, pattern.substr(open + 2, close - open - 2));
        place = close + 1;
    }
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    const std::pair<const char*, const char*> kRows[] = {
        {"application", "C:\\Program Files\\Example\\"},
        {"data", "$(application)Data\\"},
        {"presets", "$(data)Presets\\"},
        {"titles", "$(presets)Titles\\Lower thirds"},
    };
    Table table;
    for (const auto& [symbol, pattern] : kRows) {
        table[Text(symbol)] = Text(pattern);
        ORL::DirectoryRegistry::RegisterDirectory(Text(pattern), Text(symbol));
    }
    for (int i = 0; i < 50; ++i) { // real tables also contain other symbols
        const UTF16String symbol = Text("symbol " + std::to_string(i));
        table[symbol] = Text("D:\\Elsewhere");
        ORL::DirectoryRegistry::RegisterDirectory(Text("D:\\Elsewhere"), symbol);
    }
    const UTF16String wanted = Text("titles");
    if (Expand(table, wanted) != ORL::DirectoryRegistry::FindDirectory(wanted)) {
        std::fprintf(stderr, "the two ways differ\n");
        return 1;
    }
    Bench::Group("a directory three references deep")
        .Ours("FindDirectory", Bench::AtMost(1.2, "hand-written over std::map"),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const UTF16String path = ORL::DirectoryRegistry::FindDirectory(wanted);
                      Bench::DoNotOptimize(path.data());
                  }
              })
        .Peer("hand-written over std::map",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      const UTF16String path = Expand(table, wanted);
                      Bench::DoNotOptimize(path.data());
                  }
              })
        .Run();
    return Bench::Finish();
}
