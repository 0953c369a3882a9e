#pragma once

#include "common/filesystem/operations/runnableoperation.h"

namespace vantrel {

/// A creation, a renaming or a removal of one item.
class ModifyOperation : public RunnableOperation
{
    Q_OBJECT

public:
    enum ModifyType {
        Create = 0,
        Rename = 1,
        Remove = 2,
    };
    Q_ENUM(ModifyType)

    enum ModifiedTargetType {
        Undefined = 0,
        File = 1,
        Directory = 2,
    };
    Q_ENUM(ModifiedTargetType)

    ModifyOperation(FileSystemTarget target, ModifyType type, ModifiedTargetType targetType,
                    QObject* parent = nullptr);
    /// A renaming; newName is a name without a path.
    ModifyOperation(FileSystemTarget target, const QString& newName, ModifiedTargetType targetType,
                    QObject* parent = nullptr);

    void print(QDebug& debug) const override;
    QList<FileSystemTarget> targets() const override;
    bool accept(OperationVisitor* visitor) override;

    FileSystemTarget target() const;
    ModifyType modifyType() const;
    ModifiedTargetType modifiedTargetType() const;
    QString newName() const;
    /// The target's path with newName() as its last component.
    QString absolutePath() const;

private:
    FileSystemTarget m_target;
    ModifyType m_modifyType;
    ModifiedTargetType m_targetType;
    QString m_newName;
};

} // namespace vantrel
