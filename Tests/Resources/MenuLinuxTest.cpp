#include "PlugIns.h"

#include <CheckRecorder.h>

#include <ORLResources.h>
#include <Resources/CursorReader.h>

using namespace ORL;
using namespace ORL::Resources::Linux;
using namespace ORLTest;

namespace {

// Returns a menu as a string with one line per item: title, identifier, flags. Submenus are in braces.
std::string Drawn(HMENU inMenu)
{
    std::string drawing;
    for (int i = 0; i < GetMenuItemCount(inMenu); ++i) {
        MenuItem item;
        EXPECT_TRUE(GetMenuItem(inMenu, i, item));
        drawing += Show(item.mText) + " " + std::to_string(item.mID) + " " + std::to_string(item.mFlags);
        if (item.mSubMenu != nullptr) {
            drawing += " { " + Drawn(item.mSubMenu) + "}";
        }
        drawing += "; ";
    }
    return drawing;
}

std::string DrawnMenu(short inID, unsigned short inLanguage)
{
    const LanguageScope language(inLanguage);
    const ModulePtr module = LoadPlugIn("resources_lookup");
    const HMENU menu = module->LoadMenuW(inID);
    EXPECT_NE(nullptr, menu);
    const std::string drawing = Drawn(menu);
    DestroyMenu(menu);
    return drawing;
}

} // namespace

TEST(Menu, OfTheOlderForm_InTheCurrentLanguage)
{
    EXPECT_EQ("&File 0 16 { &Open...<0009>Ctrl+O 101 0;  0 2048; &Recent 0 16 { (none) 102 1; }; E&xit 103 0; }; "
              "&Loop 104 8; ",
              DrawnMenu(1, 1033));
    EXPECT_EQ("&Datei 0 16 { <00d6>&ffnen...<0009>Strg+O 101 0; }; ", DrawnMenu(1, 1031));
}

TEST(Menu, OfTheExtendedForm)
{
    EXPECT_EQ("Marker 200 16 { In 201 8;  0 2048; Out 70000 3; }; Last 203 0; ", DrawnMenu(2, 1041));
}

TEST(Menu, MissingOrNull_HasNoItems)
{
    const CheckRecorder recorder;
    const ModulePtr module = LoadPlugIn("resources_lookup");
    EXPECT_EQ(nullptr, module->LoadMenuW(77));
    EXPECT_EQ(0, GetMenuItemCount(nullptr));
    MenuItem item{Units(u"x"), 1, 2, nullptr};
    EXPECT_FALSE(GetMenuItem(nullptr, 0, item));
    const HMENU menu = module->LoadMenuW(2);
    EXPECT_FALSE(GetMenuItem(menu, -1, item));
    EXPECT_FALSE(GetMenuItem(menu, 2, item));
    EXPECT_EQ("x", Show(item.mText));
    DestroyMenu(menu);
    DestroyMenu(nullptr);
}

TEST(Cursor, TheSizeThatFitsAPointerBest_WithItsHotSpotAndMask)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    void* const cursor = module->LoadCursorW(3);
    CursorPicture picture{};
    ASSERT_TRUE(GetCursorPicture(cursor, picture));
    EXPECT_EQ(32, picture.mWidth);
    EXPECT_EQ(32, picture.mHeight);
    EXPECT_EQ(9, picture.mHotSpotX);
    EXPECT_EQ(10, picture.mHotSpotY);
    ASSERT_EQ(1024u, picture.mPixels.size());
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            const bool isWhite = x > 4 && x < 27 && y > 4 && y < 27;
            const bool isInside = x >= 4 && x <= 27 && y >= 4 && y <= 27;
            const std::uint32_t expected = isWhite ? 0xFFFFFFFF : isInside || (x == 0 && y == 0) ? 0xFF000000 : 0;
            ASSERT_EQ(expected, picture.mPixels[static_cast<std::size_t>(y * 32 + x)]) << x << ", " << y;
        }
    }
}

TEST(Cursor, OfEachDepth)
{
    struct Row
    {
        int mLine;
        unsigned short mID;
        int mHotSpotX;
        std::vector<std::uint32_t> mPixels;
    };
    const Row kRows[] = {
        // 4 bits; the mask of the fourth pixel is set
        {__LINE__,
         3,
         0,
         {0xFF101010, 0xFF202020, 0xFF303030, 0xFF000000, 0xFF505050, 0xFF606060, 0xFF707070, 0xFF808080}},
        // 8 bits; the mask of the fifth pixel is set
        {__LINE__,
         4,
         0,
         {0xFF0000FF, 0xFF0100FE, 0xFF0200FD, 0xFFFF0000, 0xFF000000, 0xFF1400EB, 0xFF1E00E1, 0xFF2800D7}},
        // 24 bits
        {__LINE__,
         5,
         3,
         {0xFF020100, 0xFF050403, 0xFF080706, 0xFF0B0A09, 0xFF666564, 0xFF696867, 0xFF6C6B6A, 0xFF6F6E6D}},
        // 32 bits; the alpha channel counts, the mask is ignored
        {__LINE__, 6, 3, {0x80FF0000, 0xFF00FF00, 0x00123456, 0xFFFFFFFF, 1, 2, 3, 0x01000004}},
    };
    const ModulePtr module = LoadPlugIn("resources_lookup");
    for (const Row& row : kRows) {
        int size = 0;
        const void* const data = module->LoadResource(MakeResourceID(row.mID), MakeResourceID(1), size);
        ASSERT_NE(nullptr, data);
        ORL::Resources::Bytes bytes;
        bytes.mData = static_cast<const unsigned char*>(data);
        bytes.mSize = static_cast<std::size_t>(size);
        CursorPicture picture{};
        ASSERT_TRUE(ORL::Resources::ReadCursor(bytes, picture)) << "row at line " << row.mLine;
        EXPECT_EQ(4, picture.mWidth);
        EXPECT_EQ(2, picture.mHeight);
        EXPECT_EQ(row.mHotSpotX, picture.mHotSpotX) << "row at line " << row.mLine;
        EXPECT_EQ(row.mPixels, picture.mPixels) << "row at line " << row.mLine;
    }
}

// An incomplete cursor is refused.
TEST(Cursor, CutAtEachLength_IsRefused)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    int size = 0;
    const auto* const data =
        static_cast<const unsigned char*>(module->LoadResource(MakeResourceID(6), MakeResourceID(1), size));
    for (int cut = 0; cut < size; ++cut) {
        const std::vector<unsigned char> copy(data, data + cut);
        ORL::Resources::Bytes bytes;
        bytes.mData = copy.data();
        bytes.mSize = copy.size();
        CursorPicture picture{};
        EXPECT_FALSE(ORL::Resources::ReadCursor(bytes, picture)) << cut;
    }
}

TEST(Cursor, IsReadOnceAndStaysTheModules)
{
    const ModulePtr module = LoadPlugIn("resources_lookup");
    void* const first = module->LoadCursorW(3);
    EXPECT_EQ(first, module->LoadCursorW(3));
    EXPECT_EQ(nullptr, module->LoadCursorW(99));
    CursorPicture picture{7, 7, 7, 7, {}};
    EXPECT_FALSE(GetCursorPicture(nullptr, picture));
    EXPECT_EQ(7, picture.mWidth);
}
