#include "ombra/rest/restapi.h"

#include "ombra/base/version.h"
#include "ombra/rest/mediadata.h"
#include "ombra/show/showstore.h"
#include "tarn/json/patch.h"
#include "tarn/media/medialibrary.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/asio/post.hpp>

#include <algorithm>
#include <utility>

namespace vantrel::ombra {

namespace {

constexpr std::size_t longestKey = 128; // bytes

/// What the text of a body holds: a value, or why there is none.
template <typename T>
struct Reading
{
    T value{};
    unsigned status = 200;
    std::string error;
};

Reading<Json> readJson(const std::string& text)
{
    Reading<Json> reading;
    if (!Json::parseString(text, reading.value, &reading.error))
        reading.status = 400;
    return reading;
}

Reading<MediaLibrary> readLibrary(const std::string& text)
{
    const Reading<Json> json = readJson(text);
    Reading<MediaLibrary> reading{{}, json.status, json.error};
    if (json.status == 200 && !reading.value.parseJson(json.value, &reading.error))
        reading.status = 422;
    return reading;
}

Reading<Patch> readPatch(const std::string& text)
{
    Reading<Patch> reading;
    if (!Patch::parseString(text, reading.value, &reading.error)) {
        reading.status = 400;
    } else if (std::ranges::any_of(reading.value, [](const PatchOp& op) {
                   return op.op == PatchOpType::Get || op.op == PatchOpType::Invoke;
               })) {
        reading.status = 400;
        reading.error = "an operation that a document does not know";
    }
    return reading;
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

RestApi::RestApi(boost::asio::io_context& io, ShowStore& store, MediaData& mediaData, ShowFiles& showFiles)
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
          {"/shows", {{"GET", &RestApi::getShows}, {"DELETE", &RestApi::deleteShow}}},
          {"/shows/load", {{"POST", &RestApi::loadShow}}},
          {"/shows/earlier", {{"GET", &RestApi::getEarlier}, {"POST", &RestApi::bringBack}}},
          {"/sse", {}},    // opened by the server itself
          {"/events", {}}, // likewise
      }
    , m_io(io)
{
}

RestApi::~RestApi()
{
    m_alive.reset();
    m_reader.join();
}

void RestApi::addRoute(const std::string& path, const std::string& method, Handler handler)
{
    m_routes[path][method] = [handler = std::move(handler)](RestApi*, const Request& request,
                                                            const HttpAnswer& answer) {
        handler(*request, answer);
    };
}

void RestApi::handle(HttpRequest request, const HttpAnswer& answer)
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
        return route->second(this, std::make_shared<const HttpRequest>(std::move(request)), answer);
    HttpReply reply = httpError(405, "method not allowed here");
    for (const auto& [method, ignored] : routes->second)
        reply.allow += (reply.allow.empty() ? "" : ", ") + method;
    if (reply.allow.empty())
        reply.allow = "GET";
    answer(std::move(reply));
}

void RestApi::getLibrary(const Request&, const HttpAnswer& answer)
{
    const Json json = m_store.library().toJson();
    const std::string tag = entityTag(m_store.libraryRevision());
    if (m_libraryText && json.sameNode(m_libraryJson))
        return answer({.body = {}, .etag = tag, .sharedBody = m_libraryText});
    const auto write = [json] { return std::make_shared<const std::string>(json.toString()); };
    aside(m_store.librarySize(), write,
          [this, json, tag, answer](const std::shared_ptr<const std::string>& text) {
              replaceAside(m_libraryJson, json);
              replaceAside(m_libraryText, text);
              answer({.body = {}, .etag = tag, .sharedBody = text});
          });
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

void RestApi::postLibrary(const Request& request, const HttpAnswer& answer)
{
    const auto read = [request] { return readLibrary(request->body); };
    aside(request->body.size(), read, [this, request, answer](const Reading<MediaLibrary>& reading) {
        if (reading.status != 200)
            return answer(httpError(reading.status, reading.error));
        if (isUpToDate(*request, answer))
            m_store.replaceLibrary(reading.value,
                                   [answer](const EditResult& result) { answerEdit(answer, result); });
    });
}

void RestApi::patchLibrary(const Request& request, const HttpAnswer& answer)
{
    if (request->idempotencyKey.size() > longestKey)
        return answer(httpError(400, "the Idempotency-Key is longer than 128 characters"));
    const auto read = [request] { return readPatch(request->body); };
    aside(request->body.size(), read, [this, request, answer](const Reading<Patch>& reading) {
        if (reading.status != 200)
            return answer(httpError(reading.status, reading.error));
        const std::string& key = request->idempotencyKey;
        const auto tell = [answer](const EditResult& result) { answerEdit(answer, result); };
        if (!m_repeatedEdits.answers(key, tell) && isUpToDate(*request, answer))
            m_store.patchLibrary(reading.value, m_repeatedEdits.begin(key, tell));
    });
}

void RestApi::getCollections(const Request&, const HttpAnswer& answer)
{
    getPart("collections", answer);
}

void RestApi::getPlaylists(const Request&, const HttpAnswer& answer)
{
    getPart("playlists", answer);
}

void RestApi::getPart(const char* member, const HttpAnswer& answer)
{
    const auto write = [part = m_store.library().toJson().get(member)] {
        return std::make_shared<const std::string>(part.toString());
    };
    aside(m_store.librarySize(), write, [answer](const std::shared_ptr<const std::string>& text) {
        answer({.body = {}, .sharedBody = text});
    });
}

void RestApi::postPlaylists(const Request& request, const HttpAnswer& answer)
{
    const auto read = [request] { return readJson(request->body); };
    aside(request->body.size(), read, [this, request, answer](const Reading<Json>& reading) {
        if (reading.status != 200)
            return answer(httpError(reading.status, reading.error));
        if (isUpToDate(*request, answer))
            replacePlaylists(reading.value, answer);
    });
}

void RestApi::replacePlaylists(const Json& list, const HttpAnswer& answer)
{
    if (!list.isArray() || list.size() > static_cast<std::size_t>(MediaLibrary::indexMax))
        return answer(httpError(422, "playlists come as an array of at most 9999"));
    Json playlists = Json::object();
    for (std::size_t i = 0; i < list.size(); ++i)
        playlists.set(std::to_string(i + 1), *list.at(i));
    Json whole = m_store.latestLibrary().toJson();
    whole.set("playlists", playlists);
    MediaLibrary library(m_store.latestLibrary());
    std::string error;
    if (!library.parseJson(whole, &error))
        return answer(httpError(422, error));
    m_store.replaceLibrary(library, [answer](const EditResult& result) { answerEdit(answer, result); });
}

void RestApi::getMetadata(const Request& request, const HttpAnswer& answer)
{
    std::string url;
    if (!queryValue(request->query, "file", url))
        return answer(httpError(400, "the query has no readable \"file\""));
    m_mediaData.metadata(url, answer, request->isWanted);
}

void RestApi::getThumbnail(const Request& request, const HttpAnswer& answer)
{
    std::string url;
    if (!queryValue(request->query, "file", url))
        return answer(httpError(400, "the query has no readable \"file\""));
    m_mediaData.thumbnail(url, answer, request->isWanted);
}

void RestApi::getSystem(const Request&, const HttpAnswer& answer)
{
    answer({.body = Json::object({{"hostname", hostName()},
                                  {"firmwareVersion", Json::object({{"major", version::major},
                                                                    {"minor", version::minor},
                                                                    {"patch", version::patch}})}})
                        .toString()});
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
