#pragma once

#include "tarn/json/patch.h"
#include "tarn/ref.h"
#include "tarn/scene/object.h"

#include <functional>
#include <string>
#include <string_view>

namespace vantrel {

/// What Scene::find found: an object, or a property or a method of one. Valid until the tree changes.
class ScenePointer
{
public:
    Object* deref() const noexcept;           // null when nothing is there
    const PropertyInfo* property() const noexcept;
    const MethodInfo* method() const noexcept;
    // parent container and last element, for addObject and moveObject to a place that does not exist yet
};

/// One element of the batch that listeners get.
struct SceneChange
{
    enum Kind : std::int32_t { Added = 0, Removed = 1, PropertyChanged = 2 };
    std::int32_t kind = Added;
    Object* object = nullptr;              // for Removed: already out of the tree, still alive; see removedFrom
    const PropertyInfo* property = nullptr; // for PropertyChanged
    Variant value;                          // for PropertyChanged
};

/// The tree of typed objects that mirrors the server's state (and, in the server, is that state). A new scene holds
/// the skeleton /device with channels, system/gpus, surfaces and showConfiguration; clear() keeps it. One thread.
class Scene : public RefCounted
{
public:
    using ChangeCallback = std::function<void(Scene*, int count, const SceneChange*, void* user)>;

    Scene();

    ScenePointer find(PathView path) const;
    ScenePointer find(std::string_view path) const;
    Object* findObject(std::string_view path) const;

    /// The path in out; false, and an empty path, when the object is not in this tree.
    bool pathOf(const Object* object, Path& out) const;
    bool pathOf(const Object* object, const PropertyInfo* property, Path& out) const; // object + "properties" + name
    bool pathOf(const Object* object, const MethodInfo* method, Path& out) const;     // object + "methods" + name

    bool getProperty(const ScenePointer& at, Variant& out) const;
    bool getProperties(const ScenePointer& at, VariantMap& out) const;
    bool replaceProperty(const ScenePointer& at, const Variant& value);
    bool addObject(const ScenePointer& at, const VariantMap& properties);
    bool removeObject(const ScenePointer& at);
    bool moveObject(const ScenePointer& from, const ScenePointer& to);
    bool copyObject(const ScenePointer& from, const ScenePointer& to);

    /// Applies operations of the other side, one after the other; one that does not fit is logged and skipped.
    /// strict: stop at the first that does not fit.
    bool apply(const Patch& patch, bool strict);
    void clear();

    void addChangeCallback(const ChangeCallback& callback, void* user);
    /// The pair of function and user identifies the listener; functions compare by their target.
    void removeChangeCallback(const ChangeCallback& callback, void* user);
    void notifyPropertyChange(Object* object, const PropertyInfo* property, const Variant& value);

    /// The whole tree below a node as the "value" of an add: {"type", "properties": {...}, child: {...}}, arrays as
    /// JSON arrays, maps as objects.
    static Json toJson(const Object* object);
    /// The operations that build this scene on an empty one, the answer to a get of the empty path.
    Patch snapshot() const;
};

} // namespace vantrel
