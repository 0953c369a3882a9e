#include "common/command/invokemethodcommand.h"

#include "common/command/commandlogging.h"
#include "common/session/session.h"

namespace vantrel {

bool InvokeMethodCommand::init(Object* object, const QString& method, const VariantMap& args,
                               const QString& text)
{
    Path path;
    if (!resolve(object, method, path))
        return false;
    m_object = Ref<Object>(object);
    m_redoPath = path;
    m_redoArgs = args;
    if (!text.isEmpty())
        setText(text);
    setInitialized(true);
    return true;
}

bool InvokeMethodCommand::setUndo(const QString& method, const VariantMap& args)
{
    if (!initialized()) {
        qCWarning(lcCommand) << "Please initialize first";
        return false;
    }
    Path path;
    if (!resolve(m_object.get(), method, path))
        return false;
    m_undoPath = path;
    m_undoArgs = args;
    m_undoSupported = true;
    return true;
}

bool InvokeMethodCommand::resolve(Object* object, const QString& method, Path& path) const
{
    if (!object || !scene()) {
        qCWarning(lcCommand) << "No object set";
        return false;
    }
    const TypeInfo* type = object->getType();
    if (!type) {
        qCWarning(lcCommand) << "No type found in object?";
        return false;
    }
    const MethodInfo* info = type->findMethod(method.toStdString());
    if (!info) {
        qCWarning(lcCommand).noquote()
            << "No such method" << method << "on" << QString::fromStdString(type->name);
        return false;
    }
    if (!scene()->pathOf(object, info, path)) {
        qCWarning(lcCommand) << "pathOf failed";
        return false;
    }
    return true;
}

void InvokeMethodCommand::redo()
{
    if (m_redoPath.empty())
        return;
    send(m_redoPath, m_redoArgs);
    QUndoCommand::redo();
    setObsolete(!isUndoSupported());
}

void InvokeMethodCommand::undo()
{
    if (m_undoPath.empty())
        return;
    send(m_undoPath, m_undoArgs);
    QUndoCommand::undo();
    setObsolete(!isUndoSupported());
}

void InvokeMethodCommand::send(const Path& path, const VariantMap& args) const
{
    std::map<std::string, Json> values;
    for (const auto& [name, value] : args)
        Json::fromVariant(value, values[name]);
    Patch patch;
    patch.append(PatchOp::invoke(PathView(path), values));
    if (Session* session = Session::instance())
        session->sendPatch(patch);
}

} // namespace vantrel
