#include "ombra/rest/restapi.h"

#include "ombra/base/version.h"
#include "ombra/rest/mediadata.h"
#include "ombra/show/showfiles.h"
#include "ombra/show/showstore.h"
#include "tarn/media/medialibrary.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>

namespace vantrel::ombra {

namespace {

bool parseBody(const HttpRequest& request, const HttpAnswer& answer, Json& out)
{
    std::string error;
    if (Json::parseString(request.body, out, &error))
        return true;
    answer(httpError(400, error));
    return false;
}

/// A body must be announced as what it is: a web page can send forms and plain text wherever it likes, but
/// nothing else without asking first. The application imports shows as a form.
bool hasReadableType(const HttpRequest& request)
{
    if (request.method != "POST" && request.method != "PATCH")
        return true;
    std::string_view type(request.contentType);
    type = type.substr(0, type.find(';'));
    while (type.ends_with(' ') || type.ends_with('\t'))
        type.remove_suffix(1);
    return boost::algorithm::iequals(type, "application/json") ||
           (request.path.ends_with("/show/current") &&
            boost::algorithm::iequals(type, "application/x-www-form-urlencoded"));
}

std::string entityTag(std::uint64_t revision)
{
    return '"' + std::to_string(revision) + '"';
}

/// Whether one of the tags of an If-Match is this one. A weak tag is never.
bool matches(std::string_view field, std::string_view tag)
{
    for (std::size_t start = 0; start <= field.size();) {
        const std::size_t end = std::min(field.find(',', start), field.size());
        std::string_view item = field.substr(start, end - start);
        while (item.starts_with(' ') || item.starts_with('\t'))
            item.remove_prefix(1);
        while (item.ends_with(' ') || item.ends_with('\t'))
            item.remove_suffix(1);
        if (item == "*" || item == tag)
            return true;
        start = end + 1;
    }
    return false;
}

} // namespace

RestApi::RestApi(ShowStore& store, MediaData& mediaData, ShowFiles& showFiles)
    : m_store(store)
    , m_mediaData(mediaData)
    , m_showFiles(showFiles)
    , m_routes{
          {"/medialibrary",
           {{"GET", &RestApi::getLibrary},
            {"POST", &RestApi::postLibrary},
            {"PATCH", &RestApi::patchLibrary}}},
          {"/collections", {{"GET", &RestApi::getCollections}}},
          {"/playlists", {{"GET", &RestApi::getPlaylists}, {"POST", &RestApi::postPlaylists}}},
          {"/metadata/", {{"GET", &RestApi::getMetadata}}},
          {"/thumbnails/", {{"GET", &RestApi::getThumbnail}}},
          {"/system", {{"GET", &RestApi::getSystem}}},
          {"/show/current", {{"GET", &RestApi::getShow}, {"POST", &RestApi::postShow}}},
          {"/sse", {}},    // opened by the server itself
          {"/events", {}}, // likewise
      }
{
}

void RestApi::handle(const HttpRequest& request, const HttpAnswer& answer)
{
    std::string_view path = request.path;
    if (!path.starts_with(root))
        return answer(httpError(404, "no such resource"));
    path.remove_prefix(root.size());
    const auto routes = m_routes.find(path);
    if (routes == m_routes.end())
        return answer(httpError(404, "no such resource"));
    const auto route = routes->second.find(request.method == "HEAD" ? "GET" : request.method);
    if (route != routes->second.end() && !hasReadableType(request))
        return answer(httpError(415, "the body must be of the type application/json"));
    if (route != routes->second.end())
        return (this->*route->second)(request, answer);
    HttpReply reply = httpError(405, "method not allowed here");
    for (const auto& [method, ignored] : routes->second)
        reply.allow += (reply.allow.empty() ? "" : ", ") + method;
    if (reply.allow.empty())
        reply.allow = "GET";
    answer(std::move(reply));
}

void RestApi::getLibrary(const HttpRequest&, const HttpAnswer& answer)
{
    const Json json = m_store.library().toJson();
    if (!json.sameNode(m_libraryJson) || m_libraryText.empty()) {
        m_libraryText = json.toString();
        m_libraryJson = json;
    }
    answer({.body = m_libraryText, .etag = entityTag(m_store.libraryRevision())});
}

/// An edit may name the revision that it was made for. Compared with all that is accepted, saved or not:
/// nobody has seen the revisions that are still on their way to the disk.
bool RestApi::isUpToDate(const HttpRequest& request, const HttpAnswer& answer) const
{
    const std::string now = entityTag(m_store.latestRevision());
    if (request.ifMatch.empty() || matches(request.ifMatch, now))
        return true;
    answer(httpError(412, "the library has changed since this edit was made: it is at revision " +
                              std::to_string(m_store.latestRevision()) + " now"));
    return false;
}

void RestApi::postLibrary(const HttpRequest& request, const HttpAnswer& answer)
{
    Json json;
    if (!parseBody(request, answer, json) || !isUpToDate(request, answer))
        return;
    MediaLibrary library;
    std::string error;
    if (!library.parseJson(json, &error))
        return answer(httpError(422, error));
    m_store.replaceLibrary(library, [answer](const EditResult& result) { answerEdit(answer, result); });
}

void RestApi::patchLibrary(const HttpRequest& request, const HttpAnswer& answer)
{
    Patch patch;
    std::string error;
    if (!Patch::parseString(request.body, patch, &error))
        return answer(httpError(400, error));
    if (std::ranges::any_of(patch, [](const PatchOp& op) {
            return op.op == PatchOpType::Get || op.op == PatchOpType::Invoke;
        }))
        return answer(httpError(400, "an operation that a document does not know"));
    if (!isUpToDate(request, answer))
        return;
    m_store.patchLibrary(patch, [answer](const EditResult& result) { answerEdit(answer, result); });
}

void RestApi::getCollections(const HttpRequest&, const HttpAnswer& answer)
{
    answer({.body = m_store.library().toJson().get("collections").toString()});
}

void RestApi::getPlaylists(const HttpRequest&, const HttpAnswer& answer)
{
    answer({.body = m_store.library().toJson().get("playlists").toString()});
}

void RestApi::postPlaylists(const HttpRequest& request, const HttpAnswer& answer)
{
    Json json;
    if (!parseBody(request, answer, json) || !isUpToDate(request, answer))
        return;
    if (!json.isArray() || json.size() > static_cast<std::size_t>(MediaLibrary::indexMax))
        return answer(httpError(422, "playlists come as an array of at most 9999"));
    Json playlists = Json::object();
    for (std::size_t i = 0; i < json.size(); ++i)
        playlists.set(std::to_string(i + 1), *json.at(i));
    Json whole = m_store.latestLibrary().toJson();
    whole.set("playlists", playlists);
    MediaLibrary library(m_store.latestLibrary());
    std::string error;
    if (!library.parseJson(whole, &error))
        return answer(httpError(422, error));
    m_store.replaceLibrary(library, [answer](const EditResult& result) { answerEdit(answer, result); });
}

void RestApi::getMetadata(const HttpRequest& request, const HttpAnswer& answer)
{
    std::string url;
    if (!queryValue(request.query, "file", url))
        return answer(httpError(400, "the query has no readable \"file\""));
    m_mediaData.metadata(url, answer, request.isWanted);
}

void RestApi::getThumbnail(const HttpRequest& request, const HttpAnswer& answer)
{
    std::string url;
    if (!queryValue(request.query, "file", url))
        return answer(httpError(400, "the query has no readable \"file\""));
    m_mediaData.thumbnail(url, answer, request.isWanted);
}

void RestApi::getSystem(const HttpRequest&, const HttpAnswer& answer)
{
    answer({.body = Json::object({{"hostname", hostName()},
                                  {"firmwareVersion", Json::object({{"major", version::major},
                                                                    {"minor", version::minor},
                                                                    {"patch", version::patch}})}})
                        .toString()});
}

void RestApi::getShow(const HttpRequest&, const HttpAnswer& answer)
{
    answer({.body = m_showFiles.exportShow(), .contentType = "application/octet-stream"});
}

void RestApi::postShow(const HttpRequest& request, const HttpAnswer& answer)
{
    std::string include;
    std::string force;
    queryValue(request.query, "include", include);
    const bool forced = queryValue(request.query, "force", force);
    m_showFiles.importShow(request.body, include, forced,
                           [answer](unsigned status, const std::string& message) {
                               answer(status == 200 ? HttpReply{.body = "{}"} : httpError(status, message));
                           });
}

void RestApi::answerEdit(const HttpAnswer& answer, const EditResult& result)
{
    switch (result.status) {
    case EditResult::Status::Saved:
        return answer({.body = "{}", .etag = entityTag(result.revision)});
    case EditResult::Status::TestFailed:
        return answer(httpError(412, result.message));
    case EditResult::Status::DoesNotFit:
        return answer(httpError(409, result.message));
    case EditResult::Status::TooLarge:
        return answer(httpError(413, result.message));
    case EditResult::Status::BreaksRules:
        return answer(httpError(422, result.message));
    case EditResult::Status::NotSaved:
        return answer(httpError(507, result.message));
    }
}

} // namespace vantrel::ombra
