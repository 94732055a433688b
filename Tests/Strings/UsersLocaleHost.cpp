// A host in its user's locale: displays numbers, parses them back, and prints what a stream of that locale writes.
#include <ORLFoundation.h>
#include <tvxcore/Number.h>
#include <tvxcore/Text.h>

#include <iostream>
#include <sstream>

#if defined(__SANITIZE_ADDRESS__)
// The C library leaks the list of folders of LOCPATH.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions()
{
    return "leak:argz_add_sep\n";
}
#endif

int main()
{
    ORL::Foundation::Initialize();
    bool readsBack = true; // no numbers below 1: with a decimal comma they read as 0, as documented
    for (const double number : {1234.5, -1234567.25, 999.0, 1000.0, 12345678.0}) {
        const UTF16String shown = tvxcore::utility::NumberToString(number, 1, 2, {}, 31);
        readsBack = readsBack && ORL::Locale::GetValueFromDisplayString(shown) == number;
    }
    const UTF8String text = tvxcore::utility::UTF16to8(tvxcore::utility::NumberToString(1234567.5, 1, 1, {}, 31));
    std::wostringstream stream;
    stream.imbue(ORL::Locale::Native());
    stream << 1.5;
    std::cout << std::string(text.begin(), text.end()) << (readsBack ? " reads back, " : " does not read back, ")
              << (stream.str() == L"1,5"   ? "comma"
                  : stream.str() == L"1.5" ? "point"
                                           : "neither")
              << std::endl;
    ORL::Foundation::Terminate();
}
