#include "ServicesAtExitHost.h"

void AtExit::GoOnAfterEveryLibrary() {}
