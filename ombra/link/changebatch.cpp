#include "ombra/link/changebatch.h"

#include <utility>

namespace vantrel::ombra {

namespace {

std::size_t sizeOf(const PatchOp& op)
{
    constexpr std::size_t frame = 48;
    return frame + op.path.size() * 24 +
           (op.op == PatchOpType::Add ? op.value.toString().size() : op.value.stringView().size());
}

} // namespace

void ChangeBatch::add(const PatchOp& op)
{
    if (op.op == PatchOpType::Replace) {
        const auto [place, fresh] = m_replaces.emplace(op.path.toString(), m_ops.size());
        if (!fresh) {
            PatchOp& old = m_ops[place->second];
            m_bytes -= sizeOf(old);
            old.value = op.value;
            m_bytes += sizeOf(old);
            return;
        }
    } else {
        m_replaces.clear(); // paths may mean other objects from here on
    }
    m_ops.push_back(op);
    m_bytes += sizeOf(op);
}

Patch ChangeBatch::take()
{
    Patch patch;
    for (PatchOp& op : m_ops)
        patch.append(std::move(op));
    m_ops.clear();
    m_replaces.clear();
    m_bytes = 0;
    return patch;
}

} // namespace vantrel::ombra
