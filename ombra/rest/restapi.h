#pragma once

#include "ombra/base/asidethread.h"
#include "ombra/rest/http.h"
#include "ombra/rest/repeatededits.h"
#include "tarn/json/json.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
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
/// library's rules. Texts of more than 64 KiB are read and written on a thread of their own, so that nobody
/// else waits for them. The thread of the io_context.
class RestApi
{
public:
    static constexpr std::string_view root = "/api/brume/v1";

    RestApi(boost::asio::io_context& io, ShowStore& store, MediaData& mediaData, ShowFiles& showFiles);
    ~RestApi();
    RestApi(const RestApi&) = delete;
    RestApi& operator=(const RestApi&) = delete;

    void handle(HttpRequest request, const HttpAnswer& answer);

    using Handler = std::function<void(const HttpRequest&, const HttpAnswer&)>;
    /// A further route, by somebody else.
    void addRoute(const std::string& path, const std::string& method, Handler handler);

private:
    using Request = std::shared_ptr<const HttpRequest>; // also for the reading thread
    using Route = std::function<void(RestApi*, const Request&, const HttpAnswer&)>;

    static constexpr std::size_t readAtOnce = 64 * 1024; // bytes

    /// Does what costs as much as so many bytes of text, then goes on with what came of it, on this thread.
    template <typename Read, typename Then>
    void aside(std::size_t bytes, Read read, Then then);

    void getLibrary(const Request&, const HttpAnswer&);
    void postLibrary(const Request&, const HttpAnswer&);
    void patchLibrary(const Request&, const HttpAnswer&);
    void getCollections(const Request&, const HttpAnswer&);
    void getPlaylists(const Request&, const HttpAnswer&);
    void getPart(const char* member, const HttpAnswer& answer);
    void postPlaylists(const Request&, const HttpAnswer&);
    void replacePlaylists(const Json& list, const HttpAnswer& answer);
    void getMetadata(const Request&, const HttpAnswer&);
    void getThumbnail(const Request&, const HttpAnswer&);
    void getSystem(const Request&, const HttpAnswer&);
    void getShow(const Request&, const HttpAnswer&);
    void postShow(const Request&, const HttpAnswer&);
    void getShows(const Request&, const HttpAnswer&);
    void deleteShow(const Request&, const HttpAnswer&);
    void loadShow(const Request&, const HttpAnswer&);
    void getEarlier(const Request&, const HttpAnswer&);
    void bringBack(const Request&, const HttpAnswer&);
    bool isUpToDate(const HttpRequest& request, const HttpAnswer& answer) const;
    static void answerEdit(const HttpAnswer& answer, const EditResult& result);

    ShowStore& m_store;
    RepeatedEdits m_repeatedEdits;
    MediaData& m_mediaData;
    ShowFiles& m_showFiles;
    std::map<std::string, std::map<std::string, Route>, std::less<>> m_routes; // by path, then method
    Json m_libraryJson;                                                        // the text's source
    std::shared_ptr<const std::string> m_libraryText;
    boost::asio::io_context& m_io;
    std::shared_ptr<int> m_alive =
        std::make_shared<int>(0); // what comes back from the thread holds it weakly
    AsideThread m_reader;         // reads and writes large texts
};

template <typename Read, typename Then>
void RestApi::aside(std::size_t bytes, Read read, Then then)
{
    if (bytes <= readAtOnce)
        return then(read());
    boost::asio::post(m_reader, [this, alive = std::weak_ptr(m_alive), read = std::move(read),
                                 then = std::move(then)]() mutable {
        auto result = std::make_shared<decltype(read())>(read());
        boost::asio::post(m_io, [this, alive, then = std::move(then), result = std::move(result)]() mutable {
            if (alive.expired())
                return;
            then(*result);
            boost::asio::post(m_reader, [result = std::move(result)] {}); // to free it takes time as well
        });
    });
}

} // namespace vantrel::ombra
