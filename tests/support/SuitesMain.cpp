#include "support/TestEnvironment.h"

int main(int argc, char* argv[])
{
    return TestEnvironment::runSuites(argc, argv);
}
