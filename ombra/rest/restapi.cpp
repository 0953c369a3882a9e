#include "ombra/rest/restapi.h"

#include "ombra/base/version.h"
#include "ombra/rest/mediadata.h"
#include "ombra/show/showfiles.h"
#include "ombra/show/showstore.h"
#include "tarn/media/medialibrary.h"

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
    const auto route = routes->second.find(request.method);
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
    answer({.body = m_libraryText, .etag = '"' + std::to_string(m_store.libraryRevision()) + '"'});
}

void RestApi::postLibrary(const HttpRequest& request, const HttpAnswer& answer)
{
    Json json;
    if (!parseBody(request, answer, json))
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
    if (!parseBody(request, answer, json))
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
    m_mediaData.metadata(url, answer);
}

void RestApi::getThumbnail(const HttpRequest& request, const HttpAnswer& answer)
{
    std::string url;
    if (!queryValue(request.query, "file", url))
        return answer(httpError(400, "the query has no readable \"file\""));
    m_mediaData.thumbnail(url, answer);
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
        return answer({.body = "{}"});
    case EditResult::Status::DoesNotFit:
        return answer(httpError(409, result.message));
    case EditResult::Status::BreaksRules:
        return answer(httpError(422, result.message));
    case EditResult::Status::NotSaved:
        return answer(httpError(507, result.message));
    }
}

} // namespace vantrel::ombra
