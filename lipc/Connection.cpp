#include "lipc/Connection.h"

namespace LIPC {
namespace {

Connection nullConnection()
{
    Connection none;
    none.map.fill(0xFF);
    return none;
}

} // namespace

const Connection Connection::mscNull = nullConnection();

} // namespace LIPC
