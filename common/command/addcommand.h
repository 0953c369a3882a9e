#pragma once

#include "common/command/abstractscenecommand.h"
#include "common/command/commandid.h"

namespace vantrel {

/// Adds an object to the scene; undo removes it.
class AddCommand : public AbstractSceneCommand
{
public:
    explicit AddCommand(QUndoCommand* parent = nullptr);

    void init(const Path& path, const VariantMap& properties);

    int id() const override { return static_cast<int>(CommandId::Add); }
    void redo() override;
    void undo() override;

private:
    Path m_path;
    VariantMap m_properties;
};

} // namespace vantrel
