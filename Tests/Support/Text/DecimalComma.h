// A C locale with a decimal comma, as in a host that sets its user's locale.
#pragma once

#include <TempFolder.h>

#include <string>

namespace ORLTest {

/// While an instance exists, printf and its relatives write a decimal comma. IsInForce returns false if the OS has no
/// such locale.
class DecimalComma
{
public:
    DecimalComma();
    ~DecimalComma();
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;

    bool IsInForce() const;

private:
    TempFolder mFolder; // holds a locale that was compiled for this object
    std::string mOld;
};

} // namespace ORLTest
