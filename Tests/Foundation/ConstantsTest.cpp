#include <Core/PropertyKeys.h>
#include <ORLConstants.h>
#include <ORLDiskUtils.h>
#include <ORLLanguage.h>
#include <ORLStream.h>

#include <gtest/gtest.h>

#include <iostream>
#include <string>

namespace {

std::string Narrow(const UTF16String& inText)
{
    std::string narrow;
    for (const unsigned short unit : inText) {
        narrow += static_cast<char>(unit);
    }
    return narrow;
}

// Statics of a host may read the constants in any order of construction. sReadEarly has the earliest priority available
// to a host; the other two are ordinary statics.
__attribute__((init_priority(102))) const std::string sReadEarly = Narrow(ORL::kPropertyKey_FrameRate);
const std::string sReadAtLoad = Narrow(ORL::kResType_DirectoryTable);
const tvxmediatypes::TickTime sFrameAtLoad(1, ORL::kFrameRate_VideoPAL);

} // namespace

TEST(Constants, ReadByAStaticAtLoad_AreBuilt)
{
    EXPECT_EQ("BE.FrameRate", sReadEarly);
    EXPECT_EQ("ORLDIRECTORYTABLE", sReadAtLoad);
    EXPECT_EQ(28224000, sFrameAtLoad.GetTicks());
}

TEST(Constants, MaxPath_Is260)
{
    EXPECT_EQ(260, ORL::ORL_MAX_PATH);
}

TEST(Constants, Sizes_ArePowersOf1024)
{
    EXPECT_EQ(1024u, ORL::DiskUtils::kSize_kiloByte);
    EXPECT_EQ(1048576u, ORL::DiskUtils::kSize_megaByte);
    EXPECT_EQ(1073741824u, ORL::DiskUtils::kSize_gigaByte);
    EXPECT_EQ(1099511627776u, ORL::DiskUtils::kSize_teraByte);
}

TEST(Constants, Streams_AreTheStandardOnes)
{
    EXPECT_EQ(&std::cin, &ORL::In);
    EXPECT_EQ(&std::cout, &ORL::Out);
    EXPECT_EQ(&std::clog, &ORL::Log);
    EXPECT_EQ(&std::cerr, &ORL::Err);
}

TEST(Constants, TimesAndRates_AreThoseOfTheMediaTypes)
{
    EXPECT_EQ(tvxmediatypes::kTime_Zero, ORL::kTime_Zero);
    EXPECT_EQ(tvxmediatypes::kTime_Max, ORL::kTime_Max);
    EXPECT_EQ(tvxmediatypes::kTime_Min, ORL::kTime_Min);
    EXPECT_EQ(tvxmediatypes::kTime_Invalid, ORL::kTime_Invalid);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Zero, ORL::kFrameRate_Zero);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Video10, ORL::kFrameRate_Video10);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Video12, ORL::kFrameRate_Video12);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Video12_5, ORL::kFrameRate_Video12_5);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Video15, ORL::kFrameRate_Video15);
    EXPECT_EQ(tvxmediatypes::kFrameRate_23976, ORL::kFrameRate_23976);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Film24, ORL::kFrameRate_Film24);
    EXPECT_EQ(tvxmediatypes::kFrameRate_VideoPAL, ORL::kFrameRate_VideoPAL);
    EXPECT_EQ(tvxmediatypes::kFrameRate_VideoNTSC, ORL::kFrameRate_VideoNTSC);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Video30, ORL::kFrameRate_Video30);
    EXPECT_EQ(tvxmediatypes::kFrameRate_VideoPAL_HD, ORL::kFrameRate_VideoPAL_HD);
    EXPECT_EQ(tvxmediatypes::kFrameRate_VideoNTSC_HD, ORL::kFrameRate_VideoNTSC_HD);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Video60, ORL::kFrameRate_Video60);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Video100, ORL::kFrameRate_Video100);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Video1000, ORL::kFrameRate_Video1000);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Audio8000, ORL::kFrameRate_Audio8000);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Audio11025, ORL::kFrameRate_Audio11025);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Audio22050, ORL::kFrameRate_Audio22050);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Audio32000, ORL::kFrameRate_Audio32000);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Audio44100, ORL::kFrameRate_Audio44100);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Audio48000, ORL::kFrameRate_Audio48000);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Audio88200, ORL::kFrameRate_Audio88200);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Audio96000, ORL::kFrameRate_Audio96000);
    EXPECT_EQ(tvxmediatypes::kFrameRate_Audio192000, ORL::kFrameRate_Audio192000);
}

TEST(Constants, ResourceTypesAndPropertyKeys_HaveTheirTexts)
{
    struct Row
    {
        int mLine;
        const UTF16String& mConstant;
        const char* mText;
    };
    const Row rows[] = {
        {__LINE__, ORL::kResType_ColorTable, "ORLCOLORTABLE"},
        {__LINE__, ORL::kResType_FontTable, "ORLFONTTABLE"},
        {__LINE__, ORL::kResType_BrushTable, "ORLBRUSHTABLE"},
        {__LINE__, ORL::kResType_PenTable, "ORLPENTABLE"},
        {__LINE__, ORL::kResType_DirectoryTable, "ORLDIRECTORYTABLE"},
        {__LINE__, ORL::kPropertyKey_FrameRate, "BE.FrameRate"},
        {__LINE__, ORL::kPropertyKey_SampleRate, "BE.FrameRate [Audio Sample Rate]"},
        {__LINE__, ORL::kPropertyKey_ItemCount, "item.count"},
        {__LINE__, ORL::kPropertyKey_ItemName, "item.name"},
        {__LINE__, ORL::kPropertyKey_ItemType, "item.type"},
        {__LINE__, ORL::kPropertyKey_ItemHasVideo, "item.has.video"},
        {__LINE__, ORL::kPropertyKey_ItemHasAudio, "item.has.audio"},
        {__LINE__, ORL::kPropertyKey_ItemDuration, "item.duration"},
        {__LINE__, ORL::kPropertyKey_InPoint, "in.point"},
        {__LINE__, ORL::kPropertyKey_OutPoint, "out.point"},
        {__LINE__, ORL::kPropertyKey_AudioDisplay, "audio.display"},
        {__LINE__, ORL::kPropertyKey_WorkInPoint, "workin.point"},
        {__LINE__, ORL::kPropertyKey_WorkOutPoint, "workout.point"},
        {__LINE__, ORL::kPropertyKey_FrameSize, "frame.size"},
        {__LINE__, ORL::kPropertyKey_AspectRatio, "aspect.ratio"},
        {__LINE__, ORL::kPropertyKey_HasAlpha, "has.alpha"},
        {__LINE__, ORL::kPropertyKey_SampleSize, "sample.size"},
        {__LINE__, ORL::kPropertyKey_ChannelType, "channel.type"},
        {__LINE__, ORL::kPropertyKey_AudioTrackCount, "audio.track.count"},
        {__LINE__, ORL::kPropertyKey_WorkBarAdjusted, "workbar.adjusted"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mText, Narrow(row.mConstant)) << "row at line " << row.mLine;
    }
}

TEST(Constants, LanguageIdentifiers_HaveTheirValues)
{
    struct Row
    {
        int mLine;
        unsigned short mConstant;
        unsigned short mValue;
    };
    const Row rows[] = {
        {__LINE__, ORL::kLanguage_Neutral, 0x00},
        {__LINE__, ORL::kLanguage_Arabic, 0x01},
        {__LINE__, ORL::kLanguage_Bulgarian, 0x02},
        {__LINE__, ORL::kLanguage_Catalan, 0x03},
        {__LINE__, ORL::kLanguage_Chinese, 0x04},
        {__LINE__, ORL::kLanguage_Czech, 0x05},
        {__LINE__, ORL::kLanguage_Danish, 0x06},
        {__LINE__, ORL::kLanguage_German, 0x07},
        {__LINE__, ORL::kLanguage_Greek, 0x08},
        {__LINE__, ORL::kLanguage_English, 0x09},
        {__LINE__, ORL::kLanguage_Spanish, 0x0a},
        {__LINE__, ORL::kLanguage_Finnish, 0x0b},
        {__LINE__, ORL::kLanguage_French, 0x0c},
        {__LINE__, ORL::kLanguage_Hebrew, 0x0d},
        {__LINE__, ORL::kLanguage_Hungarian, 0x0e},
        {__LINE__, ORL::kLanguage_Icelandic, 0x0f},
        {__LINE__, ORL::kLanguage_Italian, 0x10},
        {__LINE__, ORL::kLanguage_Japanese, 0x11},
        {__LINE__, ORL::kLanguage_Korean, 0x12},
        {__LINE__, ORL::kLanguage_Dutch, 0x13},
        {__LINE__, ORL::kLanguage_Norwegian, 0x14},
        {__LINE__, ORL::kLanguage_Polish, 0x15},
        {__LINE__, ORL::kLanguage_Portuguese, 0x16},
        {__LINE__, ORL::kLanguage_Romanian, 0x18},
        {__LINE__, ORL::kLanguage_Russian, 0x19},
        {__LINE__, ORL::kLanguage_Croatian, 0x1a},
        {__LINE__, ORL::kLanguage_Serbian, 0x1a},
        {__LINE__, ORL::kLanguage_Slovak, 0x1b},
        {__LINE__, ORL::kLanguage_Albanian, 0x1c},
        {__LINE__, ORL::kLanguage_Swedish, 0x1d},
        {__LINE__, ORL::kLanguage_Thai, 0x1e},
        {__LINE__, ORL::kLanguage_Turkish, 0x1f},
        {__LINE__, ORL::kLanguage_Urdu, 0x20},
        {__LINE__, ORL::kLanguage_Indonesian, 0x21},
        {__LINE__, ORL::kLanguage_Ukrainian, 0x22},
        {__LINE__, ORL::kLanguage_Belarusian, 0x23},
        {__LINE__, ORL::kLanguage_Slovenian, 0x24},
        {__LINE__, ORL::kLanguage_Estonian, 0x25},
        {__LINE__, ORL::kLanguage_Latvian, 0x26},
        {__LINE__, ORL::kLanguage_Lithuanian, 0x27},
        {__LINE__, ORL::kLanguage_Farsi, 0x29},
        {__LINE__, ORL::kLanguage_Vietnamese, 0x2a},
        {__LINE__, ORL::kLanguage_Armenian, 0x2b},
        {__LINE__, ORL::kLanguage_Azeri, 0x2c},
        {__LINE__, ORL::kLanguage_Basque, 0x2d},
        {__LINE__, ORL::kLanguage_Macedonian, 0x2f},
        {__LINE__, ORL::kLanguage_Afrikaans, 0x36},
        {__LINE__, ORL::kLanguage_Georgian, 0x37},
        {__LINE__, ORL::kLanguage_Faeroese, 0x38},
        {__LINE__, ORL::kLanguage_Hindi, 0x39},
        {__LINE__, ORL::kLanguage_Malay, 0x3e},
        {__LINE__, ORL::kLanguage_Kazak, 0x3f},
        {__LINE__, ORL::kLanguage_Kyrgyz, 0x40},
        {__LINE__, ORL::kLanguage_Swahili, 0x41},
        {__LINE__, ORL::kLanguage_Uzbek, 0x43},
        {__LINE__, ORL::kLanguage_Tatar, 0x44},
        {__LINE__, ORL::kLanguage_Bengali, 0x45},
        {__LINE__, ORL::kLanguage_Punjabi, 0x46},
        {__LINE__, ORL::kLanguage_Gujarati, 0x47},
        {__LINE__, ORL::kLanguage_Oriya, 0x48},
        {__LINE__, ORL::kLanguage_Tamil, 0x49},
        {__LINE__, ORL::kLanguage_Telugu, 0x4a},
        {__LINE__, ORL::kLanguage_Kannada, 0x4b},
        {__LINE__, ORL::kLanguage_Malayalam, 0x4c},
        {__LINE__, ORL::kLanguage_Assamese, 0x4d},
        {__LINE__, ORL::kLanguage_Marathi, 0x4e},
        {__LINE__, ORL::kLanguage_Sanskrit, 0x4f},
        {__LINE__, ORL::kLanguage_Mongolian, 0x50},
        {__LINE__, ORL::kLanguage_Galician, 0x56},
        {__LINE__, ORL::kLanguage_Konkani, 0x57},
        {__LINE__, ORL::kLanguage_Manipuri, 0x58},
        {__LINE__, ORL::kLanguage_Sindhi, 0x59},
        {__LINE__, ORL::kLanguage_Syriac, 0x5a},
        {__LINE__, ORL::kLanguage_Kashmiri, 0x60},
        {__LINE__, ORL::kLanguage_Nepali, 0x61},
        {__LINE__, ORL::kLanguage_Divehi, 0x65},
        {__LINE__, ORL::kLanguage_Invariant, 0x7f},
        {__LINE__, ORL::kSubLanguage_Arabic_Algeria, 0x05},
        {__LINE__, ORL::kSubLanguage_Arabic_Bahrain, 0x0f},
        {__LINE__, ORL::kSubLanguage_Arabic_Egypt, 0x03},
        {__LINE__, ORL::kSubLanguage_Arabic_Iraq, 0x02},
        {__LINE__, ORL::kSubLanguage_Arabic_Jordan, 0x0b},
        {__LINE__, ORL::kSubLanguage_Arabic_Kuwait, 0x0d},
        {__LINE__, ORL::kSubLanguage_Arabic_Lebanon, 0x0c},
        {__LINE__, ORL::kSubLanguage_Arabic_Libya, 0x04},
        {__LINE__, ORL::kSubLanguage_Arabic_Morocco, 0x06},
        {__LINE__, ORL::kSubLanguage_Arabic_Oman, 0x08},
        {__LINE__, ORL::kSubLanguage_Arabic_Qatar, 0x10},
        {__LINE__, ORL::kSubLanguage_Arabic_Saudi_Arabia, 0x01},
        {__LINE__, ORL::kSubLanguage_Arabic_Syria, 0x0a},
        {__LINE__, ORL::kSubLanguage_Arabic_Tunisia, 0x07},
        {__LINE__, ORL::kSubLanguage_Arabic_Uae, 0x0e},
        {__LINE__, ORL::kSubLanguage_Arabic_Yemen, 0x09},
        {__LINE__, ORL::kSubLanguage_Azeri_Cyrillic, 0x02},
        {__LINE__, ORL::kSubLanguage_Azeri_Latin, 0x01},
        {__LINE__, ORL::kSubLanguage_Chinese_Hongkong, 0x03},
        {__LINE__, ORL::kSubLanguage_Chinese_Macau, 0x05},
        {__LINE__, ORL::kSubLanguage_Chinese_Simplified, 0x02},
        {__LINE__, ORL::kSubLanguage_Chinese_Singapore, 0x04},
        {__LINE__, ORL::kSubLanguage_Chinese_Traditional, 0x01},
        {__LINE__, ORL::kSubLanguage_Default, 0x01},
        {__LINE__, ORL::kSubLanguage_Dutch, 0x01},
        {__LINE__, ORL::kSubLanguage_Dutch_Belgian, 0x02},
        {__LINE__, ORL::kSubLanguage_English_Aus, 0x03},
        {__LINE__, ORL::kSubLanguage_English_Belize, 0x0a},
        {__LINE__, ORL::kSubLanguage_English_Can, 0x04},
        {__LINE__, ORL::kSubLanguage_English_Caribbean, 0x09},
        {__LINE__, ORL::kSubLanguage_English_Eire, 0x06},
        {__LINE__, ORL::kSubLanguage_English_Jamaica, 0x08},
        {__LINE__, ORL::kSubLanguage_English_NZ, 0x05},
        {__LINE__, ORL::kSubLanguage_English_Philippines, 0x0d},
        {__LINE__, ORL::kSubLanguage_English_South_Africa, 0x07},
        {__LINE__, ORL::kSubLanguage_English_Trinidad, 0x0b},
        {__LINE__, ORL::kSubLanguage_English_UK, 0x02},
        {__LINE__, ORL::kSubLanguage_English_US, 0x01},
        {__LINE__, ORL::kSubLanguage_English_Zimbabwe, 0x0c},
        {__LINE__, ORL::kSubLanguage_French, 0x01},
        {__LINE__, ORL::kSubLanguage_French_Belgian, 0x02},
        {__LINE__, ORL::kSubLanguage_French_Canadian, 0x03},
        {__LINE__, ORL::kSubLanguage_French_Luxembourg, 0x05},
        {__LINE__, ORL::kSubLanguage_French_Monaco, 0x06},
        {__LINE__, ORL::kSubLanguage_French_Swiss, 0x04},
        {__LINE__, ORL::kSubLanguage_German, 0x01},
        {__LINE__, ORL::kSubLanguage_German_Austrian, 0x03},
        {__LINE__, ORL::kSubLanguage_German_Liechtenstein, 0x05},
        {__LINE__, ORL::kSubLanguage_German_Luxembourg, 0x04},
        {__LINE__, ORL::kSubLanguage_German_Swiss, 0x02},
        {__LINE__, ORL::kSubLanguage_Italian, 0x01},
        {__LINE__, ORL::kSubLanguage_Italian_Swiss, 0x02},
        {__LINE__, ORL::kSubLanguage_Kashmiri_India, 0x02},
        {__LINE__, ORL::kSubLanguage_Kashmiri_Sasia, 0x02},
        {__LINE__, ORL::kSubLanguage_Korean, 0x01},
        {__LINE__, ORL::kSubLanguage_Lithuanian, 0x01},
        {__LINE__, ORL::kSubLanguage_Malay_Brunei_Darussalam, 0x02},
        {__LINE__, ORL::kSubLanguage_Malay_Malaysia, 0x01},
        {__LINE__, ORL::kSubLanguage_Nepali_India, 0x02},
        {__LINE__, ORL::kSubLanguage_Neutral, 0x00},
        {__LINE__, ORL::kSubLanguage_Norwegian_Bokmal, 0x01},
        {__LINE__, ORL::kSubLanguage_Norwegian_Nynorsk, 0x02},
        {__LINE__, ORL::kSubLanguage_Portuguese, 0x02},
        {__LINE__, ORL::kSubLanguage_Portuguese_Brazilian, 0x01},
        {__LINE__, ORL::kSubLanguage_Serbian_Cyrillic, 0x03},
        {__LINE__, ORL::kSubLanguage_Serbian_Latin, 0x02},
        {__LINE__, ORL::kSubLanguage_Spanish, 0x01},
        {__LINE__, ORL::kSubLanguage_Spanish_Argentina, 0x0b},
        {__LINE__, ORL::kSubLanguage_Spanish_Bolivia, 0x10},
        {__LINE__, ORL::kSubLanguage_Spanish_Chile, 0x0d},
        {__LINE__, ORL::kSubLanguage_Spanish_Colombia, 0x09},
        {__LINE__, ORL::kSubLanguage_Spanish_Costa_Rica, 0x05},
        {__LINE__, ORL::kSubLanguage_Spanish_Dominican_Republic, 0x07},
        {__LINE__, ORL::kSubLanguage_Spanish_Ecuador, 0x0c},
        {__LINE__, ORL::kSubLanguage_Spanish_El_Salvador, 0x11},
        {__LINE__, ORL::kSubLanguage_Spanish_Guatemala, 0x04},
        {__LINE__, ORL::kSubLanguage_Spanish_Honduras, 0x12},
        {__LINE__, ORL::kSubLanguage_Spanish_Mexican, 0x02},
        {__LINE__, ORL::kSubLanguage_Spanish_Modern, 0x03},
        {__LINE__, ORL::kSubLanguage_Spanish_Nicaragua, 0x13},
        {__LINE__, ORL::kSubLanguage_Spanish_Panama, 0x06},
        {__LINE__, ORL::kSubLanguage_Spanish_Paraguay, 0x0f},
        {__LINE__, ORL::kSubLanguage_Spanish_Peru, 0x0a},
        {__LINE__, ORL::kSubLanguage_Spanish_Puerto_Rico, 0x14},
        {__LINE__, ORL::kSubLanguage_Spanish_Uruguay, 0x0e},
        {__LINE__, ORL::kSubLanguage_Spanish_Venezuela, 0x08},
        {__LINE__, ORL::kSubLanguage_Swedish, 0x01},
        {__LINE__, ORL::kSubLanguage_Swedish_Finland, 0x02},
        {__LINE__, ORL::kSubLanguage_Sys_Default, 0x02},
        {__LINE__, ORL::kSubLanguage_Urdu_India, 0x02},
        {__LINE__, ORL::kSubLanguage_Urdu_Pakistan, 0x01},
        {__LINE__, ORL::kSubLanguage_Uzbek_Cyrillic, 0x02},
        {__LINE__, ORL::kSubLanguage_Uzbek_Latin, 0x01},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mValue, row.mConstant) << "row at line " << row.mLine;
    }
    EXPECT_EQ(ORL::kLanguage_Croatian, ORL::kLanguage_Serbian);
}
