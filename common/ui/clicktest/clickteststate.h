#pragma once

class QJsonObject;

namespace vantrel::clicktest {

/// What stands behind the interface, for a robot that compares it with the server: "connected", "undoCount",
/// "undoIndex", "keymap" (a name to its key), "library" and "scene" (JSON texts).
QJsonObject stateJson();

} // namespace vantrel::clicktest
