#pragma once

#include "tarn/json/json.h"
#include "tarn/media/medialibrary.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vantrel::ombra {

/// The content of a show file: see docs/show-format.md. Any thread.
namespace showfile {

constexpr std::int64_t version = 1;
/// Bytes of a file; what can be saved can be read.
constexpr std::size_t largest = std::size_t{272} * 1024 * 1024;

/// outputs: the names of the outputs that the settings are for.
Json make(const Json& library, const Json& settings, const Json& outputs);
/// Without a layout, which would take more room than what it lays out.
std::string textOf(const Json& show);

struct Reading
{
    Json show;
    MediaLibrary library;
    unsigned status = 200;    // of HTTP: 400 for what is no show, 413 for one of too many records
    std::string error;        // a sentence where it is no show
    std::string libraryError; // where only its library is none
};
Reading read(const std::string& text);

/// The sections that an import names, all when it names none; nothing for an unknown one.
std::optional<std::set<std::string>> sectionsOf(std::string_view include);

} // namespace showfile

} // namespace vantrel::ombra
