#include "ombra/display/modememory.h"

#include "ombra/base/atomicfile.h"
#include "tarn/json/json.h"
#include "tarn/log/log.h"

#include <array>
#include <utility>

namespace vantrel::ombra {

namespace {

constexpr std::size_t fileAtMost = 65536;

constexpr std::array<std::pair<const char*, int VideoTiming::*>, 10> numbers = {
    {{"width", &VideoTiming::width},
     {"height", &VideoTiming::height},
     {"hTotal", &VideoTiming::hTotal},
     {"vTotal", &VideoTiming::vTotal},
     {"hFront", &VideoTiming::hFront},
     {"hSync", &VideoTiming::hSync},
     {"vFront", &VideoTiming::vFront},
     {"vSync", &VideoTiming::vSync},
     {"hPolarity", &VideoTiming::hPolarity},
     {"vPolarity", &VideoTiming::vPolarity}}};

Json jsonOf(const VideoTiming& timing)
{
    Json json = Json::object({{"interlaced", timing.interlaced}, {"dotClock", timing.dotClock}});
    for (const auto& [name, number] : numbers)
        json.set(name, timing.*number);
    return json;
}

VideoTiming timingOf(const Json& json)
{
    VideoTiming timing;
    timing.interlaced = json.get("interlaced").asBool();
    timing.dotClock = json.get("dotClock").asInt();
    for (const auto& [name, number] : numbers)
        timing.*number = static_cast<int>(json.get(name).asInt());
    return timing;
}

} // namespace

ModeMemory::ModeMemory(std::filesystem::path file)
    : m_file(std::move(file))
{
}

std::vector<ModeMemory::Change> ModeMemory::read() const
{
    std::vector<Change> changes;
    Json json;
    const auto text = m_file.empty() ? std::nullopt : readWholeFile(m_file, fileAtMost, nullptr);
    if (!text || !Json::parseString(*text, json))
        return changes;
    for (std::size_t i = 0; const Json* one = json.at(i); ++i)
        changes.push_back({std::string(one->get("output").stringView()), timingOf(one->get("before")),
                           timingOf(one->get("given"))});
    return changes;
}

void ModeMemory::write(const std::vector<Change>& changes) const
{
    if (m_file.empty())
        return;
    std::error_code ignored;
    if (changes.empty()) {
        std::filesystem::remove(m_file, ignored);
        return;
    }
    Json json = Json::array();
    for (const Change& one : changes)
        json.append(Json::object(
            {{"output", one.output}, {"before", jsonOf(one.before)}, {"given", jsonOf(one.given)}}));
    std::string why;
    if (!writeFileAtomically(m_file, json.toString(), &why))
        Log::write(LogLevel::Warning, "vantrel.display",
                   "the modes before could not be written down: " + why +
                       "; they come back when ombra ends, and not after it is killed");
}

} // namespace vantrel::ombra
