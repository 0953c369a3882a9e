#pragma once

#include "tarn/json/patch.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace vantrel::ombra {

/// The changes of the scene that a client has not been sent yet. A property's later value takes the place of
/// an earlier one, so that a batch grows with what changes, not with how often.
class ChangeBatch
{
public:
    void add(const PatchOp& op);
    bool empty() const noexcept { return m_ops.empty(); }
    /// About what it takes in memory and on the wire.
    std::size_t bytes() const noexcept { return m_bytes; }
    /// Hands the operations out and is empty.
    Patch take();

private:
    std::vector<PatchOp> m_ops;
    std::unordered_map<std::string, std::size_t> m_replaces; // since the last structural change, by path
    std::size_t m_bytes = 0;
};

} // namespace vantrel::ombra
