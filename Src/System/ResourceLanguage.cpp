#include <ResourceLanguage.h>

namespace ORL {

unsigned short CurrentLanguage()
{
    return 1033;
}

} // namespace ORL
