#pragma once

namespace vantrel {

class Object;

/// Told of each structural change on both sides of it, as an item model needs it. In rowAboutToBe... the tree
/// is as it was, in rowInserted and rowRemoved as it is then; the Added or Removed change goes out after
/// that. A row is the index in Object::getChildren(). An observer edits no structure from here; its owner
/// removes it before it dies.
class SceneStructureObserver
{
public:
    virtual ~SceneStructureObserver() = default;
    virtual void rowAboutToBeInserted(Object* parent, int row) = 0;
    virtual void rowInserted(Object* parent, int row) = 0;
    virtual void rowAboutToBeRemoved(Object* parent, int row) = 0;
    virtual void rowRemoved(Object* parent, int row) = 0;
};

} // namespace vantrel
