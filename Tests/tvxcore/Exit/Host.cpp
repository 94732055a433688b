// Exits while its module's threads are working.
#include "Module.h"

#include <cstring>

int main(int argc, char** argv)
{
    const char* const how = argc > 1 ? argv[1] : "";
    if (std::strcmp(how, "allocating") == 0) {
        StartAllocating();
    } else {
        StartWork(std::strcmp(how, "held") == 0);
    }
    return 17;
}
