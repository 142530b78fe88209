// The queues behind the printing functions and the logger.
#pragma once

namespace Lct {

class OutputQueue;

OutputQueue& standardOutput();
OutputQueue& standardError();
OutputQueue& systemLog(); // each text is whole lines

} // namespace Lct
