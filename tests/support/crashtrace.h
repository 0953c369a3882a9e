#pragma once

namespace vantrel::test {

/// From here on a crash of the test (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT) writes the stack of the thread
/// that crashed to standard error before the process ends of it: a crash that comes once in a hundred runs
/// must say where.
void traceCrashes();

} // namespace vantrel::test
