#include <ResourceLanguage.h>

#include <ORLHostSettings.h>

namespace ORL {

unsigned short CurrentLanguage()
{
    return GetLanguageID();
}

} // namespace ORL
