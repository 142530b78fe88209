// Prints at the end how much processor time a run took, so that speeds can be compared on a busy machine.
#include <cstdio>
#include <cstdlib>
#include <ctime>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    std::atexit([] {
        std::fprintf(stderr, "stat::processor_seconds: %.2f\n",
                     static_cast<double>(std::clock()) / CLOCKS_PER_SEC);
    });
    return 0;
}
