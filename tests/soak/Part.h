// What the parts of the soak test have in common: how they are called and the rows that they print.
#pragma once

#include <cstdio>
#include <string>
#include <unistd.h>

namespace Kest::Test {

/// `PROGRAM [--quick]`. What is printed goes to standard error from here on, but for the rows.
class Part {
public:
    Part(int argc, char** argv)
        : isQuick(argc > 1 && std::string(argv[1]) == "--quick"), rows(dup(STDOUT_FILENO))
    {
        dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    ~Part() { close(rows); }
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    int count(int inFull, int whenQuick) const { return isQuick ? whenQuick : inFull; }

    void row(const std::string& fault, const std::string& goal, const std::string& reached, bool holds)
    {
        std::fflush(nullptr);
        dprintf(rows, "row\t%s\t%s\t%s\t%s\n", fault.c_str(), goal.c_str(), reached.c_str(),
                holds ? "holds" : "misses");
        missed = missed || !holds;
    }
    int exitStatus() const { return missed ? 1 : 0; }

private:
    const bool isQuick;
    const int rows;
    bool missed = false;
};

} // namespace Kest::Test
