#include "tests/support/crashtrace.h"

#include <csignal>
#include <execinfo.h>
#include <unistd.h>

namespace vantrel::test {

namespace {

// Only calls that a signal handler may make: backtrace() itself is called once before, since its first call
// loads a library.
void trace(int number)
{
    constexpr int depth = 64;
    void* frames[depth];
    constexpr char said[] = "the test crashed here:\n";
    [[maybe_unused]] const auto written = write(STDERR_FILENO, said, sizeof said - 1);
    backtrace_symbols_fd(frames, backtrace(frames, depth), STDERR_FILENO);
    raise(number); // the handler is gone already: the process ends as it would have
}

} // namespace

void traceCrashes()
{
    void* first[1];
    backtrace(first, 1);
    struct sigaction action = {};
    action.sa_handler = trace;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        sigaction(number, &action, nullptr);
}

} // namespace vantrel::test
