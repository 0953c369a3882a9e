#include "ombra/rest/repeatededits.h"

#include <cstddef>
#include <utility>

namespace vantrel::ombra {

namespace {

constexpr std::size_t kept = 1024;

} // namespace

bool RepeatedEdits::answers(const std::string& key, const ShowStore::Answer& answer)
{
    if (const auto underWay = m_underWay.find(key); underWay != m_underWay.end()) {
        underWay->second.push_back(answer);
        return true;
    }
    const auto saved = m_saved.find(key);
    if (saved != m_saved.end())
        answer(saved->second);
    return saved != m_saved.end();
}

ShowStore::Answer RepeatedEdits::begin(const std::string& key, ShowStore::Answer answer)
{
    if (key.empty())
        return answer;
    m_underWay[key].push_back(std::move(answer));
    return [this, key](const EditResult& result) { finish(key, result); };
}

void RepeatedEdits::finish(const std::string& key, const EditResult& result)
{
    const auto waiting = m_underWay.extract(key);
    if (result.status == EditResult::Status::Saved && m_saved.emplace(key, result).second) {
        m_order.push_back(key);
        if (m_order.size() > kept) {
            m_saved.erase(m_order.front());
            m_order.pop_front();
        }
    }
    for (const ShowStore::Answer& answer : waiting.mapped())
        answer(result);
}

} // namespace vantrel::ombra
