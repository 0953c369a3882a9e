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

    /// Of the creation of a directory: one that is there already will do.
    bool acceptsExisting() const { return m_acceptsExisting; }
    void setAcceptsExisting(bool accepts) { m_acceptsExisting = accepts; }
    /// Of the removal of a directory: one that holds anything stays, and that is no failure.
    bool onlyEmpty() const { return m_onlyEmpty; }
    void setOnlyEmpty(bool onlyEmpty) { m_onlyEmpty = onlyEmpty; }

private:
    FileSystemTarget m_target;
    ModifyType m_modifyType;
    ModifiedTargetType m_targetType;
    QString m_newName;
    bool m_acceptsExisting = false;
    bool m_onlyEmpty = false;
};

} // namespace vantrel
