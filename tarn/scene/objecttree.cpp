#include "tarn/scene/objecttree.h"

#include "tarn/scene/variantjson.h"

namespace vantrel {

int ObjectTree::place(const Object* container, std::string_view key)
{
    if (dynamic_cast<const ObjectArray*>(container)) {
        const int index = key == "-" ? container->childCount() : ObjectArray::parseIndex(key);
        return index <= container->childCount() ? index : -1;
    }
    const auto* map = dynamic_cast<const ObjectMap*>(container);
    return map && !key.empty() ? map->position(key) : -1;
}

const TypeInfo* ObjectTree::itemType(const Object* container)
{
    if (const auto* array = dynamic_cast<const ObjectArray*>(container))
        return array->getItemType();
    const auto* map = dynamic_cast<const ObjectMap*>(container);
    return map ? map->getItemType() : nullptr;
}

bool ObjectTree::accepts(const Object* container, const TypeInfo* type)
{
    const TypeInfo* wanted = itemType(container);
    return wanted && type && type->derivesFrom(wanted);
}

void ObjectTree::insert(Object* container, int index, const std::string& key, Ref<Object> child)
{
    if (auto* map = dynamic_cast<ObjectMap*>(container))
        map->m_keys.insert(map->m_keys.begin() + index, key);
    container->insertChild(index, std::move(child));
}

Ref<Object> ObjectTree::take(Object* container, int index)
{
    if (auto* map = dynamic_cast<ObjectMap*>(container))
        map->m_keys.erase(map->m_keys.begin() + index);
    return container->takeChild(index);
}

Ref<Object> ObjectTree::clone(const Object* object)
{
    Ref<Object> copy;
    if (const auto* array = dynamic_cast<const ObjectArray*>(object))
        copy = Ref<Object>(new ObjectArray(array->getItemType()));
    else if (const auto* map = dynamic_cast<const ObjectMap*>(object))
        copy = Ref<Object>(new ObjectMap(map->getItemType()));
    else
        copy = Ref<Object>(new Object(object->m_type));
    copy->m_values = object->m_values;
    copy->m_children.clear();
    for (int i = 0; i < object->childCount(); ++i)
        insert(copy.get(), i, object->childName(i), clone(object->childAt(i)));
    return copy;
}

std::vector<Ref<Object>> ObjectTree::takeAll(Object* container)
{
    std::vector<Ref<Object>> children = std::move(container->m_children);
    container->m_children.clear();
    if (auto* map = dynamic_cast<ObjectMap*>(container))
        map->m_keys.clear();
    for (const Ref<Object>& child : children)
        child->m_parent = nullptr;
    return children;
}

Ref<Object> ObjectTree::fromJson(const TypeInfo* type, const Json& json, std::string& why)
{
    if (!type || !json.isObject()) {
        why = "the value is no object";
        return {};
    }
    if (const Json* name = json.find("type")) {
        const TypeInfo* named = name->isString() ? TypeInfo::find(name->stringView()) : nullptr;
        if (!named || !named->derivesFrom(type)) {
            why = "type " + name->asString() + " where " + type->name + " belongs";
            return {};
        }
        type = named;
    }
    Ref<Object> object(new Object(type));
    return fill(object.get(), json, why) ? object : Ref<Object>();
}

bool ObjectTree::fillProperties(Object* object, const Json& json, std::string& why)
{
    if (!json.isObject()) {
        why = "the properties are no object";
        return false;
    }
    bool fits = true;
    json.forEachMember([&](std::string_view name, const Json& value) {
        const PropertyInfo* property = object->findProperty(name);
        if (property && !object->setProperty(property, variantFromJson(value, property->type))) {
            why = "property " + property->name + " is no " + toStr(property->type);
            fits = false;
        }
        return fits;
    });
    return fits;
}

bool ObjectTree::fill(Object* object, const Json& json, std::string& why)
{
    if (auto* array = dynamic_cast<ObjectArray*>(object)) {
        bool fits = json.isArray();
        if (!fits)
            why = "the value is no array";
        json.forEachItem([&](const Json& item) {
            Ref<Object> child = fits ? fromJson(array->getItemType(), item, why) : Ref<Object>();
            fits = static_cast<bool>(child);
            if (fits)
                insert(array, array->size(), {}, std::move(child));
            return fits;
        });
        return fits;
    }
    if (!json.isObject()) {
        why = "the value is no object";
        return false;
    }
    bool fits = true;
    auto* map = dynamic_cast<ObjectMap*>(object);
    json.forEachMember([&](std::string_view name, const Json& value) {
        if (map) {
            Ref<Object> child = fromJson(map->getItemType(), value, why);
            fits = child && !name.empty();
            if (fits)
                insert(map, map->position(name), std::string(name), std::move(child));
        } else if (name == "properties") {
            fits = fillProperties(object, value, why);
        } else if (Object* child = object->childByName(name)) {
            fits = fill(child, value, why);
        } else if (name == "type") {
            fits = value.isString() && value.stringView() == object->getTypeName();
            if (!fits)
                why = "type " + value.asString() + " where " + object->getTypeName() + " belongs";
        }
        return fits;
    });
    return fits;
}

Json ObjectTree::propertiesToJson(const Object* object)
{
    Json properties = Json::object();
    for (const PropertyInfo* property : object->getProperties()) {
        Variant value;
        Json json;
        object->getProperty(property, value);
        Json::fromVariant(value, json);
        properties.set(property->name, std::move(json));
    }
    return properties;
}

Json ObjectTree::toJson(const Object* object)
{
    if (dynamic_cast<const ObjectArray*>(object)) {
        Json items = Json::array();
        for (const Object* child : object->getChildren())
            items.append(toJson(child));
        return items;
    }
    Json json = Json::object();
    if (!dynamic_cast<const ObjectMap*>(object)) {
        json.set("type", object->getTypeName());
        json.set("properties", propertiesToJson(object));
    }
    for (int i = 0; i < object->childCount(); ++i)
        json.set(object->childName(i), toJson(object->childAt(i)));
    return json;
}

} // namespace vantrel
