// Linux maps pages ahead since 5.14.
#include "lipc/PopulatePages.h"

#include <sys/mman.h>

namespace LIPC {

void populatePages(void* address, std::size_t bytes)
{
    if (address != nullptr)
        madvise(address, bytes, MADV_POPULATE_READ); // an older system refuses, and that is all
}

} // namespace LIPC
