#include "tarn/scene/scene.h"

#include "tarn/scene/objecttree.h"
#include "tarn/scene/scenepatcher.h"

#include <algorithm>

namespace vantrel {

struct Scene::Listener
{
    ChangeCallback callback;
    void* user;
    bool active = true;
};

class Scene::Edit
{
public:
    explicit Edit(Scene* scene)
        : m_scene(scene)
    {
        ++m_scene->m_editDepth;
    }
    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;
    ~Edit()
    {
        m_scene->flush();
        if (--m_scene->m_editDepth == 0 && m_scene->m_notifyDepth == 0)
            std::exchange(m_scene->m_departed, {});
    }

private:
    Scene* m_scene;
};

namespace {

bool sameTarget(const Scene::ChangeCallback& a, const Scene::ChangeCallback& b)
{
    using Function = void (*)(Scene*, int, const SceneChange*, void*);
    if (a.target_type() != b.target_type())
        return false;
    const auto* function = a.target<Function>();
    return !function || *function == *b.target<Function>();
}

bool isWithin(const Object* object, const Object* ancestor)
{
    while (object && object != ancestor)
        object = object->getParent();
    return object == ancestor;
}

} // namespace

Scene::Scene()
    : m_root(TypeInfo::instantiate("Scene"))
{
}
Scene::~Scene() = default;

ScenePointer Scene::find(PathView path) const
{
    ScenePointer at;
    at.m_object = m_root.get();
    for (std::size_t i = 0; i < path.size(); ++i) {
        Object* const holder = at.m_object;
        const std::string& name = path[i].text();
        const std::size_t left = path.size() - i - 1;
        if (Object* child = ObjectTree::child(holder, name)) {
            at.m_container = holder;
            at.m_object = child;
            if (left == 0)
                at.m_key = name;
            continue;
        }
        if (ObjectTree::itemType(holder)) {
            at.m_container = left == 0 ? holder : nullptr;
            at.m_key = name;
            at.m_object = nullptr;
        } else if (name == "properties" && left == 0) {
            at.m_allProperties = true;
        } else if (name == "properties" && left == 1) {
            at.m_property = holder->findProperty(path[i + 1].text());
        } else if (name == "methods" && left == 1) {
            at.m_method = holder->getType() ? holder->getType()->findMethod(path[i + 1].text()) : nullptr;
        }
        if (!at.m_property && !at.m_method && !at.m_allProperties)
            at.m_object = nullptr;
        return at;
    }
    return at;
}

ScenePointer Scene::find(std::string_view path) const
{
    const Path parsed(path);
    return find(PathView(parsed));
}

Object* Scene::findObject(std::string_view path) const
{
    const ScenePointer at = find(path);
    return at.isObject() ? at.m_object : nullptr;
}

bool Scene::pathOf(const Object* object, Path& out) const
{
    out = Path();
    if (!object)
        return false;
    std::vector<std::string> names;
    while (object != m_root.get()) {
        const Object* parent = object->getParent();
        if (parent) {
            names.push_back(parent->childName(parent->childIndex(object)));
        } else {
            const auto removal = std::ranges::find(m_removals, object, &Removal::object);
            if (removal == m_removals.end())
                return false;
            names.push_back(removal->key);
            parent = removal->parent;
        }
        object = parent;
    }
    for (auto name = names.rbegin(); name != names.rend(); ++name)
        out.append(std::move(*name));
    return true;
}

bool Scene::pathOf(const Object* object, const PropertyInfo* property, Path& out) const
{
    if (!property || !pathOf(object, out)) {
        out = Path();
        return false;
    }
    out.append("properties");
    out.append(property->name);
    return true;
}

bool Scene::pathOf(const Object* object, const MethodInfo* method, Path& out) const
{
    if (!method || !pathOf(object, out)) {
        out = Path();
        return false;
    }
    out.append("methods");
    out.append(method->name);
    return true;
}

bool Scene::getProperty(const ScenePointer& at, Variant& out) const
{
    return at.m_object && at.m_property && at.m_object->getProperty(at.m_property, out);
}

bool Scene::getProperties(const ScenePointer& at, VariantMap& out) const
{
    out.clear();
    if (!at.isObject())
        return false;
    for (const PropertyInfo* property : at.m_object->getProperties())
        at.m_object->getProperty(property, out[property->name]);
    return true;
}

bool Scene::replaceProperty(const ScenePointer& at, const Variant& value)
{
    const Edit edit(this);
    return at.m_object && at.m_property && write(at.m_object, at.m_property, value);
}

bool Scene::addObject(const ScenePointer& at, const VariantMap& properties)
{
    const TypeInfo* type = ObjectTree::itemType(at.m_container);
    if (!type)
        return false;
    if (const auto named = properties.find("type"); named != properties.end() && !type->findProperty("type"))
        type = TypeInfo::find(named->second.stringView());
    if (!ObjectTree::accepts(at.m_container, type))
        return false;
    const Ref<Object> object(TypeInfo::instantiate(type->name));
    for (const auto& [name, value] : properties) {
        const PropertyInfo* property = object->findProperty(name);
        if (property ? !object->setProperty(property, value) : name != "type")
            return false;
    }
    const Edit edit(this);
    return place(at, object);
}

bool Scene::removeObject(const ScenePointer& at)
{
    const Edit edit(this);
    return remove(at);
}

bool Scene::moveObject(const ScenePointer& from, const ScenePointer& to)
{
    const Edit edit(this);
    return move(from, to);
}

bool Scene::copyObject(const ScenePointer& from, const ScenePointer& to)
{
    const Edit edit(this);
    return copy(from, to);
}

void Scene::clear()
{
    const Edit edit(this);
    reset(m_root.get());
}

// --- the edits themselves

bool Scene::write(Object* object, const PropertyInfo* property, const Variant& value)
{
    Variant before;
    Variant after;
    if (!object->getProperty(property, before) || !object->setProperty(property, value))
        return false;
    object->getProperty(property, after);
    if (!(before == after))
        m_pending.push_back({SceneChange::PropertyChanged, object, property, std::move(after)});
    return true;
}

void Scene::insert(Object* container, int index, const std::string& key, const Ref<Object>& object)
{
    flush();
    observe([&](SceneStructureObserver* observer) { observer->rowAboutToBeInserted(container, index); });
    ObjectTree::insert(container, index, key, object);
    observe([&](SceneStructureObserver* observer) { observer->rowInserted(container, index); });
    notifyStructure(SceneChange::Added, object.get(), container, index);
}

Ref<Object> Scene::take(Object* container, int index)
{
    flush();
    m_removals.push_back({container->childAt(index), container, container->childName(index)});
    observe([&](SceneStructureObserver* observer) { observer->rowAboutToBeRemoved(container, index); });
    Ref<Object> object = ObjectTree::take(container, index);
    m_departed.push_back(object);
    observe([&](SceneStructureObserver* observer) { observer->rowRemoved(container, index); });
    notifyStructure(SceneChange::Removed, object.get(), container, index);
    m_removals.pop_back();
    return object;
}

void Scene::assignProperties(Object* to, const Object* from)
{
    for (const PropertyInfo* property : from->getProperties()) {
        Variant value;
        if (from->getProperty(property, value))
            write(to, property, value);
    }
}

void Scene::assign(Object* to, const Ref<Object>& from)
{
    assignProperties(to, from.get());
    if (!ObjectTree::itemType(to)) {
        for (int i = 0; i < std::min(to->childCount(), from->childCount()); ++i)
            assign(to->childAt(i), Ref<Object>(from->childAt(i)));
        return;
    }
    // Items that stay keep their identity: by index in an array, by name in a map.
    const bool isMap = dynamic_cast<ObjectMap*>(to) != nullptr;
    for (int i = to->childCount() - 1; i >= 0; --i) {
        const Object* before = to->childAt(i);
        const Object* after =
            before && isMap ? ObjectTree::child(from.get(), to->childName(i)) : from->childAt(i);
        if (before && (!after || after->getType() != before->getType()))
            take(to, i);
    }
    std::vector<std::string> keys;
    for (int i = 0; i < from->childCount(); ++i)
        keys.push_back(from->childName(i));
    const std::vector<Ref<Object>> items = ObjectTree::takeAll(from.get());
    for (std::size_t i = 0; i < items.size(); ++i) {
        Object* present = ObjectTree::child(to, keys[i]);
        if (present && present->getType() == items[i]->getType())
            assign(present, items[i]);
        else if (const int index = ObjectTree::place(to, keys[i]); index >= 0)
            insert(to, index, keys[i], items[i]);
    }
}

bool Scene::place(const ScenePointer& at, const Ref<Object>& object)
{
    const int index = ObjectTree::place(at.m_container, at.m_key);
    if (index < 0 || !ObjectTree::accepts(at.m_container, object->getType()))
        return false;
    if (auto* map = dynamic_cast<ObjectMap*>(at.m_container); map && map->find(at.m_key))
        take(map, index);
    insert(at.m_container, index, at.m_key, object);
    return true;
}

bool Scene::remove(const ScenePointer& at)
{
    const int index =
        at.isObject() && ObjectTree::itemType(at.m_container) ? at.m_container->childIndex(at.m_object) : -1;
    if (index < 0)
        return false;
    take(at.m_container, index);
    return true;
}

bool Scene::move(const ScenePointer& from, const ScenePointer& to)
{
    if (!from.isObject() || !ObjectTree::itemType(from.m_container) || !to.m_container ||
        isWithin(to.m_container, from.m_object) ||
        !ObjectTree::accepts(to.m_container, from.m_object->getType()))
        return false;
    const int before = from.m_container->childIndex(from.m_object);
    const bool stays = to.m_container == from.m_container;
    int after = ObjectTree::place(to.m_container, to.m_key);
    const bool isArray = dynamic_cast<ObjectArray*>(to.m_container) != nullptr;
    if (stays && isArray && (to.m_key == "-" || after > to.m_container->childCount() - 1))
        after = to.m_key == "-" ? after - 1 : -1;
    if (before < 0 || after < 0)
        return false;
    if (stays && (isArray ? after == before : to.m_object == from.m_object))
        return true;
    const Ref<Object> object = take(from.m_container, before);
    ScenePointer target = to;
    if (isArray)
        target.m_key = std::to_string(std::min(after, to.m_container->childCount()));
    return place(target, object);
}

bool Scene::copy(const ScenePointer& from, const ScenePointer& to)
{
    if (from.m_property) {
        Variant value;
        return getProperty(from, value) && to.m_property && write(to.m_object, to.m_property, value);
    }
    if (!from.isObject() || to.m_property || to.m_method || to.m_allProperties)
        return false;
    if (ObjectTree::itemType(to.m_container))
        return place(to, ObjectTree::clone(from.m_object));
    if (!to.m_object || to.m_object->getType() != from.m_object->getType() ||
        ObjectTree::itemType(to.m_object) != ObjectTree::itemType(from.m_object))
        return false;
    assign(to.m_object, ObjectTree::clone(from.m_object));
    return true;
}

void Scene::reset(Object* object)
{
    for (const PropertyInfo* property : object->getProperties())
        write(object, property, property->def);
    const bool isContainer = ObjectTree::itemType(object) != nullptr;
    for (int i = object->childCount() - 1; i >= 0; --i) {
        if (isContainer && i < object->childCount())
            take(object, i);
        else if (Object* child = object->childAt(i))
            reset(child);
    }
}

// --- listeners

void Scene::addChangeCallback(const ChangeCallback& callback, void* user)
{
    if (callback)
        m_listeners.push_back(std::make_unique<Listener>(Listener{callback, user}));
}

void Scene::removeChangeCallback(const ChangeCallback& callback, void* user)
{
    const auto found = std::ranges::find_if(m_listeners, [&](const auto& listener) {
        return listener->active && listener->user == user && sameTarget(listener->callback, callback);
    });
    if (found == m_listeners.end())
        return;
    // While a change is being told the listener only falls silent: its function may be the one that runs.
    if (m_notifyDepth > 0)
        (*found)->active = false;
    else
        m_listeners.erase(found);
}

void Scene::notifyPropertyChange(Object* object, const PropertyInfo* property, const Variant& value)
{
    const SceneChange change{SceneChange::PropertyChanged, object, property, value};
    const Edit edit(this);
    flush();
    notify(1, &change);
}

void Scene::notify(int count, const SceneChange* changes)
{
    ++m_notifyDepth;
    const std::size_t present = m_listeners.size(); // those added meanwhile begin with the next change
    for (std::size_t i = 0; i < present; ++i) {
        Listener* listener = m_listeners[i].get();
        if (listener->active)
            listener->callback(this, count, changes, listener->user);
    }
    if (--m_notifyDepth == 0)
        std::erase_if(m_listeners, [](const auto& listener) { return !listener->active; });
}

void Scene::notifyStructure(SceneChange::Kind kind, Object* object, Object* parent, int index)
{
    const SceneChange change{kind, object, nullptr, {}, parent, index};
    notify(1, &change);
}

void Scene::flush()
{
    while (!m_pending.empty()) {
        const std::vector<SceneChange> changes = std::exchange(m_pending, {});
        notify(static_cast<int>(changes.size()), changes.data());
    }
}

void Scene::addStructureObserver(SceneStructureObserver* observer)
{
    m_observers.push_back(observer);
}
void Scene::removeStructureObserver(SceneStructureObserver* observer)
{
    std::ranges::replace(m_observers, observer, static_cast<SceneStructureObserver*>(nullptr));
    if (m_notifyDepth == 0)
        std::erase(m_observers, nullptr);
}

template <typename F>
void Scene::observe(F&& f)
{
    ++m_notifyDepth;
    const std::size_t present = m_observers.size();
    for (std::size_t i = 0; i < present; ++i) {
        if (SceneStructureObserver* observer = m_observers[i])
            f(observer);
    }
    --m_notifyDepth;
}

bool Scene::apply(const Patch& patch, bool strict)
{
    const Edit edit(this);
    return ScenePatcher(*this).apply(patch, strict);
}

namespace {

// Fixed parts get their properties replaced, items are added whole.
void describe(const Object* object, const Path& path, Patch& out)
{
    if (ObjectTree::itemType(object)) {
        for (int i = 0; i < object->childCount(); ++i)
            out.append({PatchOpType::Add,
                        path + Path{object->childName(i)},
                        {},
                        ObjectTree::toJson(object->childAt(i))});
        return;
    }
    if (!object->getProperties().empty())
        out.append(
            {PatchOpType::Replace, path + Path{"properties"}, {}, ObjectTree::propertiesToJson(object)});
    for (int i = 0; i < object->childCount(); ++i)
        describe(object->childAt(i), path + Path{object->childName(i)}, out);
}

} // namespace

Patch Scene::snapshot() const
{
    Patch patch;
    describe(m_root.get(), {}, patch);
    return patch;
}

Json Scene::toJson(const Object* object)
{
    return object ? ObjectTree::toJson(object) : Json();
}

} // namespace vantrel
