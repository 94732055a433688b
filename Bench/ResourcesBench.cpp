// Question: can a host afford to look up its strings and pictures each time it draws them?
#include <Harness.h>
#include <PlugIn.h>

#include <ORLHostPath.h>
#include <ORLModule.h>
#include <ORLStringResources.h>

#include <cstdio>
#include <cstdlib>
#include <gio/gio.h>
#include <libintl.h>
#include <locale.h>
#include <string>
#include <vector>

namespace {

ORL::ObjectPtr<ORL::Module> LoadPlugIn()
{
    ORL::ObjectPtr<ORL::Module> module;
    if (!ORL::ResultSucceeded(ORL::Module::Load(ORL::PathUtils::FromHostPath(ORL_BENCH_PLUG_IN), module))) {
        std::fprintf(stderr, "cannot load %s\n", ORL_BENCH_PLUG_IN);
        std::exit(1);
    }
    return module;
}

// Compares lookups of the last string of a block, which skip all others, and of the first.
void CompareTexts(const ORL::Module& inModule)
{
    ::setlocale(LC_ALL, "C.UTF-8");
    ::setenv("LANGUAGE", "en_US", 1);
    ::bindtextdomain("orlbench", ORL_BENCH_LOCALES);
    ::bind_textdomain_codeset("orlbench", "UTF-8");
    ::textdomain("orlbench");
    if (std::string(::gettext("text 15")) == "text 15" || ORL::LoadStringW(inModule, 15).size() != 40) {
        std::fprintf(stderr, "the texts are missing\n");
        std::exit(1);
    }
    for (const unsigned int position : {0u, 15u}) {
        const std::string key = "text " + std::to_string(position);
        Bench::Group(("a text of 40 units at position " + std::to_string(position) + " of 16").c_str())
            .Ours("LoadStringW", Bench::AtMost(1.0, "gettext"),
                  [&](std::uint64_t n) {
                      UTF16String text;
                      while (n-- != 0) {
                          ORL::LoadStringW(inModule, position, text);
                          Bench::DoNotOptimize(text.data());
                      }
                  })
            .Peer("gettext",
                  [&](std::uint64_t n) {
                      while (n-- != 0) {
                          const char* const text = ::gettext(key.c_str());
                          Bench::DoNotOptimize(text);
                      }
                  })
            .Run();
    }
}

void CompareNames(const ORL::Module& inModule)
{
    std::vector<UTF16String> names;
    std::vector<std::string> paths;
    for (int i = 0; i < Bench::kNames; ++i) {
        const std::string name = Bench::NameOf(i);
        names.emplace_back(name.begin(), name.end());
        paths.push_back("/orl/" + name);
    }
    GError* error = nullptr;
    GResource* const peer = ::g_resource_load(ORL_BENCH_GRESOURCE, &error);
    if (peer == nullptr) {
        std::fprintf(stderr, "%s\n", error->message);
        std::exit(1);
    }
    Bench::Group("one of 1000 names")
        .Ours("FindLocalizedResource", Bench::AtMost(0.5, "g_resource_lookup_data"),
              [&](std::uint64_t n) {
                  int size = 0;
                  for (std::size_t i = 0; n-- != 0; i = (i + 617) % Bench::kNames) {
                      const void* const data =
                          inModule.FindLocalizedResource(names[i].c_str(), ORL::MakeResourceID(10), size);
                      Bench::DoNotOptimize(data);
                  }
              })
        .Peer("g_resource_lookup_data",
              [&](std::uint64_t n) {
                  for (std::size_t i = 0; n-- != 0; i = (i + 617) % Bench::kNames) {
                      GBytes* const data =
                          ::g_resource_lookup_data(peer, paths[i].c_str(), G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr);
                      Bench::DoNotOptimize(data);
                      ::g_bytes_unref(data);
                  }
              })
        .Run();
    ::g_resource_unref(peer);
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
