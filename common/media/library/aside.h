#pragma once

#include <QThreadPool>

#include <utility>

/// What takes long and nobody waits for at the screen.
namespace vantrel::aside {

/// Threads of its own, since they give way to all others: to the window, and to a server on the same machine.
QThreadPool& pool();

/// Threads for the files that an operator names, whose disk may not answer. They are none of the global
/// pool's: Qt's painter shares out work there and waits for it, and would wait for that disk.
QThreadPool& files();

/// A thread for what the operator does to the library, who sees nothing of it until that is worked out.
QThreadPool& edits();

/// To be called first by what runs there. Qt's own priorities mean nothing here.
void giveWay();

/// A thread that gives way to nobody: while it frees what the main thread made, it holds the lock of the main
/// thread's memory again and again, and who stood behind others with it would hold the window up.
QThreadPool& remover();

/// Frees what this may be the last reference to: a large library takes its time for that. Any thread.
template <typename Reference>
void letGo(Reference remains)
{
    remover().start([remains = std::move(remains)] {});
}

} // namespace vantrel::aside
