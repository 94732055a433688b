// A host that touches every public class, to be linked to the shared libraries at each optimisation level: what is
// inlined at one is a symbol at another, and has to come from somewhere. check_every_class.py finds what is missing.
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
