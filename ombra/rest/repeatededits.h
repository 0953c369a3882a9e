#pragma once

#include "ombra/show/showstore.h"

#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace vantrel::ombra {

/// Edits that came with a key of their sender's (`Idempotency-Key`). A connection that breaks before the
/// answer makes HTTP clients send the request once more, unasked: that is the same edit, and gets the same
/// answer, instead of being done twice or told that the library has changed since. What was refused is tried
/// anew. Not thread-safe.
class RepeatedEdits
{
public:
    /// Whether an edit of this key is done or under way; then answer is called with what came of it, now or
    /// later. Never so for an empty key.
    bool answers(const std::string& key, const ShowStore::Answer& answer);
    /// The edit of this key is begun: what it calls when its result is known. Of the finished ones the last
    /// 1024 are kept.
    ShowStore::Answer begin(const std::string& key, ShowStore::Answer answer);

private:
    void finish(const std::string& key, const EditResult& result);

    std::unordered_map<std::string, std::vector<ShowStore::Answer>> m_underWay; // who else waits
    std::unordered_map<std::string, EditResult> m_saved;
    std::deque<std::string> m_order; // of m_saved, oldest first
};

} // namespace vantrel::ombra
