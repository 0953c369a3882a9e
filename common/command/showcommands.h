#pragma once

#include "common/command/invokemethodcommand.h"

namespace vantrel {

/// Invokes a method of the server's show configuration with the name of a show. What it does comes back as
/// patches.
class ShowCommand : public InvokeMethodCommand
{
public:
    /// False, with a warning, when the object is missing or has no such method.
    bool init(Object* showConfiguration, const QString& showName);

protected:
    ShowCommand(const QString& text, const QString& method, QUndoCommand* parent);

private:
    QString m_method;
};

class ClearShowCommand : public ShowCommand
{
public:
    explicit ClearShowCommand(QUndoCommand* parent = nullptr);
};

class RevertShowCommand : public ShowCommand
{
public:
    explicit RevertShowCommand(QUndoCommand* parent = nullptr);
};

class SaveShowCommand : public ShowCommand
{
public:
    explicit SaveShowCommand(QUndoCommand* parent = nullptr);
};

} // namespace vantrel
