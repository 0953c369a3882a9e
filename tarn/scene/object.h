#pragma once

#include "tarn/ref.h"
#include "tarn/scene/typeinfo.h"

#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

class Scene;

/// A node of the scene: typed properties and named children. Main thread of its process only.
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
    virtual std::string childName(int index) const;
    Object* findChildByName(std::string_view name, bool recursive) const;

private:
    friend class Scene;
    // ...
    Object* m_parent = nullptr;
};

/// A list of objects of one type, addressed by decimal index.
class ObjectArray : public Object
{
public:
    ObjectArray(const TypeInfo* itemType);
    Object* at(int index) const;
    int size() const;
    int indexOf(const Object* object) const;
    const TypeInfo* getItemType() const;
};

/// Objects of one type by name, in name order.
class ObjectMap : public Object
{
public:
    ObjectMap(const TypeInfo* itemType);
    int size() const;
    Object* find(std::string_view key) const;
    std::string indexOf(const Object* object) const;
    const TypeInfo* getItemType() const;
};

} // namespace vantrel
