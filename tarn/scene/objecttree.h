#pragma once

#include "tarn/json/json.h"
#include "tarn/scene/object.h"

#include <string>

namespace vantrel {

/// Edits of objects that tell no one: for building objects before they stand in a scene, and for the Scene
/// itself.
class ObjectTree
{
public:
    /// Where a new child of this name would go in an array ("-" is the end) or a map; -1 when it has no place
    /// there.
    static int place(const Object* container, std::string_view key);
    /// Whether the container is an array or a map of the object's type.
    static bool accepts(const Object* container, const TypeInfo* type);
    static const TypeInfo* itemType(const Object* container);

    static void insert(Object* container, int index, const std::string& key, Ref<Object> child);
    static Ref<Object> take(Object* container, int index);
    static Object* child(const Object* object, std::string_view name) { return object->childByName(name); }

    /// A deep copy without a parent.
    static Ref<Object> clone(const Object* object);
    /// Takes all children of a container out, in order.
    static std::vector<Ref<Object>> takeAll(Object* container);

    /// Builds an object of the type, or of the one derived from it that "type" names, from the value of an
    /// add. What the value leaves out has its default; members that this program does not know are passed
    /// over, since the other side may be newer. Null, and the reason in why, when a value is of another type
    /// than its property.
    static Ref<Object> fromJson(const TypeInfo* type, const Json& json, std::string& why);
    /// The same into an existing object of unattached default values, which may be a container.
    static bool fill(Object* object, const Json& json, std::string& why);
    static bool fillProperties(Object* object, const Json& json, std::string& why);
    static Json toJson(const Object* object);
    static Json propertiesToJson(const Object* object);
};

} // namespace vantrel
