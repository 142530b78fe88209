#include "lipc/PopulatePages.h"

#include <sys/mman.h>

namespace LIPC {

void populatePages(void* address, std::size_t bytes)
{
    if (address != nullptr)
        madvise(address, bytes,
                MADV_POPULATE_READ); // a system that does not know it says so, and that is all
}

} // namespace LIPC
