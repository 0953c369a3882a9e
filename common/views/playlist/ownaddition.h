#pragma once

#include "tarn/media/entryaddress.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>

class QUndoStack;

namespace vantrel {

class AbstractDiffApiCommand;

/// Tells the entries that this window adds from those that come from elsewhere: it watches the last command
/// that was run through it until its entries come or it is refused. Main thread.
class OwnAddition : public QObject
{
    Q_OBJECT

public:
    /// stack: on which the commands land; it may go first.
    OwnAddition(QUndoStack* stack, QObject* parent);

    /// Does what adds entries by one command, or none.
    void watch(const std::function<void()>& operation);
    /// Which of the entries that came are those of the command; once.
    QList<EntryAddress> take(uint playlist, const QList<EntryAddress>& came);
    void forget();

private:
    QPointer<QUndoStack> m_stack;
    QPointer<const AbstractDiffApiCommand> m_command;
};

} // namespace vantrel
