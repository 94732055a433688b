// A host without resources, built by the compiler and pkg-config alone.
#include <ORLFoundation.h>

#include <iostream>

int main()
{
    ORL::Foundation::Initialize();
    std::cout << ORL::MakeStdString(ORL::PathUtils::GetFullFilePart(ORL::MakeString("C:\\Media\\clip.mov"))) << '\n';
    ORL::Foundation::Terminate();
    return 0;
}
