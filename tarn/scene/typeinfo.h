#pragma once

#include "tarn/scene/variant.h"

#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

class Object;
class TypeInfo;

/// One property of a scene type.
struct PropertyInfo
{
    std::string name;
    VariantType type = VariantType::None;
    Variant def;      // what a new object holds
    Variant min, max; // tag None where there is no limit
    bool readOnly = false;
    int index = -1; // position in the object's storage
};

/// One method of a scene type that a client may invoke.
struct MethodInfo
{
    std::string name;
};

/// A child that every object of a type has from its construction on.
struct ChildInfo
{
    enum class Kind { Object, Array, Map };
    std::string name;
    Kind kind = Kind::Object;
    std::string typeName;           // of the child itself, or of the items of an array or map
    const TypeInfo* type = nullptr; // the type of that name
};

/// One registered scene type. All types are declared once, in tarn/scene/scenetypes.cpp, and used by the
/// application and the server alike. Immutable after registration; any thread may read.
class TypeInfo
{
public:
    std::string name;
    const TypeInfo* base = nullptr;
    std::vector<PropertyInfo> properties; // of the bases first
    std::vector<MethodInfo> methods;
    std::vector<ChildInfo> children;
    bool isContainer = false; // arrays and maps: they are made with the type of their items

    bool derivesFrom(const TypeInfo* other) const;
    const PropertyInfo* findProperty(std::string_view propertyName) const;
    const MethodInfo* findMethod(std::string_view methodName) const;

    static const TypeInfo* find(std::string_view typeName);
    /// A new unattached object with its children and default values; null when no such type is registered.
    /// The caller takes the first reference.
    static Object* instantiate(std::string_view typeName);
};

} // namespace vantrel
