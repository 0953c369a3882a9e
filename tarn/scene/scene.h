#pragma once

#include "tarn/json/patch.h"
#include "tarn/ref.h"
#include "tarn/scene/object.h"
#include "tarn/scene/scenestructureobserver.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// What Scene::find found: an object, or a property or a method of one. Valid until the tree changes.
class ScenePointer
{
public:
    /// The object, or the one whose property or method this is; null when nothing is there.
    Object* deref() const noexcept { return m_allProperties ? nullptr : m_object; }
    const PropertyInfo* property() const noexcept { return m_property; }
    const MethodInfo* method() const noexcept { return m_method; }
    explicit operator bool() const noexcept { return deref() != nullptr; }

private:
    friend class Scene;
    friend class ScenePatcher;
    bool isObject() const noexcept { return m_object && !m_property && !m_method && !m_allProperties; }

    Object* m_object = nullptr;
    const PropertyInfo* m_property = nullptr;
    const MethodInfo* m_method = nullptr;
    Object* m_container = nullptr; // what holds, or would hold, the object
    std::string m_key;             // and under which name
    bool m_allProperties = false;  // "properties" itself
};

/// One element of the batch that listeners get.
struct SceneChange
{
    enum Kind : std::int32_t { Added = 0, Removed = 1, PropertyChanged = 2 };
    std::int32_t kind = Added;
    Object* object = nullptr; // for Removed: already out of the tree, alive until the call returns
    const PropertyInfo* property = nullptr; // for PropertyChanged
    Variant value;                          // for PropertyChanged
    Object* parent = nullptr;               // for Added and Removed: where it stands, or stood
    int index = -1;                         // and as which of its parent's children
};

/// The tree of typed objects that mirrors the server's state (and, in the server, is that state). A new scene
/// holds the skeleton /device with channels, system/gpus, surfaces and showConfiguration; clear() keeps it.
/// One thread.
///
/// Each object that appears or goes is notified by itself, with all that lies below it, when the tree is
/// whole again; property changes of one call come as one batch, always before the next structural change. A
/// listener may edit the scene, and add and remove listeners. Writing the present value tells no one.
class Scene : public RefCounted
{
public:
    using ChangeCallback = std::function<void(Scene*, int count, const SceneChange*, void* user)>;

    Scene();
    ~Scene() override;

    ScenePointer find(PathView path) const;
    ScenePointer find(std::string_view path) const;
    Object* findObject(std::string_view path) const;
    Object* root() const noexcept { return m_root.get(); }

    /// The path in out; false, and an empty path, when the object is not in this tree. While the removal of
    /// an object is being told, it still has the path that it had.
    bool pathOf(const Object* object, Path& out) const;
    bool pathOf(const Object* object, const PropertyInfo* property,
                Path& out) const; // object + "properties" + name
    bool pathOf(const Object* object, const MethodInfo* method, Path& out) const; // object + "methods" + name

    bool getProperty(const ScenePointer& at, Variant& out) const;
    bool getProperties(const ScenePointer& at, VariantMap& out) const;
    /// False when there is no such property or the value is of another type. Read-only is for editors to
    /// respect.
    bool replaceProperty(const ScenePointer& at, const Variant& value);
    /// Makes an object of the container's item type, or of the one that "type" names, at a place of an array
    /// (before what is there) or of a map. False, and nothing is done, when a property does not fit.
    bool addObject(const ScenePointer& at, const VariantMap& properties);
    /// Items of arrays and maps only: the other objects are fixed.
    bool removeObject(const ScenePointer& at);
    /// To a place of an array, counted without the object itself, or of a map; a map's present item there
    /// goes.
    bool moveObject(const ScenePointer& from, const ScenePointer& to);
    /// Also onto a fixed object of the same type, which then takes the values over.
    bool copyObject(const ScenePointer& from, const ScenePointer& to);

    /// Applies operations of the other side, one after the other; one that does not fit is logged and
    /// skipped. strict: stop at the first that does not fit. True when all fitted.
    bool apply(const Patch& patch, bool strict);
    /// Removes what lies in the arrays and maps and sets the rest to its defaults.
    void clear();

    void addChangeCallback(const ChangeCallback& callback, void* user);
    /// The pair of function and user identifies the listener; functions compare by their target: function
    /// pointers by value, other function objects by their type.
    void removeChangeCallback(const ChangeCallback& callback, void* user);
    void notifyPropertyChange(Object* object, const PropertyInfo* property, const Variant& value);

    void addStructureObserver(SceneStructureObserver* observer);
    void removeStructureObserver(SceneStructureObserver* observer);

    /// The whole tree below a node as the "value" of an add: {"type", "properties": {...}, child: {...}},
    /// arrays as JSON arrays, maps as objects.
    static Json toJson(const Object* object);
    /// The operations that build this scene on an empty one, the answer to a get of the empty path.
    Patch snapshot() const;

private:
    friend class ScenePatcher;
    struct Listener;
    struct Removal
    {
        const Object* object;
        const Object* parent;
        std::string key;
    };
    /// Spans one public edit: sends what is pending at its end, and lets go of removed objects after the
    /// outermost.
    class Edit;

    // The edits themselves; each within an Edit.
    bool write(Object* object, const PropertyInfo* property, const Variant& value);
    void insert(Object* container, int index, const std::string& key, const Ref<Object>& object);
    Ref<Object> take(Object* container, int index);
    /// Gives an object of the tree the content of an unattached one of the same type, telling what differs.
    void assign(Object* to, const Ref<Object>& from);
    void assignProperties(Object* to, const Object* from);
    bool place(const ScenePointer& at, const Ref<Object>& object);
    bool move(const ScenePointer& from, const ScenePointer& to);
    bool copy(const ScenePointer& from, const ScenePointer& to);
    bool remove(const ScenePointer& at);
    void reset(Object* object);

    void notify(int count, const SceneChange* changes);
    void notifyStructure(SceneChange::Kind kind, Object* object, Object* parent, int index);
    template <typename F>
    void observe(F&& f);
    void flush();

    Ref<Object> m_root;
    std::vector<std::unique_ptr<Listener>> m_listeners;
    std::vector<SceneStructureObserver*> m_observers;
    std::vector<SceneChange> m_pending;  // property changes not told yet
    std::vector<Ref<Object>> m_departed; // removed, kept for listeners that still see them
    std::vector<Removal> m_removals;     // being told now
    int m_editDepth = 0;
    int m_notifyDepth = 0;
};

} // namespace vantrel
