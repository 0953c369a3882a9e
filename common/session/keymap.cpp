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
    static constexpr std::pair<const char*, Qt::Key> playerKeys[] = {
        {"play_pause", Qt::Key_Space},  {"set_inpoint", Qt::Key_I},     {"set_outpoint", Qt::Key_O},
        {"seek_inpoint", Qt::Key_Home}, {"seek_outpoint", Qt::Key_End}, {"prev_frame", Qt::Key_Comma},
        {"next_frame", Qt::Key_Period}, {"cue", Qt::Key_Return},        {"take", Qt::Key_F12},
        {"mute_program", Qt::Key_M},
    };
    QMap<QString, QVariant> keymap;
    for (const auto& [name, key] : keys)
        keymap.insert(QString::fromLatin1(name), QVariant::fromValue(QKeySequence(key)));
    for (const auto& [name, key] : playerKeys)
        keymap.insert(QString::fromLatin1(name), QVariant::fromValue(QKeySequence(key)));
    return keymap;
}

} // namespace vantrel
