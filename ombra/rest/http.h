#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace vantrel::ombra {

struct HttpRequest
{
    std::string method; // "GET"
    std::string path;   // as sent, without the query
    std::string query;  // without the "?"
    std::string body;
    std::string contentType = {}; // these three as the fields say, empty without one
    std::string ifMatch = {};
    std::string idempotencyKey = {};
    std::function<bool()> isWanted = {}; // whether somebody still waits for the answer; none: nobody knows
};

struct HttpReply
{
    unsigned status = 200;
    std::string body;
    std::string contentType = "application/json";
    std::string allow = {};                             // the methods of the path, for 405
    std::string etag = {};                              // quoted
    std::shared_ptr<const std::string> sharedBody = {}; // instead of a body of its own
};

/// Called once for each request, now or later, on the server's thread.
using HttpAnswer = std::function<void(HttpReply)>;

/// A reply {"error": message}.
HttpReply httpError(unsigned status, const std::string& message);

/// The percent-decoded value of a query's field; false when it is absent or badly encoded. A "+" stays a "+".
bool queryValue(std::string_view query, std::string_view name, std::string& out);

} // namespace vantrel::ombra
