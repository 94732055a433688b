// A host whose plug-ins contain strings and pictures: it prints the greeting of each plug-in in five languages, and
// draws their pictures on one sheet.
//
//   example_gallery SHEET.png
#include "ContactSheet.h"
#include "GalleryIDs.h"

#include <ORLFoundation.h>

#include <cstdio>
#include <exception>
#include <stdexcept>

namespace {

using ModulePtr = ORL::ObjectPtr<ORL::Module, ORL::AtomicValue>;

struct Language
{
    unsigned short mID;
    const char* mName;
};

constexpr Language kLanguages[] = {{1033, "en_US"}, {1031, "de_DE"}, {1034, "es_ES"}, {1036, "fr_FR"}, {1040, "it_IT"}};

const char* const kPlugIns[] = {"shapes", "signals"};

UTF16String FolderOfProgram()
{
    ModulePtr program;
    ORL::Module::Create(nullptr, program);
    UTF16String path;
    program->GetPath(path);
    return path.substr(0, path.rfind('\\') + 1);
}

ModulePtr LoadPlugIn(const std::string& inName)
{
    const std::string file = "gallery_" + inName + PLUG_IN_SUFFIX;
    ModulePtr plugIn;
    if (!ORL::ResultSucceeded(ORL::Module::Load(FolderOfProgram() + UTF16String(file.begin(), file.end()), plugIn))) {
        throw std::runtime_error("cannot load \"" + file + "\"; build it beside this program");
    }
    return plugIn;
}

void PrintGreetings(const std::string& inName, const ORL::Module& inPlugIn)
{
    for (const Language& language : kLanguages) {
        ORL::SetLanguageID(language.mID);
        std::printf("%-8s %s  %s\n", inName.c_str(), language.mName, ORL::LoadStdString(inPlugIn, ID_GREETING).c_str());
    }
    ORL::SetLanguageID(kLanguages[0].mID);
}

SheetRow ReadPictures(ORL::Module& ioPlugIn)
{
    SheetRow row;
    row.mTitle = ORL::LoadStdString(ioPlugIn, ID_GREETING);
    for (short i = 0; i < PICTURES_OF_A_PLUG_IN; ++i) {
        const ORL::OSImageHandle picture(ioPlugIn.LoadBitmapWTL(static_cast<short>(ID_FIRST_PICTURE + i), false));
        if (!picture.IsValid()) {
            throw std::runtime_error("a picture of a plug-in cannot be loaded");
        }
        const unsigned int caption = static_cast<unsigned int>(ID_FIRST_CAPTION + i);
        row.mEntries.push_back({ORL::LoadStdString(ioPlugIn, caption), ReadPixels(picture.GetHBITMAP())});
    }
    return row;
}

void Run(const char* inSheet)
{
    const PictureDecoder decoder;
    std::vector<SheetRow> rows;
    for (const char* const name : kPlugIns) {
        const ModulePtr plugIn = LoadPlugIn(name);
        PrintGreetings(name, *plugIn);
        rows.push_back(ReadPictures(*plugIn));
    }
    const Picture sheet = DrawSheet(rows);
    sheet.Save(inSheet);
    std::printf("%s: %zu plug-ins, %zu by %zu pixels\n", inSheet, rows.size(), sheet.Width(), sheet.Height());
}

} // namespace

int main(int inCount, char** inArguments)
{
    if (inCount != 2) {
        std::fprintf(stderr, "usage: example_gallery SHEET.png\n");
        return 2;
    }
    ORL::Foundation::Initialize();
    int status = 0;
    try {
        Run(inArguments[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "example_gallery: %s: %s\n", inArguments[1], error.what());
        status = 1;
    }
    ORL::Foundation::Terminate();
    return status;
}
