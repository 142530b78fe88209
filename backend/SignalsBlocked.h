// Starts threads with all signals blocked, so that only the main thread handles signals.
#pragma once

#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

namespace Kest {

/// Blocks all signals in the current thread while this object exists. A thread that the current thread starts
/// during this time keeps all signals blocked, so that only the main thread handles signals.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before{};
};

/// Starts a thread that handles no signals and calls `body`. `thread` must not own a thread yet. Returns 0,
/// or the system's error number if the system refuses a thread.
template <typename Body>
int startThread(std::thread& thread, Body&& body)
{
    const SignalsBlocked blocked;
    try {
        thread = std::thread(std::forward<Body>(body));
    } catch (const std::system_error& refusal) {
        return refusal.code().value();
    }
    return 0;
}

} // namespace Kest
