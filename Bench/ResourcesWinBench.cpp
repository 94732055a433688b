// Question: what does the library's lookup add to the cost of the system's own? The strings and names are those of
// ResourcesBench.
#include <Harness.h>
#include <PlugIn.h>

#include <ORLModule.h>
#include <ORLStringResources.h>
#include <tvxcore/String.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <windows.h>

namespace {

const wchar_t* AsWide(const unsigned short* inText)
{
    return reinterpret_cast<const wchar_t*>(inText);
}

// The system finds the plug-in next to the program.
ORL::ObjectPtr<ORL::Module> LoadPlugIn()
{
    const std::u16string file(ORL_BENCH_PLUG_IN);
    ORL::ObjectPtr<ORL::Module> module;
    if (!ORL::ResultSucceeded(ORL::Module::Load(UTF16String(file.begin(), file.end()), module))) {
        std::fprintf(stderr, "cannot load the plug-in\n");
        std::exit(1);
    }
    return module;
}

void CompareTexts(const ORL::Module& inModule)
{
    for (const unsigned int position : {0u, 15u}) {
        wchar_t buffer[64];
        UTF16String text;
        if (!ORL::LoadStringW(inModule, position, text) || text.size() != 40
            || ::LoadStringW(inModule.GetNativeModule(), position, buffer, 64) != 40) {
            std::fprintf(stderr, "the texts are missing\n");
            std::exit(1);
        }
        Bench::Group("a text of 40 units at position " + std::to_string(position) + " of 16")
            .Ours("LoadStringW", Bench::AtMost(1.2, "the system's LoadStringW"),
                  [&](std::uint64_t n) {
                      while (n-- != 0) {
                          ORL::LoadStringW(inModule, position, text);
                          Bench::DoNotOptimize(text.data());
                      }
                  })
            .Peer("the system's LoadStringW",
                  [&](std::uint64_t n) {
                      while (n-- != 0) {
                          ::LoadStringW(inModule.GetNativeModule(), position, buffer, 64);
                          Bench::DoNotOptimize(buffer[0]);
                      }
                  })
            .Run();
    }
}

void CompareNames(const ORL::Module& inModule)
{
    std::vector<UTF16String> names;
    for (int i = 0; i < Bench::kNames; ++i) {
        const std::string name = Bench::NameOf(i);
        names.emplace_back(name.begin(), name.end());
    }
    const HMODULE native = inModule.GetNativeModule();
    Bench::Group("one of 1000 names")
        .Ours("FindLocalizedResource", Bench::Goal{},
              [&](std::uint64_t n) {
                  int size = 0;
                  for (std::size_t i = 0; n-- != 0; i = (i + 617) % Bench::kNames) {
                      const void* const data =
                          inModule.FindLocalizedResource(names[i].c_str(), ORL::MakeResourceID(10), size);
                      Bench::DoNotOptimize(data);
                  }
              })
        .Peer("FindResourceExW to LockResource",
              [&](std::uint64_t n) {
                  for (std::size_t i = 0; n-- != 0; i = (i + 617) % Bench::kNames) {
                      const HRSRC found =
                          ::FindResourceExW(native, MAKEINTRESOURCEW(10), AsWide(names[i].c_str()), 1033);
                      const DWORD size = ::SizeofResource(native, found);
                      const void* const data = ::LockResource(::LoadResource(native, found));
                      Bench::DoNotOptimize(size);
                      Bench::DoNotOptimize(data);
                  }
              })
        .Run();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    const ORL::ObjectPtr<ORL::Module> module = LoadPlugIn();
    CompareTexts(*module);
    CompareNames(*module);
    return Bench::Finish();
}
