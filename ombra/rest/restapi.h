#pragma once

#include "ombra/rest/http.h"
#include "tarn/json/json.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace vantrel::ombra {

class MediaData;
class ShowStore;
class ShowFiles;
struct EditResult;

/// The routes below /api/brume/v1. A refused request changes nothing and says why: 400 what is malformed, 409
/// a patch that does not fit the library, 412 an edit that was made for another revision of it, 413 one that
/// would make it too large, 415 a body that does not say that it is JSON, 422 an edit that would break the
/// library's rules.
class RestApi
{
public:
    static constexpr std::string_view root = "/api/brume/v1";

    RestApi(ShowStore& store, MediaData& mediaData, ShowFiles& showFiles);

    void handle(const HttpRequest& request, const HttpAnswer& answer);

private:
    using Route = void (RestApi::*)(const HttpRequest&, const HttpAnswer&);

    void getLibrary(const HttpRequest&, const HttpAnswer&);
    void postLibrary(const HttpRequest&, const HttpAnswer&);
    void patchLibrary(const HttpRequest&, const HttpAnswer&);
    void getCollections(const HttpRequest&, const HttpAnswer&);
    void getPlaylists(const HttpRequest&, const HttpAnswer&);
    void postPlaylists(const HttpRequest&, const HttpAnswer&);
    void getMetadata(const HttpRequest&, const HttpAnswer&);
    void getThumbnail(const HttpRequest&, const HttpAnswer&);
    void getSystem(const HttpRequest&, const HttpAnswer&);
    void getShow(const HttpRequest&, const HttpAnswer&);
    void postShow(const HttpRequest&, const HttpAnswer&);
    bool isUpToDate(const HttpRequest& request, const HttpAnswer& answer) const;
    static void answerEdit(const HttpAnswer& answer, const EditResult& result);

    ShowStore& m_store;
    MediaData& m_mediaData;
    ShowFiles& m_showFiles;
    std::map<std::string, std::map<std::string, Route>, std::less<>> m_routes; // by path, then method
    Json m_libraryJson;                                                        // the text's source
    std::string m_libraryText;
};

} // namespace vantrel::ombra
