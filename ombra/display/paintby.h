#pragma once

namespace vantrel::ombra {

/// Who paints the screens. Itself: the graphics card, and the processor where there is none.
enum class PaintBy { Itself, Card, Processor };

} // namespace vantrel::ombra
