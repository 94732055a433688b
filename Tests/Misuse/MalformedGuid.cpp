// Malformed constant _guid literals, selected by number.
//
// Expected: ThrowInvalidArgument
#include <tvxcore/Guid.h>

using namespace tvxcore::literals;

int main()
{
#if ORL_MISUSE == 1
    constexpr auto guid = "20974874-84a4-4245-9372-b24a1649819"_guid;
#elif ORL_MISUSE == 2
    constexpr auto guid = "{20974874-84a4-4245-9372-b24a1649819x}"_guid;
#else
    constexpr auto guid = "{20974874-84a4-4245-9372-b24a16498199}"_guid;
#endif
    return guid.FirstWord() != 0 ? 0 : 1;
}
