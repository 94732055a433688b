// The C library's numbers with a decimal comma, as a host makes them that asks for its user's locale.
#pragma once

#include <TempFolder.h>

#include <string>

namespace ORLTest {

/// While it lives, printf and its kin write a comma. IsInForce is false where the system has no such locale to give.
class DecimalComma
{
public:
    DecimalComma();
    ~DecimalComma();
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;

    bool IsInForce() const;

private:
    TempFolder mFolder; // of a locale that was made for this
    std::string mOld;
};

} // namespace ORLTest
