// A host under its user's locale: shows numbers, reads what it showed, and says what its stream of the user's locale writes.
#include <ORLFoundation.h>
#include <tvxcore/Number.h>
#include <tvxcore/Text.h>

#include <iostream>
#include <sstream>

int main()
{
    ORL::Foundation::Initialize();
    bool readsBack = true; // below 1 a decimal comma is lost by the declared rule
    for (const double number : {1234.5, -1234567.25, 999.0, 1000.0, 12345678.0}) {
        const UTF16String shown = tvxcore::utility::NumberToString(number, 1, 2, {}, 31);
        readsBack = readsBack && ORL::Locale::GetValueFromDisplayString(shown) == number;
    }
    const UTF8String text = tvxcore::utility::UTF16to8(tvxcore::utility::NumberToString(1234567.5, 1, 1, {}, 31));
    std::wostringstream stream;
    stream.imbue(ORL::Locale::Native());
    stream << 1.5;
    std::cout << std::string(text.begin(), text.end()) << (readsBack ? " reads back, " : " does not read back, ")
              << (stream.str() == L"1,5" ? "comma" : stream.str() == L"1.5" ? "point" : "neither") << std::endl;
    ORL::Foundation::Terminate();
}
