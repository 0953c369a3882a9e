#pragma once

#include "tarn/json/json.h"

#include <cstddef>

namespace vantrel::ombra {

/// What a show holds, counted.
struct ShowContents
{
    std::size_t collections = 0;
    std::size_t slots = 0;
    std::size_t playlists = 0;
    std::size_t entries = 0;

    static ShowContents of(const Json& library);
    bool isNothing() const { return collections == 0 && playlists == 0; }
    Json toJson() const;
};

/// How one show differs from another in what an operator made. What the server finds out about media, and
/// what happens to play, is no difference. Costs what the two do not share; any thread.
class ShowDifference
{
public:
    struct Count
    {
        std::size_t added = 0; // is in the other and not here
        std::size_t removed = 0;
        std::size_t changed = 0;
    };

    /// onlyWhether: stops at the first difference.
    ShowDifference(const Json& library, const Json& otherLibrary, const Json& settings,
                   const Json& otherSettings, bool onlyWhether = false);

    bool isAny() const;
    Json toJson() const;

private:
    bool isDone() const { return m_onlyWhether && isAny(); }
    void compareGroups(const Json& here, const Json& other, const char* records, Count& groups,
                       Count& inside);
    void compareRecords(const Json& here, const Json& other, Count& count);
    void compareSettings(const Json& here, const Json& other);

    Count m_collections, m_slots, m_playlists, m_entries;
    std::size_t m_settings = 0;
    bool m_isOtherBeside; // in what the library holds beside collections and playlists
    bool m_onlyWhether;
};

/// A value made of the nodes of another one where the two agree, so that they are compared fast from then on.
Json sharing(const Json& present, const Json& value);

} // namespace vantrel::ombra
