#pragma once

#include "ombra/show/showdifference.h"
#include "tarn/json/json.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vantrel::ombra {

/// The shows that a server keeps under their names, and the copies that it keeps by itself of what an
/// operation is about to replace. Every call blocks; one thread at a time.
class ShowFolder
{
public:
    static constexpr std::size_t keptCopies = 20;
    static constexpr std::size_t longestName = 80; // bytes; three times that, escaped, must fit a file name

    explicit ShowFolder(std::filesystem::path stateFolder);

    struct Entry
    {
        std::string name;          // of a show; of a copy what came after it: "clear", "save", ...
        std::string id;            // of a copy
        std::int64_t modified = 0; // seconds since 1970
        std::uintmax_t bytes = 0;
        std::string error; // a sentence where it cannot be read
        ShowContents contents;
        Json library, settings; // of a copy
    };

    std::vector<Entry> shows();
    /// Newest first. Their libraries share with the present one what they have in common.
    std::vector<Entry> copies(const Json& present);

    bool save(const std::string& name, const std::string& text, std::string* error);
    /// Nothing, with the reason, where there is none or it cannot be read.
    std::optional<std::string> read(const std::string& name, std::string* error) const;
    std::optional<std::string> readCopy(const std::string& id, std::string* error) const;
    bool remove(const std::string& name, std::string* error);
    /// Keeps one more copy and lets the oldest go. before: a word of small letters.
    bool keepCopy(const std::string& before, const std::string& text, std::string* error);

    /// Keeps what was saved under a name as a copy ("save"), unless there is nothing, or its library is this
    /// one. False, too, when that was not possible, with the reason in error.
    bool keepReplaced(const std::string& name, const Json& library, std::string* error);

    static bool isName(const std::string& name) { return !name.empty() && name.size() <= longestName; }

private:
    std::filesystem::path pathOf(const std::string& name) const;
    std::map<std::pair<std::int64_t, std::string>, std::filesystem::path> copyFiles() const;
    void look(const std::filesystem::path& path, const Json* present, Entry& entry);

    std::filesystem::path m_shows, m_copies;
    std::map<std::string, Entry> m_known; // by path, while size and time of the file stay
};

} // namespace vantrel::ombra
