// A host that touches every public class. It is linked to the shared libraries at each optimisation level, because a
// function that is inlined at one level may be called at another, so a library must export it. check_every_class.py
// finds classes that are missing here.
#include "TouchCore.h"
#include "TouchFiles.h"
#include "TouchFoundation.h"
#include "TouchMedia.h"
#include "TouchMemory.h"
#include "TouchObjects.h"
#include "TouchSiblings.h"
#include "TouchStrings.h"
#include "TouchSystem.h"
#include "TouchThreads.h"

#include <iostream>

int main()
{
    ORL::Foundation::Initialize();
    Consumer::TouchCore();
    Consumer::TouchObjects();
    Consumer::TouchMemory();
    Consumer::TouchStrings();
    Consumer::TouchThreads();
    Consumer::TouchFiles();
    Consumer::TouchSystem();
    Consumer::TouchMedia();
    Consumer::TouchFoundation();
    Consumer::TouchSiblings();
    ORL::Foundation::Terminate();
    std::cout << "every class touched" << std::endl;
    return 0;
}
