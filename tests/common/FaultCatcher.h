/// Turns memory faults into results, so that they don't end the test program.
#pragma once

#include <csetjmp>
#include <csignal>

namespace kestrix::test {

/// Catches faults of what it runs, for as long as it lives. One at a time.
class FaultCatcher {
public:
    FaultCatcher()
    {
        struct sigaction action = {};
        action.sa_sigaction = [](int, siginfo_t* info, void*) {
            s_address = info->si_addr;
            siglongjmp(s_return, 1);
        };
        // The handler is never returned from, so the signal must not stay blocked.
        action.sa_flags = SA_SIGINFO | SA_NODEFER;
        sigaction(SIGSEGV, &action, &m_before);
    }

    ~FaultCatcher() { sigaction(SIGSEGV, &m_before, nullptr); }
    FaultCatcher(const FaultCatcher&) = delete;
    FaultCatcher& operator=(const FaultCatcher&) = delete;

    /// Whether `f` reads or writes memory that it can't. After a fault it does not go on, and its
    /// objects are not destroyed.
    template<class F>
    bool faults(const F& f)
    {
        if (sigsetjmp(s_return, 0) != 0)
            return true;
        f();
        return false;
    }

    /// Where the last fault was.
    const void* address() const { return s_address; }

private:
    static inline sigjmp_buf s_return;
    static inline void* volatile s_address = nullptr;
    struct sigaction m_before = {};
};

} // namespace kestrix::test
