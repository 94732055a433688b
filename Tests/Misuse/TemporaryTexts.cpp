// Comparisons of two strings that would each be copied to and hashed in a temporary ConstString, selected by number.
// Without a number this file compiles.
//
// Expected: operand
#include <ORLConstString.h>
#include <ORLString.h>

using namespace ORL;

int main()
{
    const UTF16String text = MakeString("abc");
    const ConstString constant("abc");
    bool isEqual = constant == text && text == constant && constant == "abc" && "abc" == constant;
    isEqual = isEqual && text == TVX_UTF16("abc");
#if ORL_MISUSE == 1
    isEqual = text == "abc";
#endif
#if ORL_MISUSE == 2
    isEqual = "abc" == text;
#endif
#if ORL_MISUSE == 3
    isEqual = text != "abc";
#endif
#if ORL_MISUSE == 4
    isEqual = text < "abc";
#endif
#if ORL_MISUSE == 5
    isEqual = "abc" > text;
#endif
    return isEqual ? 0 : 1;
}
