#include "ombra/rest/restapi.h"
#include "ombra/show/showfiles.h"
#include "ombra/show/showstore.h"

namespace vantrel::ombra {

namespace {

/// Told in full up to here; the error counts them all.
constexpr std::size_t mostMissing = 1000;

ShowFiles::Done answering(const HttpAnswer& answer)
{
    return [answer](const ShowFiles::Outcome& outcome) {
        Json body = Json::object();
        if (outcome.status != 200)
            body.set("error", outcome.error);
        if (!outcome.missing.empty()) {
            Json missing = Json::array();
            for (std::size_t i = 0; i < std::min(mostMissing, outcome.missing.size()); ++i)
                missing.append(outcome.missing[i]);
            body.set("missing", missing);
        }
        answer({.status = outcome.status, .body = body.toString()});
    };
}

/// A text of the query; the request is answered where there is none.
bool hasValue(const HttpRequest& request, const char* name, std::string& out, const HttpAnswer& answer)
{
    if (queryValue(request.query, name, out) && !out.empty())
        return true;
    answer(httpError(400, std::string("The query has no readable \"") + name + "\"."));
    return false;
}

bool isForced(const HttpRequest& request)
{
    std::string ignored;
    return queryValue(request.query, "force", ignored);
}

} // namespace

void RestApi::getShow(const Request&, const HttpAnswer& answer)
{
    const auto write = [show = m_showFiles.show()] {
        return std::make_shared<const std::string>(showfile::textOf(show));
    };
    aside(m_store.librarySize(), write, [answer](const std::shared_ptr<const std::string>& text) {
        answer({.body = {}, .contentType = "application/octet-stream", .sharedBody = text});
    });
}

void RestApi::postShow(const Request& request, const HttpAnswer& answer)
{
    std::string include;
    queryValue(request->query, "include", include);
    const auto read = [request] {
        return std::make_shared<const showfile::Reading>(showfile::read(request->body));
    };
    aside(request->body.size(), read,
          [this, include, forced = isForced(*request),
           answer](const std::shared_ptr<const showfile::Reading>& file) {
              m_showFiles.importShow(file, include, forced, answering(answer));
          });
}

void RestApi::getShows(const Request&, const HttpAnswer& answer)
{
    m_showFiles.listShows([answer](const Json& list) { answer({.body = list.toString()}); });
}

void RestApi::deleteShow(const Request& request, const HttpAnswer& answer)
{
    std::string name;
    if (hasValue(*request, "show", name, answer))
        m_showFiles.remove(name, answering(answer));
}

void RestApi::loadShow(const Request& request, const HttpAnswer& answer)
{
    std::string name;
    if (hasValue(*request, "show", name, answer))
        m_showFiles.load(name, isForced(*request), answering(answer));
}

void RestApi::getEarlier(const Request&, const HttpAnswer& answer)
{
    m_showFiles.listEarlier([answer](const Json& list) { answer({.body = list.toString()}); });
}

void RestApi::bringBack(const Request& request, const HttpAnswer& answer)
{
    std::string id;
    if (hasValue(*request, "state", id, answer))
        m_showFiles.bringBack(id, isForced(*request), answering(answer));
}

} // namespace vantrel::ombra
