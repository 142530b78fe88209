// Says at the end what processor time a run took, so that speeds can be compared on a machine that is busy.
#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    std::atexit([] {
        rusage used{};
        getrusage(RUSAGE_SELF, &used);
        const auto seconds = [](const timeval& time) {
            return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
        };
        std::fprintf(stderr, "stat::processor_seconds: %.2f\n",
                     seconds(used.ru_utime) + seconds(used.ru_stime));
    });
    return 0;
}
