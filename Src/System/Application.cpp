#include <ORLApplication.h>

#include <ORLDebug.h>

namespace ORL {

namespace {

Application* sInstance = nullptr;

} // namespace

Application::Application(const ObjectPtr<Module, AtomicValue>& inModule,
                         const ObjectPtr<Module, AtomicValue>& inApplicationModule, const UTF16String& inStartupText,
                         int inStartupValue)
    : mModule(inModule), mApplicationModule(inApplicationModule), mStartupText(inStartupText),
      mStartupValue(inStartupValue)
{
    static_cast<void>(mStartupValue); // stored like the host's other arguments, but never read
    ORL_INPUT_CONTRACT_AT(sInstance == NULL, "WinApplication", 64);
    sInstance = this;
}

Application::~Application()
{
    sInstance = nullptr;
}

void Application::Idle()
{
}

Application* Application::Instance()
{
    return sInstance;
}

UTF16String Application::GetApplicationFilePath()
{
    UTF16String path;
    mApplicationModule->GetPath(path);
    return path;
}

} // namespace ORL
