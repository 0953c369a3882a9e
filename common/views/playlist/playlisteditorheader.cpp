#include "common/views/playlist/playlisteditorheader.h"

#include "common/command/execute.h"
#include "common/command/refusal.h"
#include "common/media/edit/playlist/addplaylistcommand.h"
#include "common/media/edit/playlist/renameplaylistcommand.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/models/playbackmodel.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/session/settings/configuration.h"
#include "common/session/settings/timeutils.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/ztdropdownmenu.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/views/playlist/listclock.h"
#include "common/views/playlist/playlistgrip.h"
#include "common/views/playlist/playlistlogging.h"
#include "tarn/media/medialibrary.h"
#include "util/clocktime.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QUndoStack>

namespace vantrel {

namespace {

const QMap<FontSize, QSize> buttonSizes{{FontSize::Small, {24, 24}},
                                        {FontSize::Medium, {28, 28}},
                                        {FontSize::Large, {36, 36}},
                                        {FontSize::Huge, {44, 44}}};
constexpr int titleHeight = 26;  // on program, at the medium text size
constexpr int leastChooser = 90; // pixels at the medium text size, before other things give way

} // namespace

PlaylistEditorHeader::PlaylistEditorHeader(PlaybackViewMode mode, const Sources& sources, QWidget* parent)
    : ZTFrame(parent)
    , m_mode(mode)
    , m_sources(sources)
{
    setObjectName(prefix() + QStringLiteral("-header"));
    if (isPreview())
        buildPreview();
    else
        buildProgram();
    connectModels();
    showList();
}

QString PlaylistEditorHeader::prefix() const
{
    return isPreview() ? QStringLiteral("Preview-PlaylistEditor") : QStringLiteral("Program-PlaylistEditor");
}

QPoint PlaylistEditorHeader::menuPosition() const
{
    return m_context ? m_context->mapToGlobal(m_context->rect().bottomLeft()) : QPoint();
}

QSize PlaylistEditorHeader::minimumSizeHint() const
{
    return {0, layout()->minimumSize().height()};
}

IconButton* PlaylistEditorHeader::addButton(QHBoxLayout* row, const QString& icon, const char* suffix,
                                            const QString& tip)
{
    auto* button = new IconButton(icon, {}, this);
    button->setObjectName(prefix() + QLatin1String(suffix));
    button->setSizes(buttonSizes);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    row->addWidget(button);
    return button;
}

void PlaylistEditorHeader::buildPreview()
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::tight);
    m_grip = new PlaylistGrip(m_sources.model, this);
    m_grip->setObjectName(prefix() + QStringLiteral("-grip"));
    row->addWidget(m_grip);
    m_dropdown = new ZTDropdownMenu(this);
    m_dropdown->setObjectNames(prefix() + QStringLiteral("-dropdown"));
    m_dropdown->setAccessibleName(tr("Playlist"));
    m_dropdown->setToolTip(tr("The playlist that is shown and edited"));
    m_dropdown->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_dropdown->setMaxVisibleItems(20);
    showNoList();
    m_dropdown->setModel(m_sources.library);
    m_dropdown->setModelColumn(PlaylistLibraryModel::NameColumn);
    m_dropdown->installEventFilter(this);
    row->addWidget(m_dropdown, 1);
    m_edit = addButton(row, QStringLiteral(":/icons/edit.svg"), "-edit-button", tr("Rename playlist"));
    setHotkeyTip(m_edit, tr("Rename playlist"), {QStringLiteral("rename")});
    m_new = addButton(row, QStringLiteral(":/icons/plus.svg"), "-new-button", tr("New playlist"));
    m_pin = addButton(row, QStringLiteral(":/icons/pin.svg"), "-pin-button",
                      tr("Pin: stay on this page when an entry is cued"));
    m_pin->setToggleIcons(QStringLiteral(":/icons/pinned.svg"), QStringLiteral(":/icons/pin.svg"));
    m_context =
        addButton(row, QStringLiteral("more"), "-context-button", tr("What can be done with this playlist"));
    row->addSpacing(spacing::tight);
    buildDuration(row);

    connect(m_dropdown, &ZTDropdownMenu::chosen, this, &PlaylistEditorHeader::dropdownIndexChanged);
    connect(m_edit, &QAbstractButton::clicked, this, &PlaylistEditorHeader::beginNameEditing);
    connect(m_new, &QAbstractButton::clicked, this, &PlaylistEditorHeader::onNewPlaylistButtonClicked);
    connect(m_pin, &QAbstractButton::toggled, this, &PlaylistEditorHeader::editorPinned);
    connect(m_context, &QAbstractButton::clicked, this, &PlaylistEditorHeader::contextMenu);
    followFontSize(this, [this](FontSize) { fit(); });
}

void PlaylistEditorHeader::buildProgram()
{
    auto* title = new ZTLabel(tr("PGM playlist"), this);
    title->setObjectName(prefix() + QStringLiteral("-title"));
    title->setStyleClass(QStringLiteral("section"));
    m_name = new ElidedLabel(this);
    m_name->setObjectName(prefix() + QStringLiteral("-name"));
    m_name->setStyleClass(QStringLiteral("dim"));
    m_end = new ElidedLabel(this);
    m_end->setObjectName(prefix() + QStringLiteral("-end"));
    m_end->setStyleClass(QStringLiteral("section"));
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::normal);
    // Not a height of the title's own: a label goes on asking for the one it had in larger text.
    auto* strut = new QSpacerItem(0, 0);
    row->addItem(strut);
    followFontSize(title, [row, strut](FontSize size) {
        strut->changeSize(0, scaled(titleHeight, size));
        row->invalidate();
    });
    row->addWidget(title);
    row->addWidget(m_name, 1);
    buildDuration(row);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing::tight);
    column->addLayout(row);
    column->addWidget(m_end);
}

void PlaylistEditorHeader::buildDuration(QHBoxLayout* row)
{
    m_durationLabel = new ZTLabel(tr("Duration:"), this);
    m_durationLabel->setObjectName(QStringLiteral("DurationLabel"));
    m_durationLabel->setStyleClass(QStringLiteral("dim"));
    m_duration = new ZTLabel(QStringLiteral("--:--:--"), this);
    m_duration->setObjectName(prefix() + QStringLiteral("-duration"));
    m_duration->setToolTip(tr("Duration of the playlist, up to an entry without an end"));
    m_duration->setAccessibleName(tr("Duration of the playlist"));
    m_infinite = new IconButton(QStringLiteral(":/icons/infinite_duration.svg"), {}, this);
    m_infinite->setObjectName(prefix() + QStringLiteral("-infiniteDurationIndicator"));
    m_infinite->setToolTip(tr("An entry of this playlist has no end"));
    m_infinite->setAccessibleName(tr("Infinite duration"));
    m_infinite->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_infinite->setFocusPolicy(Qt::NoFocus);
    m_infinite->setSizes({{FontSize::Small, {18, 18}},
                          {FontSize::Medium, {20, 20}},
                          {FontSize::Large, {26, 26}},
                          {FontSize::Huge, {32, 32}}});
    m_infinite->setIconShare(0.9);
    m_infinite->hide();
    row->addWidget(m_durationLabel);
    row->addWidget(m_duration);
    row->addWidget(m_infinite);
}

void PlaylistEditorHeader::connectModels()
{
    connect(m_sources.model, &PlaylistModel::playlistChanged, this, &PlaylistEditorHeader::onPlaylistChanged);
    connect(m_sources.playback, &QAbstractItemModel::dataChanged, this,
            &PlaylistEditorHeader::onPlaybackDataChanged);
    connect(m_sources.playback, &QAbstractItemModel::modelReset, this,
            &PlaylistEditorHeader::onPlaybackChange);
    connect(m_sources.library, &QAbstractItemModel::dataChanged, this, &PlaylistEditorHeader::onDataChanged);
    connect(m_sources.library, &QAbstractItemModel::rowsInserted, this,
            &PlaylistEditorHeader::onRowsInserted);
    // In the next turn: the drop-down has heard of the change by then.
    m_refresh.setSingleShot(true);
    connect(&m_refresh, &QTimer::timeout, this, &PlaylistEditorHeader::showList);
    const auto later = [this] { m_refresh.start(0); };
    connect(m_sources.library, &QAbstractItemModel::modelReset, this, [this, later] {
        m_isReadAnew = true;
        later();
    });
    connect(m_sources.library, &QAbstractItemModel::rowsRemoved, this, later);
    connect(m_sources.library, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) { onRowsAboutToBeRemoved(first, last); });
    connect(m_sources.library, &QAbstractItemModel::rowsInserted, this, later);
}

uint PlaylistEditorHeader::displayedPlaylist() const
{
    return m_sources.model->playlistNumber();
}

/// Only what the operator has seen go is lost: a library read anew shows its first list.
void PlaylistEditorHeader::onRowsAboutToBeRemoved(int first, int last)
{
    const auto isGone = [=, this](uint playlist) {
        const int row = m_sources.library->rowOf(playlist);
        return row >= first && row <= last;
    };
    if (isPreview() && isGone(displayedPlaylist()))
        setLost(displayedPlaylist());
    if (m_naming != 0 && isGone(m_naming))
        QMetaObject::invokeMethod(this, &PlaylistEditorHeader::dropNaming, Qt::QueuedConnection);
}

void PlaylistEditorHeader::setLost(uint number)
{
    if (std::exchange(m_lost, number) != number)
        Q_EMIT lostListChanged();
}

/// Shows the list of the model. An editor without one shows the first that there is; one whose list was
/// removed, or is on its way, none: what is edited next must not land in a list that nobody has chosen.
void PlaylistEditorHeader::showList()
{
    int row = m_sources.library->rowOf(displayedPlaylist());
    const bool isUnchosen =
        std::exchange(m_isReadAnew, false) || displayedPlaylist() == PlaylistModel::noPlaylist;
    if (row >= 0 || isUnchosen || m_sources.library->rowCount() == 0 || displayedPlaylist() != m_lost)
        setLost(0);
    if (row < 0 && isUnchosen && isPreview() && m_sources.library->rowCount() > 0) {
        m_sources.model->setPlaylistNumber(m_sources.library->playlistNumberAt(0));
        row = 0;
    }
    if (m_dropdown)
        m_dropdown->setCurrentIndex(row);
    showNoList();
    if (m_edit)
        m_edit->setEnabled(m_isEditable && row >= 0);
    if (m_name && !m_isOneLine)
        m_name->setText(
            row < 0 ? QString()
                    : m_sources.library->index(row, PlaylistLibraryModel::NameColumn).data().toString());
    setDuration(m_sources.library->index(row, PlaylistLibraryModel::DurationColumn));
    fit();
}

void PlaylistEditorHeader::setDuration(const QModelIndex& index)
{
    const double seconds = index.isValid() ? index.data().toDouble() : 0;
    const bool isInfinite =
        index.siblingAtColumn(PlaylistLibraryModel::InfiniteColumn).data(Qt::EditRole).toBool();
    m_infinite->setVisible(isInfinite && seconds > 0);
    m_duration->setText(seconds > 0 ? TimeUtils::formatClockTime(clocktime::fromSeconds(seconds))
                                    : QStringLiteral("--:--:--"));
}

void PlaylistEditorHeader::setClock(ListClock* clock)
{
    m_clock = clock;
    connect(clock, &ListClock::ticked, this, &PlaylistEditorHeader::showClock);
    connect(clock, &ListClock::courseChanged, this, &PlaylistEditorHeader::showClock);
    showClock();
}

void PlaylistEditorHeader::showClock()
{
    if (!m_end)
        return;
    const QString text = m_clock->text();
    ElidedLabel* shown = m_isOneLine ? m_name : m_end;
    shown->setText(text.isEmpty() ? tr("No playlist on air") : text);
    shown->setStyleClass(text.isEmpty() ? QStringLiteral("dim") : QStringLiteral("section"));
}

void PlaylistEditorHeader::setOneLine(bool oneLine)
{
    if (!m_end || oneLine == m_isOneLine)
        return;
    m_isOneLine = oneLine;
    m_end->setVisible(!oneLine);
    m_name->setStyleClass(QStringLiteral("dim"));
    showList();
    showClock();
}

void PlaylistEditorHeader::setEditable(bool editable)
{
    m_isEditable = editable;
    if (m_new)
        m_new->setEnabled(editable);
    showList();
}

void PlaylistEditorHeader::setUnread(const QString& unread)
{
    m_unread = unread;
    showNoList();
}

/// What stands for a list where none is shown.
void PlaylistEditorHeader::showNoList()
{
    if (!m_dropdown)
        return;
    const QString none = m_sources.library->rowCount() > 0 ? tr("No playlist chosen") : tr("No playlists");
    m_dropdown->setPlaceholderText(m_unread.isEmpty() ? none : m_unread);
}

void PlaylistEditorHeader::dropdownIndexChanged(int index)
{
    const uint number = m_sources.library->playlistNumberAt(index);
    if (number != PlaylistModel::noPlaylist)
        m_sources.model->setPlaylistNumber(number);
}

void PlaylistEditorHeader::onPlaylistChanged(uint playlist)
{
    if (playlist == displayedPlaylist())
        showList();
}

void PlaylistEditorHeader::onPlaybackChange()
{
    const uint playing = m_sources.playback->index(0, PlaybackModel::PlaylistNumberColumn).data().toUInt();
    // An entry that moves, is put back or is read anew is gone for a moment: the channel plays on.
    if (playing == 0 || m_isHeld || m_naming != 0)
        return;
    const uint before = std::exchange(m_followed, playing);
    // From entry to entry of the same list the operator may look at another.
    if (playing == before || playing == displayedPlaylist())
        return;
    m_sources.model->setPlaylistNumber(playing);
    onPlaylistChanged(playing);
}

void PlaylistEditorHeader::setHeld(bool held)
{
    m_isHeld = held;
    if (!held)
        onPlaybackChange();
}

void PlaylistEditorHeader::onPlaybackDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    if (PlaybackModel::isColumnIn(PlaybackModel::PlaylistNumberColumn, topLeft, bottomRight))
        onPlaybackChange();
}

void PlaylistEditorHeader::onDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    const int row = m_sources.library->rowOf(displayedPlaylist());
    if (row >= topLeft.row() && row <= bottomRight.row())
        showList();
}

void PlaylistEditorHeader::onRowsInserted(const QModelIndex& parent, int first, int last)
{
    Q_UNUSED(parent);
    Q_UNUSED(first);
    Q_UNUSED(last);
    showAwaited();
}

/// Shows the list that was made here and lets it be named, once it is there and is known to be this one: two
/// operators may ask for the same number.
void PlaylistEditorHeader::showAwaited()
{
    if (!m_awaited || !m_isAwaitedDone || m_sources.library->rowOf(*m_awaited) < 0)
        return;
    const uint number = *m_awaited;
    m_awaited.reset();
    m_sources.model->setPlaylistNumber(number);
    // The drop-down hears of the row after this.
    QMetaObject::invokeMethod(
        this,
        [this, number] {
            showList();
            if (displayedPlaylist() == number)
                beginNameEditing();
        },
        Qt::QueuedConnection);
}

void PlaylistEditorHeader::onNewPlaylistButtonClicked()
{
    qCDebug(lcPlaylist) << "Requesting a new playlist...";
    const int number = freeNumber();
    createNewPlaylist(tr("New playlist %1").arg(number), number);
}

void PlaylistEditorHeader::createNewPlaylist(const QString& name, int number)
{
    qCDebug(lcPlaylist) << "About to create a new playlist:" << name << "with number" << number;
    const MediaLibrary* library = m_sources.model->playlistProvider()->mediaLibrary();
    m_awaited.reset();
    if (!execute<AddPlaylistCommand>(m_sources.stack, "AddPlaylistCommand", library, number, name))
        return;
    showWhenThere(static_cast<uint>(number));
}

void PlaylistEditorHeader::setLibraryApi(const MediaLibraryApi* api)
{
    m_api = api;
}

int PlaylistEditorHeader::freeNumber() const
{
    int number = m_sources.library->nextFreeNumber();
    const Ref<const MediaLibrary> expected = m_api ? m_api->expectedLibrary() : nullptr;
    while (expected && number < MediaLibrary::indexMax && std::as_const(*expected).findPlaylist(number))
        ++number;
    return number;
}

void PlaylistEditorHeader::showWhenThere(uint number)
{
    m_awaited = number;
    m_isAwaitedDone = false;
    const auto answered = [this, awaited = *m_awaited](EditDirection, bool isDone) {
        if (m_awaited != awaited)
            return;
        m_isAwaitedDone = isDone;
        if (isDone)
            showAwaited();
        else
            m_awaited.reset();
    };
    if (const auto* command = lastCommand())
        connect(command, &AbstractDiffApiCommand::answered, this, answered, Qt::SingleShotConnection);
}

const AbstractDiffApiCommand* PlaylistEditorHeader::lastCommand() const
{
    const QUndoStack* stack = m_sources.stack;
    return dynamic_cast<const AbstractDiffApiCommand*>(stack->command(stack->index() - 1));
}

void PlaylistEditorHeader::beginNameEditing()
{
    const int row = m_sources.library->rowOf(displayedPlaylist());
    if (!m_dropdown || row < 0 || m_naming != 0 || !m_isEditable)
        return;
    m_naming = displayedPlaylist();
    m_nameField = new ZTEdit(
        m_sources.library->index(row, PlaylistLibraryModel::PlainNameColumn).data(Qt::EditRole).toString(),
        this);
    m_nameField->setObjectName(m_dropdown->objectName() + QStringLiteral("-edit"));
    m_nameField->setAccessibleName(tr("Name of the playlist"));
    m_nameField->setToolTip(tr("Name of the playlist. Enter: rename it. Escape: keep the name that it has"));
    m_nameField->installEventFilter(this);
    placeNameField();
    m_nameField->show();
    m_nameField->setFocus(Qt::OtherFocusReason);
    m_nameField->selectAll();
    // Not while the field tells of it: it goes with the end of editing.
    connect(m_nameField, &QLineEdit::editingFinished, this, &PlaylistEditorHeader::endNameEditing,
            Qt::QueuedConnection);
}

void PlaylistEditorHeader::placeNameField()
{
    if (!m_nameField)
        return;
    m_nameField->setGeometry(m_dropdown->geometry());
    m_nameField->raise();
}

void PlaylistEditorHeader::closeNameField()
{
    m_naming = 0;
    ZTEdit* field = std::exchange(m_nameField, nullptr);
    field->disconnect(this);
    if (field->hasFocus())
        m_dropdown->setFocus(Qt::OtherFocusReason);
    field->hide();
    field->setObjectName({});
    field->deleteLater();
    showList();
    onPlaybackChange();
}

void PlaylistEditorHeader::endNameEditing()
{
    if (m_naming == 0)
        return;
    const uint playlist = m_naming;
    const QString name = m_nameField->text().trimmed();
    if (!name.isEmpty())
        rename(playlist, name);
    closeNameField();
}

/// The next list of that number is another one.
void PlaylistEditorHeader::dropNaming()
{
    if (m_naming == 0)
        return;
    tellRemoved(m_naming);
    closeNameField();
}

void PlaylistEditorHeader::tellRemoved(uint playlist) const
{
    tellNotDone(tr("Rename playlist"), tr("Playlist %1 was removed meanwhile.").arg(playlist));
}

void PlaylistEditorHeader::rename(uint playlist, const QString& name)
{
    const int row = m_sources.library->rowOf(playlist);
    if (row < 0)
        return tellRemoved(playlist);
    const QModelIndex cell = m_sources.library->index(row, PlaylistLibraryModel::PlainNameColumn);
    if (name == cell.data(Qt::EditRole).toString())
        return;
    const MediaLibrary* library = m_sources.model->playlistProvider()->mediaLibrary();
    if (!execute<RenamePlaylistCommand>(m_sources.stack, "RenamePlaylistCommand", library,
                                        static_cast<int>(playlist), name))
        return;
    // Shown at once, and taken back when the server says no.
    m_sources.library->setData(cell, name);
    const auto answered = [library = m_sources.library, playlist](EditDirection, bool isDone) {
        if (!isDone)
            library->handleProviderChange(playlist);
    };
    if (const auto* command = lastCommand())
        connect(command, &AbstractDiffApiCommand::answered, this, answered);
}

bool PlaylistEditorHeader::eventFilter(QObject* watched, QEvent* event)
{
    const auto type = event->type();
    if (watched == m_dropdown && (type == QEvent::Resize || type == QEvent::Move))
        placeNameField();
    if (watched == m_nameField && type == QEvent::FocusOut) {
        // The field itself tells of it only when something was typed.
        const auto reason = static_cast<const QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            QMetaObject::invokeMethod(this, &PlaylistEditorHeader::endNameEditing, Qt::QueuedConnection);
    }
    if (watched == m_nameField && (type == QEvent::ShortcutOverride || type == QEvent::KeyPress) &&
        static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        // Later: the field is in the midst of its event.
        if (type == QEvent::KeyPress)
            QMetaObject::invokeMethod(
                this,
                [this] {
                    if (m_naming != 0)
                        closeNameField();
                },
                Qt::QueuedConnection);
        return true;
    }
    return ZTFrame::eventFilter(watched, event);
}

/// The name of the list is what the operator looks for: captions and what the menu offers too give way.
void PlaylistEditorHeader::fit()
{
    if (!m_dropdown) {
        m_durationLabel->setVisible(width() > scaled(300, currentFontSize()));
        return;
    }
    const int least = scaled(leastChooser, currentFontSize());
    const int button = m_new->sizeHint().width() + spacing::tight;
    const int value = m_duration->sizeHint().width() + (m_infinite->isVisibleTo(this) ? button : 0);
    const int caption = m_durationLabel->sizeHint().width() + spacing::tight;
    int left = width() - 3 * button - m_grip->sizeHint().width() - least - 3 * spacing::tight;
    const auto take = [&left](int wanted) {
        const bool fits = wanted <= left;
        if (fits)
            left -= wanted;
        return fits;
    };
    m_duration->setVisible(take(value));
    m_edit->setVisible(take(button));
    m_durationLabel->setVisible(m_duration->isVisibleTo(this) && take(caption));
}

void PlaylistEditorHeader::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    fit();
}

} // namespace vantrel
