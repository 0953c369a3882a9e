#pragma once

#include "ombra/outputs/connector.h"

#include <span>
#include <vector>

namespace vantrel::ombra {

/// What an output had so far.
struct HeldConnector
{
    std::string name; // empty for none yet
    std::string edid; // of the display that was there last
};

/// Which of the machine's connectors each output has from now on; null for none. Each keeps its own while
/// that has a display. One without takes a connector that has one and is nobody's: that to which its display
/// has moved, or the first.
std::vector<const Connector*> chooseConnectors(std::span<const HeldConnector> outputs,
                                               const std::vector<Connector>& machine);

} // namespace vantrel::ombra
