#include "common/filesystem/operations/modifyoperation.h"

#include "common/filesystem/model/operationvisitor.h"
#include "common/filesystem/model/pathhelpers.h"

namespace vantrel {

ModifyOperation::ModifyOperation(FileSystemTarget target, ModifyType type, ModifiedTargetType targetType,
                                 QObject* parent)
    : RunnableOperation(parent)
    , m_target(std::move(target))
    , m_modifyType(type)
    , m_targetType(targetType)
{
    if (type == Create)
        m_newName = getNameInPath(m_target.fullPath);
}

ModifyOperation::ModifyOperation(FileSystemTarget target, const QString& newName,
                                 ModifiedTargetType targetType, QObject* parent)
    : RunnableOperation(parent)
    , m_target(std::move(target))
    , m_modifyType(Rename)
    , m_targetType(targetType)
    , m_newName(newName)
{
}

void ModifyOperation::print(QDebug& debug) const
{
    debug << metaObject()->className() << ", type:" << m_modifyType << ", target type:" << m_targetType
          << ", target:";
    printTarget(debug, m_target);
    debug << ", state:" << state() << ", errors:" << errors().size();
}

QList<FileSystemTarget> ModifyOperation::targets() const
{
    return {m_target};
}

bool ModifyOperation::accept(OperationVisitor* visitor)
{
    const auto self = sharedFromThis().staticCast<ModifyOperation>();
    return self && visitor->visit(self);
}

FileSystemTarget ModifyOperation::target() const
{
    return m_target;
}

ModifyOperation::ModifyType ModifyOperation::modifyType() const
{
    return m_modifyType;
}

ModifyOperation::ModifiedTargetType ModifyOperation::modifiedTargetType() const
{
    return m_targetType;
}

QString ModifyOperation::newName() const
{
    return m_newName;
}

QString ModifyOperation::absolutePath() const
{
    return createJoinedPath(getParentPath(m_target.fullPath), m_newName, false);
}

} // namespace vantrel
