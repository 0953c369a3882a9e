#include "common/command/showcommands.h"

#include <QCoreApplication>

namespace vantrel {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("ShowCommand", text);
}

} // namespace

ShowCommand::ShowCommand(const QString& text, const QString& method, QUndoCommand* parent)
    : InvokeMethodCommand(parent)
    , m_method(method)
{
    setText(text);
}

bool ShowCommand::init(Object* showConfiguration, const QString& showName)
{
    return InvokeMethodCommand::init(showConfiguration, m_method,
                                     VariantMap{{"showName", Variant::from(showName.toStdString())}});
}

ClearShowCommand::ClearShowCommand(QUndoCommand* parent)
    : ShowCommand(tr("Clear show"), QStringLiteral("clearShow"), parent)
{
}

RevertShowCommand::RevertShowCommand(QUndoCommand* parent)
    : ShowCommand(tr("Revert show"), QStringLiteral("revertShow"), parent)
{
}

SaveShowCommand::SaveShowCommand(QUndoCommand* parent)
    : ShowCommand(tr("Save show"), QStringLiteral("saveShow"), parent)
{
}

} // namespace vantrel
