#include "ServicesAtExitHost.h"

void AtExit::RunAfterLibraryDestructors()
{
}
