#include <DecimalComma.h>

#include <clocale>

namespace ORLTest {

DecimalComma::DecimalComma() : mOld(std::setlocale(LC_NUMERIC, nullptr))
{
    std::setlocale(LC_NUMERIC, "German");
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
