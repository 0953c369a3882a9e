#pragma once

#include "tarn/ref.h"
#include "tarn/scene/typeinfo.h"

#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// A node of the scene: typed properties and named children. Main thread of its process only. Which children
/// a plain object has is fixed by its type; those of arrays and maps come and go through the Scene.
class Object : public RefCounted
{
public:
    explicit Object(const TypeInfo* type);
    ~Object() override;

    virtual const TypeInfo* getType() const;
    /// False when the property is not one of this object's type.
    virtual bool getProperty(const PropertyInfo* property, Variant& out) const;
    /// Writes without telling anyone; Scene::notifyPropertyChange tells. Converts to the property's type, and
    /// refuses (false) what has no such form.
    virtual bool setProperty(const PropertyInfo* property, const Variant& value);

    bool getProperty(std::string_view name, Variant& out) const;
    const PropertyInfo* findProperty(std::string_view name) const;
    std::vector<const PropertyInfo*> getProperties() const;
    std::string getTypeName() const;

    Object* getParent() const noexcept { return m_parent; }
    virtual std::vector<Object*> getChildren() const;
    /// -1 when it is no child of this object.
    virtual int childIndex(const Object* child) const;
    /// Empty when there is no such child.
    virtual std::string childName(int index) const;
    /// The child of that name; recursive: else the first one found below, depth first. Null when there is
    /// none.
    Object* findChildByName(std::string_view name, bool recursive) const;

    int childCount() const noexcept { return static_cast<int>(m_children.size()); }
    /// Null when out of range.
    Object* childAt(int index) const noexcept;

protected:
    virtual Object* childByName(std::string_view name) const;
    // Adopting and giving up children; they know their parent by it.
    void insertChild(int index, Ref<Object> child);
    Ref<Object> takeChild(int index);

private:
    friend class ObjectTree;
    bool owns(const PropertyInfo* property) const;

    const TypeInfo* m_type;
    std::vector<Ref<Object>> m_children;
    std::vector<Variant> m_values; // by PropertyInfo::index
    Object* m_parent = nullptr;
    mutable int m_indexHint = 0; // where it stood in its parent when last looked up
};

/// A list of objects of one type, addressed by decimal index.
class ObjectArray : public Object
{
public:
    explicit ObjectArray(const TypeInfo* itemType);
    Object* at(int index) const { return childAt(index); }
    int size() const { return childCount(); }
    int indexOf(const Object* object) const { return childIndex(object); }
    const TypeInfo* getItemType() const { return m_itemType; }

    std::string childName(int index) const override;

    /// The number of an index text as RFC 6901 has it (no sign, no leading zero); -1 for any other text.
    static int parseIndex(std::string_view text);

protected:
    Object* childByName(std::string_view name) const override;

private:
    const TypeInfo* m_itemType;
};

/// Objects of one type by name, in name order.
class ObjectMap : public Object
{
public:
    explicit ObjectMap(const TypeInfo* itemType);
    int size() const { return childCount(); }
    Object* find(std::string_view key) const;
    /// The key of a child; empty for any other object.
    std::string indexOf(const Object* object) const;
    const TypeInfo* getItemType() const { return m_itemType; }

    std::string childName(int index) const override;
    /// Where a key stands, or would be inserted.
    int position(std::string_view key) const;

protected:
    Object* childByName(std::string_view name) const override { return find(name); }

private:
    friend class ObjectTree;

    const TypeInfo* m_itemType;
    std::vector<std::string> m_keys; // one a child, sorted
};

} // namespace vantrel
