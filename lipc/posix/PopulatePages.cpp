// Systems without a call that maps pages ahead.
#include "lipc/PopulatePages.h"

namespace LIPC {

void populatePages(void*, std::size_t) {}

} // namespace LIPC
