// A host without resources, built with only the compiler and pkg-config.
#include <ORLFoundation.h>

#include <iostream>

int main()
{
    ORL::Foundation::Initialize();
    std::cout << ORL::MakeStdString(ORL::PathUtils::GetFullFilePart(ORL::MakeString("C:\\Media\\clip.mov"))) << '\n';
    ORL::Foundation::Terminate();
    return 0;
}
