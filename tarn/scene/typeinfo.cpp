#include "tarn/scene/typeinfo.h"

#include "tarn/scene/object.h"
#include "tarn/scene/scenetypes.h"

#include <algorithm>

namespace vantrel {

const PropertyInfo* TypeInfo::findProperty(std::string_view propertyName) const
{
    const auto found = std::ranges::find(properties, propertyName, &PropertyInfo::name);
    return found != properties.end() ? &*found : nullptr;
}

const MethodInfo* TypeInfo::findMethod(std::string_view methodName) const
{
    const auto found = std::ranges::find(methods, methodName, &MethodInfo::name);
    return found != methods.end() ? &*found : nullptr;
}

const TypeInfo* TypeInfo::find(std::string_view typeName)
{
    const auto& types = sceneTypes();
    const auto found = types.find(typeName);
    return found != types.end() ? &found->second : nullptr;
}

Object* TypeInfo::instantiate(std::string_view typeName)
{
    const TypeInfo* type = find(typeName);
    return type && !type->isContainer ? new Object(type) : nullptr;
}

bool TypeInfo::derivesFrom(const TypeInfo* other) const
{
    for (const TypeInfo* type = this; type; type = type->base) {
        if (type == other)
            return true;
    }
    return false;
}

} // namespace vantrel
