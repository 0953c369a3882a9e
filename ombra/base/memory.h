#pragma once

namespace vantrel::ombra {

/// How the process holds its memory; before any thread.
void arrangeMemory();

/// Gives what is free back to the system, within a millisecond or two; for threads that nobody waits for, and
/// that do not give way to others, since everybody's memory is locked for moments meanwhile.
void giveBackMemory();

} // namespace vantrel::ombra
