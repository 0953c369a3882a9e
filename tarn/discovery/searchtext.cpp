#include "tarn/discovery/searchtext.h"

#include "tarn/json/json.h"

namespace vantrel::discovery {

namespace {

constexpr const char* names[] = {"id", "link", "name", "program", "state", "version"};

} // namespace

std::string questionText()
{
    return Json::object({{"locate", Json(1)}}).toString();
}

bool isQuestion(std::string_view datagram)
{
    Json question;
    return Json::parseString(datagram, question) && question.get("locate").asInt() == 1;
}

std::string answerText(const Attributes& attributes)
{
    Json peer = Json::object();
    for (const auto& [name, value] : attributes)
        peer.set(name, Json(value));
    std::string text = Json::object({{"peer", peer}}).toString();
    return text.size() <= maxDatagram ? text : std::string();
}

std::optional<Attributes> parseAnswer(std::string_view datagram)
{
    Json answer;
    if (datagram.size() > maxDatagram || !Json::parseString(datagram, answer))
        return std::nullopt;
    const Json* peer = answer.find("peer");
    if (!peer || !peer->isObject())
        return std::nullopt;
    Attributes attributes;
    for (const char* name : names) {
        const Json* value = peer->find(name);
        if (value && value->isString())
            attributes.emplace(name, value->asString());
    }
    return attributes;
}

} // namespace vantrel::discovery
