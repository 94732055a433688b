// The smallest useful host: start the library, take a path apart, read a text of its own resources, stop it.
#include <ORLFoundation.h>
#include <ORLVersion.h>

#include <iostream>

int main()
{
    ORL::Foundation::Initialize();
    const UTF16String path = ORL::MakeString("C:\\Media\\clip.mov");
    ORL::ObjectPtr<ORL::Module> self;
    ORL::Module::Create(nullptr, self);
    std::cout << ORL_VERSION << ' ' << ORL::MakeStdString(ORL::PathUtils::GetFullFilePart(path)) << ' '
              << ORL::LoadStdString(*self, 7) << '\n';
    ORL::Foundation::Terminate();
    return 0;
}
