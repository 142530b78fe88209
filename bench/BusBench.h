// The agent as a client on the session bus sees it. Each mode starts the agent, prints a name and a number a
// line, and gives an exit status.
#pragma once

#include "bench/Watcher.h"

#include <string>
#include <vector>

namespace Kest::Bench {

using Command = std::vector<std::string>;

/// From an encoder's line in the pipe to the signal with its percentage, while eight encoders write a
/// thousand lines a second; beside plain signals of another process to the same client, sent meanwhile.
int lineToSignal(int seconds, const Command& agent);

/// From a bus's new name in the host's segment to the signal after which the menu has it.
int hostToSignal(int seconds, const Command& agent);

/// From a click, and from a request at the control socket, to the choice in the host's segment; beside an
/// attachment and the saving of one file, which
/// is what a choice cannot do without.
int choiceToHost(int choices, const Command& agent);

/// From an encoder's line in the pipe to the event at a client that watches the control socket; and the
/// private memory that four such clients cost.
int controlSocket(int lines, const Command& agent);

/// The agent's time for one more message when its history holds so many encodings.
int longHistory(int encodings, const Command& agent);

} // namespace Kest::Bench
