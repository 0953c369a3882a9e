#include "common/session/keymap.h"

#include <QKeySequence>

#include <utility>

namespace vantrel {

QMap<QString, QVariant> defaultKeymap()
{
    static constexpr std::pair<const char*, QKeySequence::StandardKey> keys[] = {
        {"undo", QKeySequence::Undo},
        {"redo", QKeySequence::Redo},
        {"copy", QKeySequence::Copy},
        {"cut", QKeySequence::Cut},
        {"paste", QKeySequence::Paste},
        {"back", QKeySequence::Back},
        {"delete", QKeySequence::Delete},
        {"open", QKeySequence::Open},
        {"save", QKeySequence::Save},
        {"save_as", QKeySequence::SaveAs},
        {"fullscreen", QKeySequence::FullScreen},
        {"zoom_in", QKeySequence::ZoomIn},
        {"zoom_out", QKeySequence::ZoomOut},
    };
    QMap<QString, QVariant> keymap;
    for (const auto& [name, key] : keys)
        keymap.insert(QString::fromLatin1(name), QVariant::fromValue(QKeySequence(key)));
    return keymap;
}

} // namespace vantrel
