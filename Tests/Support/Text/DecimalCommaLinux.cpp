#include <DecimalComma.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace ORLTest {

namespace {

// The source of a complete locale, because few machines have the system's locale sources installed.
constexpr char kSource[] = "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n";

std::string AsciiMap()
{
    std::string map = "<code_set_name> ASCII\n<escape_char> /\n<mb_cur_max> 1\n<mb_cur_min> 1\nCHARMAP\n";
    for (unsigned character = 0; character < 128; ++character) {
        char line[40];
        std::snprintf(line, sizeof(line), "<U%04X> /x%02x x\n", character, character);
        map += line;
    }
    return map + "END CHARMAP\n";
}

} // namespace

DecimalComma::DecimalComma() : mOld(std::setlocale(LC_NUMERIC, nullptr))
{
    mFolder.MakeFile("source", kSource);
    mFolder.MakeFile("map", AsciiMap());
    // The exit code is ignored: localedef warns about missing categories and fails, although it made the locale.
    const std::string command =
        "cd '" + mFolder.Host().string() + "' && localedef -c -i source -f ./map ./comma 2>/dev/null";
    static_cast<void>(std::system(command.c_str()) == 0);
    ::setenv("LOCPATH", mFolder.Host().c_str(), 1);
    std::setlocale(LC_NUMERIC, "comma");
    ::unsetenv("LOCPATH");
}

DecimalComma::~DecimalComma()
{
    std::setlocale(LC_NUMERIC, mOld.c_str());
}

bool DecimalComma::IsInForce() const
{
    return *std::localeconv()->decimal_point == ',';
}

} // namespace ORLTest
