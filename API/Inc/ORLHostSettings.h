// Floor: System
// The language of the process, and the location of the host application's settings.
//
// Languages are Windows language identifiers (ORLLanguage.h names their parts). The functions below also accept and
// return names for the languages in this table:
//
//   en_US 1033   de_DE 1031   fr_FR 1036   it_IT 1040   ja_JP 1041   es_ES 1034   nl_NL 1043   sv_SE 1053
//   cs_CZ 1029   ko_KR 1042   pl_PL 1045   pt_BR 1046   ru_RU 1049   tr_TR 1055   zh_CN 2052   zh_TW 1028
//
// Until SetLanguageID or SetLanguageString is called, the first function that needs the language reads the string value
// "Language" below GetRegistryBaseKey() in the user's root, once in the life of the process. Without that value the
// language is 1033, and a line in category "ORL.ResourceUtils.GetLanguageIDFromRegistry" is traced at level 0. Later
// changes of the value have no effect.
//
// Thread-safe. The functions may throw std::bad_alloc; in that case nothing has changed.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>

#include <atomic>
#include <cstdint>

namespace ORL {

namespace Internal {

/// The language, and a bit that is set once the language is known. Language and bit share one word, so a lock-free
/// reader never sees one without the other.
inline constexpr std::uint32_t kLanguageIsKnown = 0x10000;
ORL_API extern std::atomic<std::uint32_t> sLanguageID;

/// Reads the language from the registry, unless another thread has already read it.
ORL_API unsigned short FetchLanguageID();

} // namespace Internal

/// Returns the language. Once the language is known, the call costs one load and one branch.
ORL_API inline unsigned short GetLanguageID()
{
    const std::uint32_t language = Internal::sLanguageID.load(std::memory_order_relaxed);
    return (language & Internal::kLanguageIsKnown) != 0 ? static_cast<unsigned short>(language & 0xFFFF)
                                                        : Internal::FetchLanguageID();
}

/// Returns the primary language: bits 0 to 9 of GetLanguageID().
ORL_API unsigned short GetPrimaryLanguageID();

/// Sets the language of this process. Accepts any number, even one that is not in the table. Does not change the host's
/// settings.
ORL_API void SetLanguageID(unsigned short inLanguageID);

/// Sets the language by its name in the table, which must match exactly. Any other string is parsed as a decimal
/// number, reduced to 16 bits: "1031" is 1031, "0x407" is 0, and a string that does not begin with a number is 0.
ORL_API void SetLanguageString(const UTF16String& inLanguage);

/// Returns the name of the language; "en_US" for an identifier that is not in the table.
ORL_API UTF16String GetLanguageString();

/// Returns the code page of the language (ORLStringUtils.h): 932 for ja_JP, 949 for ko_KR, and 0, the system's default
/// page, for all others.
ORL_API unsigned int GetConversionCodePage();

/// Return the location of the host's settings, relative to the root of the user or of the machine. NAME and VERSION are
/// the values that the host passed to CRV (CRV/Application.h) before the first call of the function. Each string is
/// built once and stays valid for the life of the process.
///
///   GetRegistryBaseKey             Software\Zerin\NAME\VERSION\ (with the backslash)
///   GetRegistrySettingsKey         Software\Zerin\NAME\VERSION\Settings\ (the same)
///   GetRegistryHelpKey             Software\Zerin\NAME\VERSION\Help\ (the same)
///   GetRegistryCurrentVersionKey   Software\Zerin\NAME\CurrentVersion
ORL_API const UTF16String& GetRegistryBaseKey();
ORL_API const UTF16String& GetRegistrySettingsKey();
ORL_API const UTF16String& GetRegistryHelpKey();
ORL_API const UTF16String& GetRegistryCurrentVersionKey();

} // namespace ORL
