#pragma once

#include "tarn/log/log.h"
#include "tarn/scene/scene.h"

#include <string>

namespace vantrel::ombra {

// Properties of objects that are known to be there, with the types that they are declared with.

template <typename T>
void setProperty(Scene& scene, Object* object, const char* name, const T& value)
{
    Path path;
    if (!scene.pathOf(object, path) ||
        !scene.replaceProperty(scene.find(path + Path{"properties", name}), Variant::from(value)))
        Log::write(LogLevel::Error, "vantrel.outputs", std::string("cannot set ") + name);
}

template <typename T>
T propertyOf(const Object* object, const char* name)
{
    Variant value;
    object->getProperty(name, value);
    return value.as<T>();
}

} // namespace vantrel::ombra
