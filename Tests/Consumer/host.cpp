// The smallest useful host: starts the library, splits a path, reads a string from its own resources, and stops the
// library.
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
