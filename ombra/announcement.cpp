#include "ombra/announcement.h"

#include "ombra/base/percent.h"
#include "tarn/media/medialibrary.h"
#include "tarn/scene/scene.h"

#include <filesystem>

namespace vantrel::ombra {

namespace {

constexpr std::size_t maxName = 200; // bytes; one datagram has to hold it

std::string text(const Object& object, std::string_view property)
{
    Variant value;
    return object.getProperty(property, value) ? value.asString() : std::string();
}

std::string fileName(const std::string& contentUrl)
{
    return std::filesystem::path(decodePercent(contentUrl).value_or(contentUrl)).filename().string();
}

void shorten(std::string& name)
{
    if (name.size() <= maxName)
        return;
    std::size_t end = maxName;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xc0U) == 0x80U)
        --end; // not within a character
    name.resize(end);
}

} // namespace

discovery::Attributes programAttributes(const Scene& scene, const MediaLibrary& library)
{
    const Object* program = scene.find("/device/channels/0/program").deref();
    if (!program)
        return {};
    const std::string held = text(*program, "heldMedia");
    const std::string media = text(*program, "media");
    std::string name;
    if (!held.empty())
        name = fileName(held);
    else if (const MediaSlot* slot = media.empty() ? nullptr : library.findSlot(media))
        name = slot->getName().empty() ? fileName(slot->getUrl()) : slot->getName();
    if (name.empty())
        return {};
    shorten(name);
    return {{"program", name}, {"state", text(*program, "state")}};
}

} // namespace vantrel::ombra
