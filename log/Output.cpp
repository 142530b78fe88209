#include "log/Output.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace Lct {

void print(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stdout, format, arguments);
    va_end(arguments);
}

void printError(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}

void printSystemError(const char* what) { printError("%s: %s\n", what, std::strerror(errno)); }

bool flushOutput(int) { return std::fflush(nullptr) == 0; }

} // namespace Lct
