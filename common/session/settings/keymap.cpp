#include "common/session/settings/keymap.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <utility>

namespace vantrel {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("Keymap", text);
}

QKeySequence keyOf(const QMap<QString, QVariant>& keymap, const QString& action)
{
    return keymap.value(action).value<QKeySequence>();
}

/// The key of a stored value; none when the value is no key.
std::optional<QKeySequence> readKey(const QVariant& value)
{
    const bool isKey = value.typeId() == QMetaType::QKeySequence || value.typeId() == QMetaType::QString;
    const auto key = value.value<QKeySequence>();
    for (int i = 0; i < key.count(); ++i) {
        if (key[static_cast<uint>(i)].key() == Qt::Key_unknown)
            return std::nullopt;
    }
    // A text that says something but is no key reads as an empty sequence, or as an unknown key.
    const bool isLost = key.isEmpty() && !value.toString().isEmpty();
    return isKey && !isLost ? std::optional(key) : std::nullopt;
}

} // namespace

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
    static constexpr std::pair<const char*, QKeyCombination> ownKeys[] = {
        {"play_pause", Qt::Key_Space},
        {"set_inpoint", Qt::Key_I},
        {"set_outpoint", Qt::Key_O},
        {"seek_inpoint", Qt::Key_Home},
        {"seek_outpoint", Qt::Key_End},
        {"prev_frame", Qt::Key_Comma},
        {"next_frame", Qt::Key_Period},
        {"cue", Qt::Key_Return},
        {"take", Qt::Key_F12},
        {"mute_program", Qt::Key_M},
        {"rename", Qt::Key_F2},
        {"find", Qt::CTRL | Qt::Key_F},
        {"move_slots", Qt::CTRL | Qt::Key_M},
        {"keyboard", Qt::Key_F1},
        {"tab_1", Qt::CTRL | Qt::Key_1},
        {"tab_2", Qt::CTRL | Qt::Key_2},
        {"lock_program", Qt::CTRL | Qt::Key_L},
        {"tab_3", Qt::CTRL | Qt::Key_3},
        {"tab_4", Qt::CTRL | Qt::Key_4},
        {"insert_media", Qt::Key_Insert},
        {"insert_media_before", Qt::SHIFT | Qt::Key_Insert},
        {"replace_by_media", Qt::CTRL | Qt::Key_Insert},
        {"edit_transition", Qt::CTRL | Qt::Key_T},
        {"edit_transition_time", Qt::CTRL | Qt::Key_D},
        {"edit_end_action", Qt::CTRL | Qt::Key_E},
        {"list_order", Qt::CTRL | Qt::Key_0},
        {"all_playlists", Qt::CTRL | Qt::Key_P},
        {"move_entries_up", Qt::ALT | Qt::Key_Up},
        {"move_entries_down", Qt::ALT | Qt::Key_Down},
        {"renumber_entries", Qt::CTRL | Qt::Key_R},
        {"clear_show", Qt::CTRL | Qt::Key_N},
        {"revert_show", Qt::CTRL | Qt::SHIFT | Qt::Key_R},
        {"earlier_states", Qt::CTRL | Qt::Key_H},
        {"import_show", Qt::CTRL | Qt::Key_I},
        {"export_show", Qt::CTRL | Qt::SHIFT | Qt::Key_E},
    };
    QMap<QString, QVariant> keymap;
    for (const auto& [name, key] : keys)
        keymap.insert(QString::fromLatin1(name), QVariant::fromValue(QKeySequence(key)));
    // F11 opens a window for service, and some desktops have no key for the full screen.
    if (const QKeySequence full(QKeySequence::FullScreen);
        full.isEmpty() || full == QKeySequence(Qt::Key_F11))
        keymap.insert(QStringLiteral("fullscreen"),
                      QVariant::fromValue(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F)));
    if (QKeySequence(QKeySequence::SaveAs).isEmpty())
        keymap.insert(QStringLiteral("save_as"),
                      QVariant::fromValue(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)));
    for (const auto& [name, key] : ownKeys)
        keymap.insert(QString::fromLatin1(name), QVariant::fromValue(QKeySequence(key)));
    return keymap;
}

const QList<KeyAction>& keyActions()
{
    static const char* const player = QT_TRANSLATE_NOOP("Keymap", "Player");
    static const char* const library = QT_TRANSLATE_NOOP("Keymap", "Library");
    static const char* const playlist = QT_TRANSLATE_NOOP("Keymap", "Playlist");
    static const char* const show = QT_TRANSLATE_NOOP("Keymap", "Show");
    static const char* const window = QT_TRANSLATE_NOOP("Keymap", "Window");
    struct Row
    {
        const char* name;
        const char* group;
        const char* text;
    };
    static const Row rows[] = {
        {"take", player, QT_TRANSLATE_NOOP("Keymap", "Take")},
        {"play_pause", player, QT_TRANSLATE_NOOP("Keymap", "Play and pause")},
        {"mute_program", player, QT_TRANSLATE_NOOP("Keymap", "Mute program")},
        {"lock_program", player, QT_TRANSLATE_NOOP("Keymap", "Lock program")},
        {"set_inpoint", player, QT_TRANSLATE_NOOP("Keymap", "Set the in point")},
        {"set_outpoint", player, QT_TRANSLATE_NOOP("Keymap", "Set the out point")},
        {"seek_inpoint", player, QT_TRANSLATE_NOOP("Keymap", "Go to the in point")},
        {"seek_outpoint", player, QT_TRANSLATE_NOOP("Keymap", "Go to the out point")},
        {"prev_frame", player, QT_TRANSLATE_NOOP("Keymap", "A frame back")},
        {"next_frame", player, QT_TRANSLATE_NOOP("Keymap", "A frame on")},
        {"cue", library, QT_TRANSLATE_NOOP("Keymap", "Cue the slot or entry on preview")},
        {"rename", library, QT_TRANSLATE_NOOP("Keymap", "Rename the slot, or the playlist")},
        {"delete", library, QT_TRANSLATE_NOOP("Keymap", "Clear the chosen slots, or remove the entries")},
        {"move_slots", library, QT_TRANSLATE_NOOP("Keymap", "Move the chosen slots to a number")},
        {"find", library, QT_TRANSLATE_NOOP("Keymap", "Search the collection")},
        {"undo", library, QT_TRANSLATE_NOOP("Keymap", "Undo")},
        {"redo", library, QT_TRANSLATE_NOOP("Keymap", "Redo")},
        {"insert_media", playlist, QT_TRANSLATE_NOOP("Keymap", "Add the chosen slots to the playlist")},
        {"insert_media_before", playlist, QT_TRANSLATE_NOOP("Keymap", "Add them in front of the entry")},
        {"replace_by_media", playlist, QT_TRANSLATE_NOOP("Keymap", "Replace the entry by them")},
        {"edit_transition", playlist, QT_TRANSLATE_NOOP("Keymap", "Choose the transition")},
        {"edit_transition_time", playlist, QT_TRANSLATE_NOOP("Keymap", "Set the time of the transition")},
        {"edit_end_action", playlist, QT_TRANSLATE_NOOP("Keymap", "Choose the end action")},
        {"list_order", playlist, QT_TRANSLATE_NOOP("Keymap", "Show the list in its order")},
        {"all_playlists", playlist, QT_TRANSLATE_NOOP("Keymap", "Show all playlists")},
        {"move_entries_up", playlist, QT_TRANSLATE_NOOP("Keymap", "Move the entries up")},
        {"move_entries_down", playlist, QT_TRANSLATE_NOOP("Keymap", "Move the entries down")},
        {"renumber_entries", playlist, QT_TRANSLATE_NOOP("Keymap", "Renumber the entries")},
        {"copy", playlist, QT_TRANSLATE_NOOP("Keymap", "Copy the entries")},
        {"cut", playlist, QT_TRANSLATE_NOOP("Keymap", "Cut the entries")},
        {"paste", playlist, QT_TRANSLATE_NOOP("Keymap", "Paste entries or slots")},
        {"open", show, QT_TRANSLATE_NOOP("Keymap", "Shows on the server")},
        {"save", show, QT_TRANSLATE_NOOP("Keymap", "Save the show")},
        {"save_as", show, QT_TRANSLATE_NOOP("Keymap", "Save the show under a name")},
        {"revert_show", show, QT_TRANSLATE_NOOP("Keymap", "Revert the show to what was saved")},
        {"clear_show", show, QT_TRANSLATE_NOOP("Keymap", "Clear the show")},
        {"earlier_states", show, QT_TRANSLATE_NOOP("Keymap", "Bring back an earlier state")},
        {"import_show", show, QT_TRANSLATE_NOOP("Keymap", "Import a show")},
        {"export_show", show, QT_TRANSLATE_NOOP("Keymap", "Export the show")},
        {"tab_1", window, QT_TRANSLATE_NOOP("Keymap", "Outputs page")},
        {"tab_2", window, QT_TRANSLATE_NOOP("Keymap", "Files page")},
        {"tab_3", window, QT_TRANSLATE_NOOP("Keymap", "Media page")},
        {"tab_4", window, QT_TRANSLATE_NOOP("Keymap", "Player page")},
        {"fullscreen", window, QT_TRANSLATE_NOOP("Keymap", "Full screen")},
        {"zoom_in", window, QT_TRANSLATE_NOOP("Keymap", "Larger text")},
        {"zoom_out", window, QT_TRANSLATE_NOOP("Keymap", "Smaller text")},
        {"keyboard", window, QT_TRANSLATE_NOOP("Keymap", "Show and change the keys")},
    };
    static const QList<KeyAction> actions = [] {
        QList<KeyAction> all;
        for (const Row& row : rows)
            all.append({QString::fromLatin1(row.name), translated(row.group), translated(row.text)});
        return all;
    }();
    return actions;
}

const KeyAction* findKeyAction(const QString& name)
{
    const QList<KeyAction>& all = keyActions();
    const auto found = std::ranges::find(all, name, &KeyAction::name);
    return found == all.cend() ? nullptr : &*found;
}

QString reservedKeyReason(const QString& action, const QKeySequence& key)
{
    struct Rule
    {
        QList<QKeySequence> keys;
        const char* reason;
    };
    static const Rule rules[] = {
        {{Qt::Key_Escape}, QT_TRANSLATE_NOOP("Keymap", "it closes dialogs and takes back what is typed")},
        {{Qt::Key_Tab, Qt::SHIFT | Qt::Key_Tab, Qt::SHIFT | Qt::Key_Backtab, Qt::Key_Backtab},
         QT_TRANSLATE_NOOP("Keymap", "it goes from one control to the next")},
        {{Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right, Qt::Key_PageUp, Qt::Key_PageDown},
         QT_TRANSLATE_NOOP("Keymap", "it moves in lists and sliders")},
        {{Qt::CTRL | Qt::Key_A, Qt::CTRL | Qt::Key_C, Qt::CTRL | Qt::Key_X, Qt::CTRL | Qt::Key_V},
         QT_TRANSLATE_NOOP("Keymap", "it edits what is typed")},
        {{Qt::Key_F10, Qt::Key_F11}, QT_TRANSLATE_NOOP("Keymap", "it opens a window for service")},
        {{Qt::ALT | Qt::Key_F4}, QT_TRANSLATE_NOOP("Keymap", "it closes the window")},
        {{Qt::Key_0, Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5, Qt::Key_6, Qt::Key_7, Qt::Key_8,
          Qt::Key_9},
         QT_TRANSLATE_NOOP("Keymap", "digits find a slot by its number")},
    };
    const auto because = [&key](const char* reason) {
        return translated("%1 cannot be used: %2.").arg(keyCaps(key).join(u'+'), translated(reason));
    };
    // What text fields do by their own keys, a list of entries does by the same.
    static const QStringList clipboard{QStringLiteral("copy"), QStringLiteral("cut"),
                                       QStringLiteral("paste")};
    const bool isOwn = clipboard.contains(action) && keyOf(defaultKeymap(), action) == key;
    for (const Rule& rule : rules) {
        if (!isOwn && rule.keys.contains(key))
            return because(rule.reason);
    }
    // In the list of slots alone nothing is half typed that the key would end.
    if (key == QKeySequence(Qt::Key_Return) && action != QLatin1String("cue"))
        return because(QT_TRANSLATE_NOOP("Keymap", "it ends what is typed"));
    if (key == QKeySequence(Qt::Key_Backspace) ||
        (key == QKeySequence(Qt::Key_Delete) && action != QLatin1String("delete")))
        return because(QT_TRANSLATE_NOOP("Keymap", "it deletes what is typed"));
    return {};
}

const KeyAction* keyHolder(const QMap<QString, QVariant>& keymap, const QKeySequence& key,
                           const QString& except)
{
    const QList<KeyAction>& all = keyActions();
    const auto found = std::ranges::find_if(all, [&](const KeyAction& action) {
        return action.name != except && keyOf(keymap, action.name) == key;
    });
    return key.isEmpty() || found == all.cend() ? nullptr : &*found;
}

QString keymapFault(const QVariant& stored)
{
    const QMap<QString, QVariant> keymap = stored.toMap();
    if (keymap.isEmpty())
        return translated("The stored keys cannot be read.");
    for (const KeyAction& action : keyActions()) {
        if (!keymap.contains(action.name))
            continue;
        const std::optional<QKeySequence> key = readKey(keymap.value(action.name));
        if (!key)
            return translated("The stored key of \"%1\" is none.").arg(action.text);
        if (const QString reason = reservedKeyReason(action.name, *key); !reason.isEmpty())
            return translated("The stored key of \"%1\" is reserved. %2").arg(action.text, reason);
        if (const KeyAction* other = keyHolder(keymap, *key, action.name))
            return translated("\"%1\" and \"%2\" have the same stored key, %3.")
                .arg(action.text, other->text, keyCaps(*key).join(u'+'));
    }
    return {};
}

QMap<QString, QVariant> completeKeymap(const QMap<QString, QVariant>& stored)
{
    QMap<QString, QVariant> keymap = stored;
    const QMap<QString, QVariant> defaults = defaultKeymap();
    for (auto it = defaults.cbegin(); it != defaults.cend(); ++it) {
        if (stored.contains(it.key()))
            continue;
        const bool isTaken = keyHolder(stored, it.value().value<QKeySequence>(), it.key());
        keymap.insert(it.key(), isTaken ? QVariant::fromValue(QKeySequence()) : it.value());
    }
    return keymap;
}

QStringList keyCaps(const QKeySequence& key)
{
    static constexpr std::pair<Qt::KeyboardModifier, const char*> modifiers[] = {
        {Qt::ControlModifier, QT_TRANSLATE_NOOP("Keymap", "Ctrl")},
        {Qt::AltModifier, QT_TRANSLATE_NOOP("Keymap", "Alt")},
        {Qt::MetaModifier, QT_TRANSLATE_NOOP("Keymap", "Meta")},
        {Qt::ShiftModifier, QT_TRANSLATE_NOOP("Keymap", "Shift")},
    };
    QStringList caps;
    for (int i = 0; i < key.count(); ++i) {
        const QKeyCombination combination = key[static_cast<uint>(i)];
        for (const auto& [modifier, text] : modifiers) {
            if (combination.keyboardModifiers().testFlag(modifier))
                caps.append(translated(text));
        }
        const Qt::Key code = combination.key();
        caps.append(code == Qt::Key_Return ? translated("Enter")
                                           : QKeySequence(code).toString(QKeySequence::NativeText));
    }
    return caps;
}

} // namespace vantrel
