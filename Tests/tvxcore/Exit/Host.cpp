// Ends while threads of its module are at work.
#include "Module.h"

#include <cstring>

int main(int argc, char** argv)
{
    StartWork(argc > 1 && std::strcmp(argv[1], "held") == 0);
    return 17;
}
