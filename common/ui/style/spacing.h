#pragma once

namespace vantrel {

/// The one scale of distances between and around widgets, in pixels; the same at every text size.
namespace spacing {

constexpr int tight = 4;  // parts of one control
constexpr int normal = 8; // controls of one group, a panel's padding
constexpr int loose = 12; // groups
constexpr int wide = 16;  // blocks

} // namespace spacing

} // namespace vantrel
