#include "common/command/setcommand.h"

#include <QCoreApplication>

namespace vantrel {

SetCommand::SetCommand(QUndoCommand* parent)
    : AbstractSceneCommand(parent)
{
    setText(QCoreApplication::translate("SetCommand", "Set object property value(s)"));
}

void SetCommand::init(const Path& path, const Variant& value, const Variant& oldValue)
{
    m_path = path;
    m_value = value;
    if (oldValue.type() != VariantType::None)
        m_oldValue = oldValue;
    setInitialized(true);
}

bool SetCommand::canMerge(const Variant& a, const Variant& b)
{
    return a.type() == b.type() && a.type() < VariantType::Bytes;
}

bool SetCommand::mergeWith(const QUndoCommand* other)
{
    const auto* set = dynamic_cast<const SetCommand*>(other);
    if (!set || !(set->m_path == m_path) || !m_mergeable)
        return false;
    if (set->m_mergeable) {
        m_value = set->m_value;
        setText(set->text());
        return true;
    }
    if (!canMerge(m_value, set->m_value))
        return false;
    // The end of a gesture: it closes the command without a value of its own.
    m_mergeable = false;
    return true;
}

void SetCommand::redo()
{
    if (Scene* tree = scene()) {
        if (m_oldValue.type() == VariantType::None)
            tree->getProperty(tree->find(PathView(m_path)), m_oldValue);
        tree->replaceProperty(tree->find(PathView(m_path)), m_value);
    }
    QUndoCommand::redo();
    if (m_undoDisabled)
        setObsolete(true);
}

void SetCommand::undo()
{
    if (Scene* tree = scene())
        tree->replaceProperty(tree->find(PathView(m_path)), m_oldValue);
    QUndoCommand::undo();
}

} // namespace vantrel
