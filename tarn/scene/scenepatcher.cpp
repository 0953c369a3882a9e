#include "tarn/scene/scenepatcher.h"

#include "tarn/json/patchnames.h"
#include "tarn/log/log.h"
#include "tarn/scene/objecttree.h"
#include "tarn/scene/variantjson.h"

namespace vantrel {

bool ScenePatcher::refuse(const char* why)
{
    m_why = why;
    return false;
}

void ScenePatcher::report(const PatchOp& op)
{
    // A patch of nothing but nonsense must not drown the log.
    if (++m_misfits > maxReports)
        return;
    Log::write_fmt(LogLevel::Warning, {}, "scene", "Skipping %s of %s: %s", toStr(op.op),
                   op.path.toString().c_str(), m_why.c_str());
    if (m_misfits == maxReports)
        Log::write_fmt(LogLevel::Warning, {}, "scene", "Further misfits of this patch stay unsaid");
}

bool ScenePatcher::apply(const Patch& patch, bool strict)
{
    for (const PatchOp& op : patch) {
        if (apply(op))
            continue;
        report(op);
        if (strict)
            return false;
    }
    return m_misfits == 0;
}

bool ScenePatcher::apply(const PatchOp& op)
{
    switch (op.op) {
    case PatchOpType::Add:
        return add(op);
    case PatchOpType::Replace:
        return replace(op);
    case PatchOpType::Remove: {
        const ScenePointer at = m_scene.find(PathView(op.path));
        return m_scene.remove(at) || refuse(at.m_object ? "it is a fixed part" : "nothing is there");
    }
    case PatchOpType::Move:
        return move(op);
    case PatchOpType::Copy: {
        const ScenePointer from = m_scene.find(PathView(op.from));
        return m_scene.copy(from, m_scene.find(PathView(op.path))) || refuse("it cannot be copied there");
    }
    case PatchOpType::Test:
        return test(op);
    case PatchOpType::Get:
    case PatchOpType::Invoke:
        break;
    }
    return refuse("it means nothing to a scene");
}

bool ScenePatcher::add(const PatchOp& op)
{
    const ScenePointer at = m_scene.find(PathView(op.path));
    if (!ObjectTree::itemType(at.m_container) || at.m_property || at.m_method || at.m_allProperties)
        return assignTo(at, op.value);
    if (ObjectTree::place(at.m_container, at.m_key) < 0)
        return refuse("there is no such place");
    const Ref<Object> object = ObjectTree::fromJson(ObjectTree::itemType(at.m_container), op.value, m_why);
    return object && (m_scene.place(at, object) || refuse("it does not belong there"));
}

bool ScenePatcher::replace(const PatchOp& op)
{
    return assignTo(m_scene.find(PathView(op.path)), op.value);
}

bool ScenePatcher::assignTo(const ScenePointer& at, const Json& value)
{
    if (at.m_property) {
        const Variant variant = variantFromJson(value, at.m_property->type);
        return m_scene.write(at.m_object, at.m_property, variant) ||
               refuse((std::string("the value is no ") + toStr(at.m_property->type)).c_str());
    }
    if (!at.m_object || at.m_method)
        return refuse("nothing is there");
    const Object* present = at.m_object;
    if (at.m_allProperties) {
        const Ref<Object> blank(TypeInfo::instantiate(present->getTypeName()));
        if (!blank || !ObjectTree::fillProperties(blank.get(), value, m_why))
            return false;
        m_scene.assignProperties(at.m_object, blank.get());
        return true;
    }
    Ref<Object> content;
    if (const TypeInfo* itemType = ObjectTree::itemType(present)) {
        const bool isMap = dynamic_cast<const ObjectMap*>(present) != nullptr;
        content = isMap ? Ref<Object>(new ObjectMap(itemType)) : Ref<Object>(new ObjectArray(itemType));
        if (!ObjectTree::fill(content.get(), value, m_why))
            return false;
    } else {
        // An item may change into another type of its container's; a fixed part keeps its own.
        const TypeInfo* itemOf = ObjectTree::itemType(at.m_container);
        content = ObjectTree::fromJson(itemOf ? itemOf : present->getType(), value, m_why);
        if (!content)
            return false;
        if (content->getType() != present->getType()) {
            if (!itemOf)
                return refuse("it is of another type");
            const int index = at.m_container->childIndex(present);
            m_scene.take(at.m_container, index);
            m_scene.insert(at.m_container, std::min(index, at.m_container->childCount()), at.m_key, content);
            return true;
        }
    }
    m_scene.assign(at.m_object, content);
    return true;
}

bool ScenePatcher::move(const PatchOp& op)
{
    const ScenePointer from = m_scene.find(PathView(op.from));
    if (!from.isObject() || !ObjectTree::itemType(from.m_container))
        return refuse(from.m_object ? "it is a fixed part" : "nothing is there to move");
    if (op.from == op.path)
        return true;
    // The target is read in the tree without the object, as a removal and an addition would.
    const int index = from.m_container->childIndex(from.m_object);
    Ref<Object> object = ObjectTree::take(from.m_container, index);
    const ScenePointer to = m_scene.find(PathView(op.path));
    ObjectTree::insert(from.m_container, index, from.m_key, std::move(object));
    return m_scene.move(from, to) || refuse("it cannot be moved there");
}

bool ScenePatcher::test(const PatchOp& op)
{
    const ScenePointer at = m_scene.find(PathView(op.path));
    Json present;
    if (at.m_property) {
        Variant value;
        m_scene.getProperty(at, value);
        Json::fromVariant(value, present);
    } else if (at.m_object && !at.m_method) {
        present =
            at.m_allProperties ? ObjectTree::propertiesToJson(at.m_object) : ObjectTree::toJson(at.m_object);
    } else {
        return refuse("nothing is there");
    }
    return present == op.value || refuse("the test found another value");
}

} // namespace vantrel
