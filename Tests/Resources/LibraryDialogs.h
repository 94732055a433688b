// The texts of the library's own dialogs in each language.
#pragma once

#include <Resources/DialogTemplate.h>
#include <TextHelpers.h>

#include <gtest/gtest.h>

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

inline const ORL::Resources::DialogItem* FindItem(const ORL::Resources::Dialog& inDialog, unsigned int inID)
{
    for (const ORL::Resources::DialogItem& item : inDialog.mItems) {
        if (item.mID == inID) {
            return &item;
        }
    }
    return nullptr;
}

inline void ExpectItem(const ORL::Resources::Dialog& inDialog, unsigned int inID, unsigned short inClass,
                       const UTF16String& inTitle)
{
    const ORL::Resources::DialogItem* const item = FindItem(inDialog, inID);
    ASSERT_NE(nullptr, item) << inID;
    EXPECT_TRUE(item->mClass.mIsNumber);
    EXPECT_EQ(inClass, item->mClass.mNumber) << inID;
    EXPECT_EQ(inTitle, item->mTitle.mText) << inID;
    EXPECT_GE(item->mX, 0);
    EXPECT_GE(item->mY, 0);
    EXPECT_LE(item->mX + item->mWidth, inDialog.mWidth) << inID;
    EXPECT_LE(item->mY + item->mHeight, inDialog.mHeight) << inID;
}

inline void ExpectSize(const ORL::Resources::Dialog& inDialog, unsigned int inID, int inWidth, int inHeight)
{
    const ORL::Resources::DialogItem* const item = FindItem(inDialog, inID);
    ASSERT_NE(nullptr, item) << inID;
    EXPECT_EQ(inWidth, item->mWidth) << inID;
    EXPECT_EQ(inHeight, item->mHeight) << inID;
}

inline void ExpectIcon(const ORL::Resources::Dialog& inDialog)
{
    const ORL::Resources::DialogItem* const item = FindItem(inDialog, 14100);
    ASSERT_NE(nullptr, item);
    EXPECT_EQ(kStaticClass, item->mClass.mNumber);
    EXPECT_EQ(3u, item->mStyle & 0x1F); // the style shows an icon
    EXPECT_TRUE(item->mTitle.mIsNumber);
    EXPECT_EQ(14000, item->mTitle.mNumber);
}

/// Compares the template of dialog 14400 with the texts of one language.
inline void ExpectEventDialog(const ORL::Resources::Bytes& inTemplate, const DialogTexts& inTexts)
{
    ORL::Resources::Dialog dialog;
    ASSERT_TRUE(ORL::Resources::ReadDialogTemplate(inTemplate, dialog));
    EXPECT_EQ(TextFrom(inTexts.mEventCaption), dialog.mTitle);
    EXPECT_EQ(346, dialog.mWidth);
    EXPECT_EQ(217, dialog.mHeight);
    EXPECT_EQ(8u, dialog.mItems.size());
    ExpectIcon(dialog);
    ExpectItem(dialog, 14250, kEditClass, UTF16String());
    ExpectSize(dialog, 14250, 294, 12);
    EXPECT_EQ(0u, FindItem(dialog, 14250)->mStyle & 4);
    ExpectItem(dialog, 14251, kEditClass, UTF16String());
    ExpectSize(dialog, 14251, 294, 157);
    EXPECT_EQ(4u, FindItem(dialog, 14251)->mStyle & 4); // multi-line
    for (unsigned int i = 0; i < 5; ++i) {
        ExpectItem(dialog, 14200 + i, kButtonClass, TextFrom(inTexts.mButtons[i]));
    }
}

/// Compares the template of dialog 14401 with the texts of one language.
inline void ExpectErrorDialog(const ORL::Resources::Bytes& inTemplate, const DialogTexts& inTexts)
{
    ORL::Resources::Dialog dialog;
    ASSERT_TRUE(ORL::Resources::ReadDialogTemplate(inTemplate, dialog));
    EXPECT_EQ(TextFrom(inTexts.mErrorCaption), dialog.mTitle);
    EXPECT_EQ(300, dialog.mWidth);
    EXPECT_EQ(100, dialog.mHeight);
    EXPECT_EQ(4u, dialog.mItems.size());
    ExpectIcon(dialog);
    ExpectItem(dialog, 0xFFFFFFFF, kStaticClass, TextFrom(inTexts.mErrorText));
    ExpectItem(dialog, 14251, kEditClass, UTF16String());
    ExpectSize(dialog, 14251, 250, 30);
    ExpectItem(dialog, 14200, kButtonClass, TextFrom(inTexts.mContinue));
}

} // namespace ORLTest
