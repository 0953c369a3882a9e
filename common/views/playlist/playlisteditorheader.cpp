#include "common/views/playlist/playlisteditorheader.h"

#include "common/command/execute.h"
#include "common/media/edit/playlist/addplaylistcommand.h"
#include "common/media/edit/playlist/renameplaylistcommand.h"
#include "common/media/items/abstractplaylistprovider.h"
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
#include "common/views/playlist/listclock.h"
#include "common/views/playlist/playlistlogging.h"
#include "util/clocktime.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>

namespace vantrel {

namespace {

const QMap<FontSize, QSize> buttonSizes{{FontSize::Small, {24, 24}},
                                        {FontSize::Medium, {28, 28}},
                                        {FontSize::Large, {36, 36}},
                                        {FontSize::Huge, {44, 44}}};
constexpr int leastChooser = 90; // pixels at the medium text size, before other things give way

} // namespace

PlaylistEditorHeader::PlaylistEditorHeader(PlaybackViewMode mode, const Sources& sources, QWidget* parent)
    : ZTFrame(parent)
    , m_mode(mode)
    , m_sources(sources)
{
    setObjectName((isPreview() ? QStringLiteral("Preview") : QStringLiteral("Program")) +
                  QStringLiteral("-PlaylistEditor"));
    if (isPreview())
        buildPreview();
    else
        buildProgram();
    connectModels();
    showList();
}

QSize PlaylistEditorHeader::minimumSizeHint() const
{
    return {0, layout()->minimumSize().height()};
}

IconButton* PlaylistEditorHeader::addButton(QHBoxLayout* row, const QString& icon, const char* suffix,
                                            const QString& tip)
{
    auto* button = new IconButton(icon, {}, this);
    button->setObjectName(objectName() + QLatin1String(suffix));
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
    m_dropdown = new ZTDropdownMenu(this);
    m_dropdown->setObjectNames(objectName() + QStringLiteral("-dropdown"));
    m_dropdown->setAccessibleName(tr("Playlist"));
    m_dropdown->setToolTip(tr("The playlist that is shown and edited"));
    m_dropdown->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_dropdown->setMaxVisibleItems(20);
    m_dropdown->setPlaceholderText(tr("No playlists"));
    m_dropdown->setModel(m_sources.library);
    m_dropdown->setModelColumn(PlaylistLibraryModel::NameColumn);
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
    title->setObjectName(objectName() + QStringLiteral("-title"));
    title->setStyleClass(QStringLiteral("section"));
    m_name = new ElidedLabel(this);
    m_name->setObjectName(objectName() + QStringLiteral("-name"));
    m_name->setStyleClass(QStringLiteral("dim"));
    m_end = new ElidedLabel(this);
    m_end->setObjectName(objectName() + QStringLiteral("-end"));
    m_end->setStyleClass(QStringLiteral("section"));
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::normal);
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
    m_duration->setObjectName(objectName() + QStringLiteral("-duration"));
    m_duration->setToolTip(tr("Duration of the playlist, up to an entry without an end"));
    m_duration->setAccessibleName(tr("Duration of the playlist"));
    m_infinite = new IconButton(QStringLiteral(":/icons/infinite_duration.svg"), {}, this);
    m_infinite->setObjectName(objectName() + QStringLiteral("-infiniteDurationIndicator"));
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
    connect(m_sources.library, &QAbstractItemModel::modelReset, this, later);
    connect(m_sources.library, &QAbstractItemModel::rowsRemoved, this, later);
    connect(m_sources.library, &QAbstractItemModel::rowsInserted, this, later);
}

uint PlaylistEditorHeader::displayedPlaylist() const
{
    return m_sources.model->playlistNumber();
}

/// Shows the list of the model; an editor without one, or whose list has gone, shows the first that there is.
void PlaylistEditorHeader::showList()
{
    int row = m_sources.library->rowOf(displayedPlaylist());
    if (row < 0 && isPreview() && m_sources.library->rowCount() > 0) {
        m_sources.model->setPlaylistNumber(m_sources.library->playlistNumberAt(0));
        row = 0;
    }
    if (m_dropdown && !m_isNaming)
        m_dropdown->setCurrentIndex(row);
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

void PlaylistEditorHeader::dropdownIndexChanged(int index)
{
    const uint number = m_sources.library->playlistNumberAt(index);
    if (number != PlaylistModel::noPlaylist && !m_isNaming)
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
    const uint before = std::exchange(m_followed, playing);
    // From entry to entry of the same list the operator may look at another.
    if (playing == 0 || playing == before || playing == displayedPlaylist())
        return;
    m_sources.model->setPlaylistNumber(playing);
    onPlaylistChanged(playing);
}

void PlaylistEditorHeader::onPlaybackDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    if (topLeft.column() <= PlaybackModel::PlaylistNumberColumn &&
        bottomRight.column() >= PlaybackModel::PlaylistNumberColumn)
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
    for (int row = first; m_awaited && row <= last; ++row) {
        if (m_sources.library->playlistNumberAt(row) != *m_awaited)
            continue;
        m_sources.model->setPlaylistNumber(*m_awaited);
        m_awaited.reset();
        // The drop-down hears of the row after this.
        QMetaObject::invokeMethod(
            this,
            [this] {
                showList();
                beginNameEditing();
            },
            Qt::QueuedConnection);
    }
}

void PlaylistEditorHeader::onNewPlaylistButtonClicked()
{
    qCDebug(lcPlaylist) << "Requesting a new playlist...";
    const int number = m_sources.library->nextFreeNumber();
    createNewPlaylist(tr("New playlist %1").arg(number), number);
}

void PlaylistEditorHeader::createNewPlaylist(const QString& name, int number)
{
    qCDebug(lcPlaylist) << "About to create a new playlist:" << name << "with number" << number;
    const MediaLibrary* library = m_sources.model->playlistProvider()->mediaLibrary();
    if (execute<AddPlaylistCommand>(m_sources.stack, "AddPlaylistCommand", library, number, name))
        m_awaited = static_cast<uint>(number);
}

void PlaylistEditorHeader::beginNameEditing()
{
    const int row = m_sources.library->rowOf(displayedPlaylist());
    if (!m_dropdown || row < 0 || m_isNaming || !m_isEditable)
        return;
    m_isNaming = true;
    m_dropdown->setCurrentIndex(row);
    m_dropdown->beginEditing();
    QLineEdit* field = m_dropdown->lineEdit();
    field->setObjectName(m_dropdown->objectName() + QStringLiteral("-edit"));
    field->setAccessibleName(tr("Name of the playlist"));
    field->setText(
        m_sources.library->index(row, PlaylistLibraryModel::PlainNameColumn).data(Qt::EditRole).toString());
    field->selectAll();
    field->installEventFilter(this);
    // Not while the field tells of it: it goes with the end of editing.
    connect(field, &QLineEdit::editingFinished, this, &PlaylistEditorHeader::endNameEditing,
            Qt::QueuedConnection);
}

void PlaylistEditorHeader::endNameEditing()
{
    if (!std::exchange(m_isNaming, false))
        return;
    const QString name = m_dropdown->endEditing();
    const int row = m_sources.library->rowOf(displayedPlaylist());
    const QModelIndex cell = m_sources.library->index(row, PlaylistLibraryModel::PlainNameColumn);
    if (row >= 0 && !name.isEmpty() && name != cell.data(Qt::EditRole).toString()) {
        const int number =
            cell.siblingAtColumn(PlaylistLibraryModel::NumberColumn).data(Qt::EditRole).toInt();
        const MediaLibrary* library = m_sources.model->playlistProvider()->mediaLibrary();
        if (execute<RenamePlaylistCommand>(m_sources.stack, "RenamePlaylistCommand", library, number, name))
            m_sources.library->setData(cell, name);
    }
    showList();
}

bool PlaylistEditorHeader::eventFilter(QObject* watched, QEvent* event)
{
    const auto isEscape = [event] { return static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape; };
    if (m_isNaming && m_dropdown && watched == m_dropdown->lineEdit()) {
        if (event->type() == QEvent::ShortcutOverride && isEscape())
            event->accept();
        if (event->type() == QEvent::KeyPress && isEscape()) {
            // Later: the field is in the midst of its event.
            QMetaObject::invokeMethod(
                this,
                [this] {
                    m_isNaming = false;
                    m_dropdown->endEditing();
                    showList();
                },
                Qt::QueuedConnection);
            return true;
        }
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
    int left = width() - 3 * button - least - 2 * spacing::tight;
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
