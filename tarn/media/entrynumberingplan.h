#pragma once

#include "tarn/media/entryaddress.h"

namespace vantrel {

/// The addresses that a playlist offers for new entries: ascending whole numbers, or ascending decimals of
/// one whole number. Neighbours are never renumbered; where the count does not fit, the plan is invalid.
class EntryNumberingPlan
{
public:
    EntryNumberingPlan() = default; // no room

    /// Room for count addresses (0: as many as the caller needs) strictly between two addresses; an invalid
    /// "after" stands for the start of the list, an invalid "before" for its end. Whole numbers where enough
    /// of them are free, otherwise the decimals that follow "after". At the start of the list these are the
    /// last decimals before "before", so that there is room at the start again.
    static EntryNumberingPlan between(const EntryAddress& after, const EntryAddress& before, int count);

    bool isValid() const noexcept { return m_valid; }
    EntryAddress getFirstAddress() const noexcept { return m_first; }
    /// The address after the given one of this plan; no address past the last possible one.
    EntryAddress advance(const EntryAddress& address) const noexcept;

private:
    bool m_valid = false;
    bool m_decimals = false;
    EntryAddress m_first;
};

} // namespace vantrel
