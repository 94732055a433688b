// The smallest useful host: start the library, take a path apart, stop it.
#include <ORLFoundation.h>
#include <ORLVersion.h>

#include <iostream>

int main()
{
    ORL::Foundation::Initialize();
    const UTF16String path = ORL::MakeString("C:\\Media\\clip.mov");
    std::cout << ORL_VERSION << ' ' << ORL::MakeStdString(ORL::PathUtils::GetFullFilePart(path)) << '\n';
    ORL::Foundation::Terminate();
    return 0;
}
