#include "tarn/scene/object.h"

#include <algorithm>
#include <charconv>

namespace vantrel {

namespace {

const TypeInfo* arrayType()
{
    static const TypeInfo* const type = TypeInfo::find("ObjectArray");
    return type;
}

const TypeInfo* mapType()
{
    static const TypeInfo* const type = TypeInfo::find("ObjectMap");
    return type;
}

} // namespace

Object::Object(const TypeInfo* type)
    : m_type(type)
{
    if (!type)
        return;
    m_values.reserve(type->properties.size());
    for (const PropertyInfo& property : type->properties)
        m_values.push_back(property.def);
    for (const ChildInfo& child : type->children) {
        Ref<Object> object;
        if (child.kind == ChildInfo::Kind::Array)
            object = Ref<Object>(new ObjectArray(child.type));
        else if (child.kind == ChildInfo::Kind::Map)
            object = Ref<Object>(new ObjectMap(child.type));
        else
            object = Ref<Object>(new Object(child.type));
        insertChild(childCount(), std::move(object));
    }
}

Object::~Object()
{
    for (const Ref<Object>& child : m_children)
        child->m_parent = nullptr;
}

const TypeInfo* Object::getType() const
{
    return m_type;
}

bool Object::owns(const PropertyInfo* property) const
{
    return property && property->index >= 0 && static_cast<std::size_t>(property->index) < m_values.size() &&
           &m_type->properties[static_cast<std::size_t>(property->index)] == property;
}

bool Object::getProperty(const PropertyInfo* property, Variant& out) const
{
    if (!owns(property))
        return false;
    out = m_values[static_cast<std::size_t>(property->index)];
    return true;
}

bool Object::setProperty(const PropertyInfo* property, const Variant& value)
{
    if (!owns(property))
        return false;
    Variant converted = value.converted(property->type);
    if (converted.type() != property->type)
        return false;
    m_values[static_cast<std::size_t>(property->index)] = std::move(converted);
    return true;
}

bool Object::getProperty(std::string_view name, Variant& out) const
{
    return getProperty(findProperty(name), out);
}

const PropertyInfo* Object::findProperty(std::string_view name) const
{
    const TypeInfo* type = getType();
    return type ? type->findProperty(name) : nullptr;
}

std::vector<const PropertyInfo*> Object::getProperties() const
{
    std::vector<const PropertyInfo*> all;
    if (const TypeInfo* type = getType()) {
        for (const PropertyInfo& property : type->properties)
            all.push_back(&property);
    }
    return all;
}

std::string Object::getTypeName() const
{
    const TypeInfo* type = getType();
    return type ? type->name : std::string();
}

std::vector<Object*> Object::getChildren() const
{
    std::vector<Object*> children;
    children.reserve(m_children.size());
    for (const Ref<Object>& child : m_children)
        children.push_back(child.get());
    return children;
}

Object* Object::childAt(int index) const noexcept
{
    return index >= 0 && index < childCount() ? m_children[static_cast<std::size_t>(index)].get() : nullptr;
}

int Object::childIndex(const Object* child) const
{
    if (!child || child->m_parent != this)
        return -1;
    if (childAt(child->m_indexHint) != child) {
        // One walk mends the hints of all, so that looking each of them up costs no more than this.
        for (int i = 0; i < childCount(); ++i)
            m_children[static_cast<std::size_t>(i)]->m_indexHint = i;
    }
    return child->m_indexHint;
}

std::string Object::childName(int index) const
{
    return m_type && index >= 0 && static_cast<std::size_t>(index) < m_type->children.size()
               ? m_type->children[static_cast<std::size_t>(index)].name
               : std::string();
}

Object* Object::childByName(std::string_view name) const
{
    if (!m_type)
        return nullptr;
    const auto found = std::ranges::find(m_type->children, name, &ChildInfo::name);
    return found == m_type->children.end() ? nullptr
                                           : childAt(static_cast<int>(found - m_type->children.begin()));
}

Object* Object::findChildByName(std::string_view name, bool recursive) const
{
    if (Object* child = childByName(name))
        return child;
    if (recursive) {
        for (const Ref<Object>& child : m_children) {
            if (Object* found = child->findChildByName(name, true))
                return found;
        }
    }
    return nullptr;
}

void Object::insertChild(int index, Ref<Object> child)
{
    child->m_parent = this;
    child->m_indexHint = index;
    m_children.insert(m_children.begin() + index, std::move(child));
}

Ref<Object> Object::takeChild(int index)
{
    const auto at = m_children.begin() + index;
    Ref<Object> child = std::move(*at);
    m_children.erase(at);
    child->m_parent = nullptr;
    return child;
}

ObjectArray::ObjectArray(const TypeInfo* itemType)
    : Object(arrayType())
    , m_itemType(itemType)
{
}

std::string ObjectArray::childName(int index) const
{
    return childAt(index) ? std::to_string(index) : std::string();
}

Object* ObjectArray::childByName(std::string_view name) const
{
    return childAt(parseIndex(name));
}

int ObjectArray::parseIndex(std::string_view text)
{
    int index = -1;
    const char* end = text.data() + text.size();
    if (text.empty() || text[0] == '-' || (text[0] == '0' && text.size() > 1))
        return -1;
    const auto [stop, error] = std::from_chars(text.data(), end, index);
    return error == std::errc{} && stop == end ? index : -1;
}

ObjectMap::ObjectMap(const TypeInfo* itemType)
    : Object(mapType())
    , m_itemType(itemType)
{
}

int ObjectMap::position(std::string_view key) const
{
    return static_cast<int>(std::ranges::lower_bound(m_keys, key, std::less<>()) - m_keys.begin());
}

Object* ObjectMap::find(std::string_view key) const
{
    const int at = position(key);
    return at < size() && m_keys[static_cast<std::size_t>(at)] == key ? childAt(at) : nullptr;
}

std::string ObjectMap::childName(int index) const
{
    return childAt(index) ? m_keys[static_cast<std::size_t>(index)] : std::string();
}

std::string ObjectMap::indexOf(const Object* object) const
{
    return childName(childIndex(object));
}

} // namespace vantrel
