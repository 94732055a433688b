// Question: what does creating an object by identifier cost, compared with a plain map of creation functions?
#include <Harness.h>

#include <ORLClassFactory.h>

#include <map>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t kClasses = 1000;

class Effect : public ORL::UnknownImpl<ORL::ORLUnknown>
{
};

struct PlainEffect
{
    virtual ~PlainEffect() = default;
    int mCount = 0;
};

void MakeEffect(ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown>& outRef)
{
    outRef = ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown>(new Effect);
}

std::shared_ptr<PlainEffect> MakePlainEffect()
{
    return std::make_shared<PlainEffect>();
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    std::thread([] {}).join(); // some pointers use atomic operations only after the process has started a thread
    std::vector<ORL::Guid> ids;
    std::map<ORL::Guid, std::shared_ptr<PlainEffect> (*)()> makers;
    for (std::size_t i = 0; i < kClasses; ++i) {
        ids.push_back(ORL::Guid::CreateUnique());
        ORL::ClassFactory::RegisterORLClass(ids.back(), "", "", &MakeEffect, &ORLGetClassCategories);
        makers[ids.back()] = &MakePlainEffect;
    }
    Bench::Group("make one of 1000 classes by identifier")
        .Ours("ClassFactory::CreateInstanceRef", Bench::AtMost(1.0, "std::map and std::make_shared"),
              [&](std::uint64_t n) {
                  for (std::size_t i = 0; n-- != 0; i = (i + 7) % kClasses) {
                      ORL::InterfaceRef<ORL::ORLUnknown, ORL::ORLUnknown> ref;
                      ORL::ClassFactory::CreateInstanceRef(ids[i], ref);
                      Bench::DoNotOptimize(ref.GetPtr());
                  }
              })
        .Peer("std::map and std::make_shared",
              [&](std::uint64_t n) {
                  for (std::size_t i = 0; n-- != 0; i = (i + 7) % kClasses) {
                      const std::shared_ptr<PlainEffect> made = makers.find(ids[i])->second();
                      Bench::DoNotOptimize(made.get());
                  }
              })
        .Run();
    return Bench::Finish();
}
