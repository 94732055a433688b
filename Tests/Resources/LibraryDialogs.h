// The expected strings of the library's own dialogs in each language.
#pragma once

#include <Resources/DialogTemplate.h>
#include <TextHelpers.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <ios>

namespace ORLTest {

struct DialogTexts
{
    unsigned short mLanguage;
    const char16_t* mEventCaption;
    const char16_t* mButtons[5];
    const char16_t* mErrorCaption;
    const char16_t* mErrorText;
    const char16_t* mContinue;
};

inline constexpr DialogTexts kDialogTexts[] = {
    {1033,
     u"%1 Debug Event",
     {u"Debug", u"Ignore Once", u"Ignore Always", u"Disable Asserts", u"Kill Process"},
     u"%1 Error",
     u"%1 has encountered an error.",
     u"Continue"},
    {1031,
     u"%1 \u2013 Debug-Vorgang",
     {u"Debug", u"Jetzt ignorieren", u"Immer ignorieren", u"Asserts deaktivieren", u"Prozess anhalten"},
     u"%1 \u2013 Fehler",
     u"%1 hat einen Fehler festgestellt.",
     u"Weiter"},
    {1034,
     u"%1 Evento de depuraci\u00F3n",
     {u"Depurar", u"Omitir una vez", u"Omitir siempre", u"Deshabilitar aserciones", u"Anular proceso"},
     u"%1 Error",
     u"%1 ha encontrado un error.",
     u"Continuar"},
    {1036,
     u"Ev\u00E9nement de d\u00E9bogage %1",
     {u"Mettre au point", u"Ignorer une seule fois", u"Toujours ignorer", u"D\u00E9sactiver les assertions",
      u"Supprimer le processus"},
     u"Erreur %1",
     u"Une erreur est survenue dans %1.",
     u"Continuer"},
    {1040,
     u"Evento di debug %1",
     {u"Debug", u"Ignora questa volta", u"Ignora sempre", u"Disable Asserts", u"Termina processo"},
     u"Errore %1",
     u"\u00C8 stato rilevato un errore in %1.",
     u"Continua"},
};

constexpr unsigned short kButtonClass = 0x80;
constexpr unsigned short kEditClass = 0x81;
constexpr unsigned short kStaticClass = 0x82;

inline UTF16String TextFrom(const char16_t* inText)
{
    const std::u16string text(inText);
    return UTF16String(text.begin(), text.end());
}

constexpr std::uint32_t kVisibleChild = 0x50000000;
constexpr std::uint32_t kBorder = 0x00800000;
constexpr std::uint32_t kTabStop = 0x00010000;
constexpr std::uint32_t kDialogStyle = 0x80C800C0; // a pop-up with caption and menu, a modal frame and a font
constexpr std::uint32_t kShowsIcon = 0x3;
constexpr std::uint32_t kOneLine = 0x80;
constexpr std::uint32_t kManyLines = 0x00200844; // read only, with a scroll bar
constexpr std::uint32_t kWrapped = 0x2000;
constexpr std::uint32_t kDefault = 0x1;
constexpr std::uint32_t kGroup = 0x00020000;

/// An expected item of a dialog. An icon has a number in place of a title, and size 0 by 0, because
/// windres does not write the size of an icon.
struct ExpectedItem
{
    unsigned int mID;
    unsigned short mClass;
    std::uint32_t mStyle;
    int mBox[4]; // x, y, width, height
    const char16_t* mTitle;
};

inline void ExpectItem(const ORL::Resources::DialogItem& inItem, const ExpectedItem& inExpected)
{
    SCOPED_TRACE(inExpected.mID);
    EXPECT_EQ(inExpected.mID, inItem.mID);
    EXPECT_TRUE(inItem.mClass.mIsNumber);
    EXPECT_EQ(inExpected.mClass, inItem.mClass.mNumber);
    EXPECT_EQ(inExpected.mStyle, inItem.mStyle) << std::hex << inItem.mStyle;
    EXPECT_EQ(0u, inItem.mExtendedStyle);
    EXPECT_EQ(inExpected.mBox[0], inItem.mX);
    EXPECT_EQ(inExpected.mBox[1], inItem.mY);
    EXPECT_EQ(inExpected.mBox[2], inItem.mWidth);
    EXPECT_EQ(inExpected.mBox[3], inItem.mHeight);
    if (inExpected.mTitle == nullptr) {
        EXPECT_TRUE(inItem.mTitle.mIsNumber);
        EXPECT_EQ(14000, inItem.mTitle.mNumber);
    } else {
        EXPECT_FALSE(inItem.mTitle.mIsNumber);
        EXPECT_EQ(TextFrom(inExpected.mTitle), inItem.mTitle.mText);
    }
}

/// Compares every part of a template; the items must be in the order of inItems.
template <std::size_t kCount>
void ExpectDialog(const ORL::Resources::Bytes& inTemplate, int inWidth, int inHeight, const char16_t* inTitle,
                  const ExpectedItem (&inItems)[kCount])
{
    ORL::Resources::Dialog dialog;
    ASSERT_TRUE(ORL::Resources::ReadDialogTemplate(inTemplate, dialog));
    EXPECT_TRUE(dialog.mIsExtended);
    EXPECT_EQ(kDialogStyle, dialog.mStyle) << std::hex << dialog.mStyle;
    EXPECT_EQ(0u, dialog.mExtendedStyle);
    EXPECT_EQ(0, dialog.mX);
    EXPECT_EQ(0, dialog.mY);
    EXPECT_EQ(inWidth, dialog.mWidth);
    EXPECT_EQ(inHeight, dialog.mHeight);
    EXPECT_FALSE(dialog.mMenu.mIsNumber);
    EXPECT_TRUE(dialog.mMenu.mText.empty());
    EXPECT_FALSE(dialog.mClass.mIsNumber);
    EXPECT_TRUE(dialog.mClass.mText.empty());
    EXPECT_EQ(TextFrom(inTitle), dialog.mTitle);
    EXPECT_EQ(8, dialog.mFontSize);
    EXPECT_EQ(TextFrom(u"MS Shell Dlg"), dialog.mFont);
    ASSERT_EQ(kCount, dialog.mItems.size());
    for (std::size_t i = 0; i < kCount; ++i) {
        ExpectItem(dialog.mItems[i], inItems[i]);
    }
}

/// Compares the template of dialog 14400 with the strings of one language.
inline void ExpectEventDialog(const ORL::Resources::Bytes& inTemplate, const DialogTexts& inTexts)
{
    constexpr std::uint32_t kEdit = kVisibleChild | kBorder | kTabStop;
    constexpr std::uint32_t kButton = kVisibleChild | kTabStop | kWrapped;
    const ExpectedItem kItems[] = {
        {14100, kStaticClass, kVisibleChild | kShowsIcon, {7, 7, 0, 0}, nullptr},
        {14250, kEditClass, kEdit | kOneLine, {45, 7, 294, 12}, u""},
        {14251, kEditClass, kEdit | kManyLines, {45, 25, 294, 157}, u""},
        {14200, kButtonClass, kButton, {7, 190, 63, 20}, inTexts.mButtons[0]},
        {14201, kButtonClass, kButton, {74, 190, 63, 20}, inTexts.mButtons[1]},
        {14202, kButtonClass, kButton, {141, 190, 63, 20}, inTexts.mButtons[2]},
        {14203, kButtonClass, kButton, {208, 190, 63, 20}, inTexts.mButtons[3]},
        {14204, kButtonClass, kButton, {275, 190, 63, 20}, inTexts.mButtons[4]},
    };
    ExpectDialog(inTemplate, 346, 217, inTexts.mEventCaption, kItems);
}

/// Compares the template of dialog 14401 with the strings of one language.
inline void ExpectErrorDialog(const ORL::Resources::Bytes& inTemplate, const DialogTexts& inTexts)
{
    const ExpectedItem kItems[] = {
        {14100, kStaticClass, kVisibleChild | kShowsIcon, {7, 7, 0, 0}, nullptr},
        {0xFFFFFFFF, kStaticClass, kVisibleChild | kGroup, {43, 9, 250, 16}, inTexts.mErrorText},
        {14251, kEditClass, kVisibleChild | kBorder | kTabStop | kManyLines, {43, 30, 250, 30}, u""},
        {14200, kButtonClass, kVisibleChild | kTabStop | kDefault, {236, 79, 57, 14}, inTexts.mContinue},
    };
    ExpectDialog(inTemplate, 300, 100, inTexts.mErrorCaption, kItems);
}

} // namespace ORLTest
