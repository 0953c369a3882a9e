#pragma once

#include "common/command/abstractsessioncommand.h"

#include <QObject>

namespace vantrel {

/// The root of a command that needs signals and slots beside its place on the undo stack.
class AbstractApiCommand : public QObject, public AbstractSessionCommand
{
    Q_OBJECT

public:
    explicit AbstractApiCommand(QUndoCommand* parent = nullptr)
        : AbstractSessionCommand(parent)
    {
    }
};

} // namespace vantrel
