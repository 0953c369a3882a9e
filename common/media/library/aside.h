#pragma once

#include <QThreadPool>

#include <utility>

/// What takes long and nobody waits for at the screen.
namespace vantrel::aside {

/// Threads of its own, since they give way to all others: to the window, and to a server on the same machine.
QThreadPool& pool();

/// To be called first by what runs there. Qt's own priorities mean nothing here.
void giveWay();

/// Frees what this may be the last reference to: a large library takes its time for that. Any thread.
template <typename Reference>
void letGo(Reference remains)
{
    pool().start([remains = std::move(remains)] { giveWay(); });
}

} // namespace vantrel::aside
