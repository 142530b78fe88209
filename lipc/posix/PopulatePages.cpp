#include "lipc/PopulatePages.h"

namespace LIPC {

// Systems without a call for it.
void populatePages(void*, std::size_t) {}

} // namespace LIPC
