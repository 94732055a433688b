// Lists the clips below a folder: example_list_clips FOLDER ENDING
#include <ORLDirectory.h>
#include <ORLFoundation.h>
#include <ORLHostPath.h>
#include <ORLString.h>

#include <algorithm>
#include <iostream>
#include <vector>

namespace {

int List(const UTF16String& inFolder, const UTF16String& inEnding)
{
    std::vector<UTF16String> clips;
    const ORL::Directory folder = ORL::Directory::ConstructDirectory(inFolder);
    folder.GetContainedFilePaths(inEnding, clips, true, ORL::Directory::kNoLimit);
    const std::size_t prefix = inFolder.size() + (inFolder.back() == '\\' ? 0 : 1);
    std::sort(clips.begin(), clips.end());
    for (const UTF16String& clip : clips) {
        std::cout << ORL::MakeStdString(clip.substr(prefix)) << '\n';
    }
    std::cout << clips.size() << " clips\n";
    return 0;
}

} // namespace

int main(int inCount, char** inArguments)
{
    if (inCount != 3) {
        std::cerr << "usage: example_list_clips FOLDER ENDING\n";
        return 2;
    }
    ORL::Foundation::Initialize();
    int status = 1;
    try {
        status = List(ORL::PathUtils::FromHostPath(inArguments[1]), ORL::MakeString(inArguments[2]));
    } catch (const ORL::eNotADirectoryPath&) {
        std::cerr << inArguments[1] << " is not a folder\n";
    } catch (const ORL::Exception& failure) {
        std::cerr << inArguments[1] << " cannot be listed: " << failure.what() << '\n';
    }
    ORL::Foundation::Terminate();
    return status;
}
