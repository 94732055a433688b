#include <ORLApplication.h>

#include <CheckRecorder.h>
#include <ORLString.h>

#include <gtest/gtest.h>
#include <string>

using namespace ORL;
using namespace ORLTest;

namespace {

class Host : public Application
{
public:
    using Application::Application;

    int Run() override { return 17; }
};

ObjectPtr<Module, AtomicValue> ProgramModule()
{
    ObjectPtr<Module, AtomicValue> module;
    Module::Create(nullptr, module);
    return module;
}

const UTF16String kText = MakeString("start");

} // namespace

TEST(Application, Instance_LivesAsLongAsTheObject)
{
    EXPECT_EQ(nullptr, Application::Instance());
    {
        Host host(ProgramModule(), ProgramModule(), kText, 1);
        EXPECT_EQ(&host, Application::Instance());
        EXPECT_EQ(17, Application::Instance()->Run());
        Application::Instance()->Idle();
        EXPECT_EQ(&host, Application::Instance());
    }
    EXPECT_EQ(nullptr, Application::Instance());
}

TEST(Application, FilePath_IsThatOfTheApplicationModule)
{
    Host host(ObjectPtr<Module, AtomicValue>(), ProgramModule(), kText, 1);
    const UTF16String path = host.GetApplicationFilePath();
    EXPECT_NE(std::string::npos, MakeStdString(path).find("test_System"));
    EXPECT_EQ(path, host.GetApplicationFilePath());
    UTF16String expected;
    ProgramModule()->GetPath(expected);
    EXPECT_EQ(expected, path);
}

TEST(Application, SecondObject_BreaksAContractAndIsGone)
{
    Host host(ProgramModule(), ProgramModule(), kText, 1);
    CheckRecorder recorder;
    recorder.mThrow = true;
    EXPECT_THROW(Host(ProgramModule(), ProgramModule(), kText, 2), CheckRecorder::ContractError);
    EXPECT_EQ(&host, Application::Instance());
}

TEST(Application, SecondObjectThatSurvivesTheContract_TakesOver)
{
    const CheckRecorder recorder;
    Host first(ProgramModule(), ProgramModule(), kText, 1);
    {
        Host second(ProgramModule(), ProgramModule(), kText, 2);
        EXPECT_EQ(&second, Application::Instance());
    }
    EXPECT_EQ(nullptr, Application::Instance()) << "whoever ends, there is no instance then";
    EXPECT_EQ(1u, recorder.Reports(CheckReport::kContract).size());
}
