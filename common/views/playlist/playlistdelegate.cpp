#include "common/views/playlist/playlistdelegate.h"

#include "common/media/address/mediautils.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/session/settings/timeutils.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/style/mediaicon.h"
#include "common/ui/toolkit/doubleedit.h"
#include "common/views/playlist/playlistendactioneditor.h"
#include "common/views/playlist/playlisttransitiontypeeditor.h"
#include "util/clocktime.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantrel {

using colors::getColor;
using media::MediaUtils;

namespace {

constexpr auto chosenProperty = "isChosen"; // of a drop-down: by the operator
constexpr auto givenProperty = "given";     // of a field: what it showed at first
constexpr auto typedProperty = "typed";     // and the text that the operator has put there since

constexpr int margin = 6;  // left and right of a cell's text
constexpr int padding = 4; // above and below it
constexpr double longestTransition = 10.0;

/// What the place of a row in the show is.
enum class Cue { None, OnPreview, OnAir, Next };

QColor colourOf(Cue cue)
{
    return getColor(cue == Cue::OnAir ? colors::Red_red : colors::Green_green);
}

QString transportIcon(MediaState state)
{
    switch (state) {
    case MediaState::ProgramPause:
    case MediaState::PreviewPause:
        return QStringLiteral("mc_pause");
    case MediaState::ProgramStop:
    case MediaState::PreviewStop:
        return QStringLiteral("mc_stop");
    default:
        return QStringLiteral("mc_play");
    }
}

QString choiceIcon(const QModelIndex& index)
{
    const int value = index.data(Qt::EditRole).toInt();
    return index.column() == PlaylistModel::EndActionColumn
               ? PlaylistEndActionEditor::icon(static_cast<EndAction>(value))
               : PlaylistTransitionTypeEditor::icon(static_cast<TakeTransitionType>(value));
}

/// The widest text of that form: digits differ in width.
int widestOf(const QFontMetrics& metrics, QString text)
{
    QChar widest = u'0';
    for (const QChar digit : QStringLiteral("123456789")) {
        if (metrics.horizontalAdvance(digit) > metrics.horizontalAdvance(widest))
            widest = digit;
    }
    return metrics.horizontalAdvance(text.replace(u'0', widest));
}

QString durationText(double seconds)
{
    return seconds > 0 ? TimeUtils::formatClockTime(clocktime::fromSeconds(seconds)) : QString();
}

} // namespace

struct PlaylistDelegate::Cell
{
    QPainter* painter;
    const QStyleOptionViewItem& option;
    const QModelIndex& index;
    const PlaylistModel* model;
    EntryAddress address;
    Cue cue = Cue::None;
    bool isSelected = false;

    QRect content() const { return option.rect.adjusted(margin, 0, -margin, 0); }
    bool isBright() const { return cue != Cue::None || isSelected; }
};

PlaylistDelegate::PlaylistDelegate(const QSet<PlaybackViewMode>& modes, bool editable,
                                   QAbstractItemView* view)
    : QStyledItemDelegate(view)
    , m_view(view)
    , m_modes(modes)
    , m_isEditable(editable)
{
}

int PlaylistDelegate::rowHeight(const QFont& font) const
{
    return QFontMetrics(font).height() + 2 * padding + 2;
}

QSize PlaylistDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    Q_UNUSED(index);
    return {40, rowHeight(option.font)};
}

int PlaylistDelegate::columnWidth(const PlaylistModel* model, int column, const QFont& font) const
{
    const QFontMetrics metrics(font);
    const auto wide = [&metrics](const QString& text) { return widestOf(metrics, text) + 2 * margin + 1; };
    const int icon = metrics.height();
    const auto widest = [&](const auto& all, const auto& text) {
        int width = 0;
        for (const auto each : all)
            width = std::max(width, wide(text(each)) + icon + margin / 2);
        return m_isCompact ? icon + 2 * margin : width;
    };
    switch (column) {
    case PlaylistModel::NumberColumn: {
        // A number that is cut looks like another one.
        const auto [whole, decimals] = model ? model->addressDigits() : std::pair(0, 0);
        QString number(std::max(whole, 2), u'0');
        if (decimals > 0)
            number += u'.' + QString(decimals, u'0');
        return std::max(wide(QStringLiteral("00.0")), wide(number));
    }
    case PlaylistModel::EndActionColumn:
        return widest(PlaylistEndActionEditor::actions(), &MediaUtils::endActionToHumanReadable);
    case PlaylistModel::TransitionColumn:
        return widest(PlaylistTransitionTypeEditor::types(), &MediaUtils::transitionTypeToHumanReadable);
    case PlaylistModel::StateColumn:
        return icon + margin;
    case PlaylistModel::DurationColumn:
        return wide(QStringLiteral("00:00:00.000"));
    case PlaylistModel::TransitionDurationColumn:
        return wide(QStringLiteral("00.0 s"));
    case PlaylistModel::ThumbnailColumn:
        return (rowHeight(font) - 4) * 16 / 9 + margin;
    case PlaylistModel::SizeColumn:
        return wide(isProgram() ? QStringLiteral("00:00:00") : QStringLiteral("000.00 MB")) + margin;
    default:
        return metrics.averageCharWidth() * 22;
    }
}

void PlaylistDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const
{
    const auto* model = qobject_cast<const PlaylistModel*>(index.model());
    if (!model)
        return;
    Cell cell{painter, option, index, model, model->getEntryAddress(index)};
    cell.isSelected = option.state.testFlag(QStyle::State_Selected);
    const bool isOfClock =
        m_clock && m_clock->playlist() > 0 && m_clock->playlist() == model->playlistNumber();
    if (isOfClock && m_clock->isPlaying(cell.address))
        cell.cue = Cue::OnAir;
    else if (index.data(PlaylistModel::PreviewPlayingEntryRole).toBool())
        cell.cue = Cue::OnPreview;
    else if (isOfClock && m_clock->next() == cell.address)
        cell.cue = Cue::Next;

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    paintRow(cell);
    switch (index.column()) {
    case PlaylistModel::NumberColumn:
        paintText(cell, index.data().toString(), Qt::AlignRight, !cell.isBright());
        break;
    case PlaylistModel::EndActionColumn:
    case PlaylistModel::TransitionColumn:
        paintChoice(cell, choiceIcon(index), index.data().toString());
        break;
    case PlaylistModel::StateColumn:
        paintState(cell);
        break;
    case PlaylistModel::MediaColumn:
        paintName(cell);
        break;
    case PlaylistModel::DurationColumn:
        paintDuration(cell);
        break;
    case PlaylistModel::TransitionDurationColumn:
        if (model->flags(index).testFlag(Qt::ItemIsEditable)) // a cut takes no time
            paintText(cell, tr("%1 s").arg(PlaylistModel::secondsText(index.data().toDouble())),
                      Qt::AlignRight, !cell.isBright());
        break;
    case PlaylistModel::ThumbnailColumn:
        paintThumbnail(cell);
        break;
    case PlaylistModel::SizeColumn:
        paintLast(cell);
        break;
    default:
        break;
    }
    painter->restore();
}

void PlaylistDelegate::paintRow(const Cell& cell) const
{
    const QRect rect = cell.option.rect;
    const auto fill = [&](colors::ColorCode code) { cell.painter->fillRect(rect, getColor(code)); };
    if (cell.cue == Cue::OnAir)
        fill(colors::Zt_red_20);
    else if (cell.cue == Cue::OnPreview)
        fill(colors::Zt_green_20);
    if (cell.isSelected)
        fill(cell.cue == Cue::None || cell.cue == Cue::Next ? colors::Zt_orange_20 : colors::Zt_white_8);
    else if (cell.option.state.testFlag(QStyle::State_MouseOver))
        fill(colors::Zt_white_4);
    if (cell.index.column() != PlaylistModel::NumberColumn)
        return;
    const QRect bar(rect.left(), rect.top() + 1, 3, rect.height() - 2);
    if (cell.cue == Cue::OnAir || cell.cue == Cue::OnPreview)
        cell.painter->fillRect(bar, colourOf(cell.cue));
    else if (cell.isSelected)
        cell.painter->fillRect(bar, getColor(colors::Zt_orange));
    else if (cell.cue == Cue::Next) // also where there is no room for the word
        cell.painter->fillRect(bar, getColor(colors::Zt_white_70));
}

void PlaylistDelegate::paintText(const Cell& cell, const QString& text, Qt::Alignment alignment,
                                 bool dim) const
{
    const QRect room = cell.content();
    cell.painter->setFont(cell.option.font);
    cell.painter->setPen(getColor(dim ? colors::Zt_white_70 : colors::White));
    cell.painter->drawText(room, Qt::AlignVCenter | alignment | Qt::TextSingleLine,
                           cell.option.fontMetrics.elidedText(text, Qt::ElideRight, room.width()));
}

void PlaylistDelegate::paintIcon(const Cell& cell, const QString& icon, const QColor& colour) const
{
    const int side = cell.option.fontMetrics.height() - 2;
    const QPixmap drawing =
        IconCache::pixmap(icon, colour, QSize(side, side), cell.painter->device()->devicePixelRatioF());
    cell.painter->drawPixmap(cell.option.rect.center() - QPoint(side / 2, side / 2), drawing);
}

void PlaylistDelegate::paintChoice(const Cell& cell, const QString& icon, const QString& text) const
{
    const QColor colour = getColor(cell.isBright() ? colors::Zt_white_80 : colors::Zt_white_50);
    if (m_isCompact) {
        paintIcon(cell, icon, colour);
        return;
    }
    const int side = cell.option.fontMetrics.height() - 2;
    const QRect room = cell.content();
    cell.painter->drawPixmap(
        room.left(), room.center().y() - side / 2,
        IconCache::pixmap(icon, colour, QSize(side, side), cell.painter->device()->devicePixelRatioF()));
    const int taken = side + margin / 2;
    cell.painter->setFont(cell.option.font);
    cell.painter->setPen(getColor(cell.isBright() ? colors::White : colors::Zt_white_70));
    cell.painter->drawText(room.adjusted(taken, 0, 0, 0), Qt::AlignVCenter | Qt::TextSingleLine,
                           cell.option.fontMetrics.elidedText(text, Qt::ElideRight, room.width() - taken));
}

void PlaylistDelegate::paintState(const Cell& cell) const
{
    if (cell.cue == Cue::OnAir) {
        paintIcon(cell, m_clock->isRunning() ? QStringLiteral("mc_play") : QStringLiteral("mc_pause"),
                  colourOf(cell.cue));
        return;
    }
    const auto entry = cell.model->getEntry(cell.index);
    if (cell.cue == Cue::Next) {
        paintIcon(cell, QStringLiteral("mc_next"), getColor(colors::Zt_white_80));
        return;
    }
    const MediaState state = m_fetching || !entry ? static_cast<MediaState>(cell.index.data().toInt())
                                                  : cell.model->knownState(*entry);
    if (cell.cue == Cue::OnPreview)
        paintIcon(cell, transportIcon(state), colourOf(cell.cue));
    else if (state == MediaState::NotPlayable)
        paintIcon(cell, QStringLiteral("close"), getColor(colors::Red_error));
    else if (state == MediaState::PlayableWithCaveats)
        paintIcon(cell, QStringLiteral("check"), getColor(colors::Zt_orange));
    else if (MediaUtils::isPlayable(state)) // also what plays elsewhere, as media of another entry
        paintIcon(cell, QStringLiteral("check"), getColor(colors::Zt_white_30));
}

void PlaylistDelegate::paintName(const Cell& cell) const
{
    QRect room = cell.content();
    const QVariant name = cell.index.data();
    QFont font = cell.option.font;
    font.setWeight(QFont::Medium);
    const auto chip = [&](const QString& text, const QColor& colour, const QColor& ink) {
        QFont bold = cell.option.font;
        bold.setWeight(QFont::DemiBold);
        const int width = QFontMetrics(bold).horizontalAdvance(text) + 2 * margin;
        if (width + cell.option.fontMetrics.averageCharWidth() * 6 > room.width())
            return;
        const QRectF box = QRectF(room.right() - width + 1, room.top() + 3, width, room.height() - 6)
                               .adjusted(.5, .5, -.5, -.5);
        const bool isOutlined = colour == ink;
        cell.painter->setBrush(isOutlined ? QBrush(Qt::NoBrush) : QBrush(colour));
        cell.painter->setPen(isOutlined ? QPen(colour) : QPen(Qt::NoPen));
        cell.painter->drawRoundedRect(box, 3, 3);
        cell.painter->setFont(bold);
        cell.painter->setPen(ink);
        cell.painter->drawText(box, Qt::AlignCenter, text);
        room.setRight(room.right() - width - margin);
    };
    if (cell.cue == Cue::OnAir)
        chip(QStringLiteral("PGM"), colourOf(cell.cue), getColor(colors::White));
    else if (cell.cue == Cue::OnPreview)
        chip(QStringLiteral("PRW"), colourOf(cell.cue), getColor(colors::Slate_grey_900));
    else if (cell.cue == Cue::Next)
        chip(tr("NEXT"), getColor(colors::Zt_white_70), getColor(colors::Zt_white_70));
    const QString text = name.isValid() ? name.toString() : tr("No media: the slot is empty");
    cell.painter->setFont(font);
    cell.painter->setPen(getColor(!name.isValid()   ? colors::Red_error
                                  : cell.isBright() ? colors::White
                                                    : colors::Zt_white_80));
    cell.painter->drawText(room, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                           QFontMetrics(font).elidedText(text, Qt::ElideRight, room.width()));
}

void PlaylistDelegate::paintDuration(const Cell& cell) const
{
    const double seconds = cell.index.data().toDouble();
    paintText(cell, std::isinf(seconds) ? tr("Infinite") : durationText(seconds), Qt::AlignRight,
              !cell.isBright());
}

void PlaylistDelegate::paintThumbnail(const Cell& cell) const
{
    const QRect box = cell.option.rect.adjusted(margin / 2, 2, -margin / 2, -2);
    cell.painter->setBrush(getColor(colors::Zt_black_30));
    cell.painter->drawRoundedRect(box, 2, 2);
    const auto entry = cell.model->getEntry(cell.index);
    if (m_fetching)
        cell.index.data(); // asks for the picture, which comes with a change of the row
    const QPixmap picture = entry ? cell.model->knownThumbnail(*entry) : QPixmap();
    if (picture.isNull() && entry) {
        if (const auto type = cell.model->knownType(*entry))
            paintIcon(cell, mediaIcon(*type), getColor(colors::Zt_white_50));
    }
    if (picture.isNull())
        return;
    const QSize size = picture.deviceIndependentSize().toSize().scaled(box.size(), Qt::KeepAspectRatio);
    QRect place(QPoint(), size);
    place.moveCenter(box.center());
    cell.painter->setRenderHint(QPainter::SmoothPixmapTransform);
    cell.painter->drawPixmap(place, picture);
}

void PlaylistDelegate::paintLast(const Cell& cell) const
{
    if (!isProgram()) {
        const auto entry = cell.model->getEntry(cell.index);
        paintText(cell,
                  m_fetching || !entry ? cell.index.data().toString()
                                       : PlaylistModel::sizeText(cell.model->knownSize(*entry)),
                  Qt::AlignRight, !cell.isBright());
        return;
    }
    if (!m_clock || m_clock->playlist() != cell.model->playlistNumber())
        return;
    // While nothing runs no end stands: it would creep on with the clock.
    if (!m_clock->isRunning())
        return;
    if (const auto end = m_clock->endOf(cell.address))
        paintText(cell, ListClock::clockText(*end), Qt::AlignRight, !cell.isBright());
}

QWidget* PlaylistDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const
{
    Q_UNUSED(option);
    if (!m_isEditable)
        return nullptr;
    auto* self = const_cast<PlaylistDelegate*>(this); // Qt's editors are made by a const one that they change
    const auto makeMenu = [self](ZTDropdownMenu* menu) {
        connect(menu, &ZTDropdownMenu::chosen, self, [self, menu] {
            menu->setProperty(chosenProperty, true);
            self->finishEditing(menu);
        });
        connect(menu, &ZTDropdownMenu::cancelled, self,
                [self, menu] { Q_EMIT self->closeEditor(menu, NoHint); });
        QMetaObject::invokeMethod(menu, &QComboBox::showPopup, Qt::QueuedConnection);
        return menu;
    };
    switch (index.column()) {
    case PlaylistModel::EndActionColumn:
        return makeMenu(new PlaylistEndActionEditor(parent));
    case PlaylistModel::TransitionColumn:
        return makeMenu(new PlaylistTransitionTypeEditor(parent));
    case PlaylistModel::TransitionDurationColumn: {
        auto* edit = new DoubleEdit(0.0, longestTransition, QString(), parent);
        edit->setObjectNames(QStringLiteral("Preview-PlaylistTransitionDuration-editor"));
        edit->setAccessibleName(tr("Transition duration in seconds"));
        edit->setToolTip(
            tr("Transition duration can be specified from 0.0 to 10.0 seconds. Duration does not "
               "apply to direct cut."));
        connect(edit, &QLineEdit::textEdited, edit,
                [edit](const QString& text) { edit->setProperty(typedProperty, text); });
        return edit;
    }
    default:
        return nullptr;
    }
}

void PlaylistDelegate::finishEditing(QWidget* editor)
{
    Q_EMIT commitData(editor);
    Q_EMIT closeEditor(editor, NoHint);
}

void PlaylistDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const auto* model = qobject_cast<const PlaylistModel*>(index.model());
    const auto entry = model ? model->getEntry(index) : nullptr;
    if (!entry)
        return;
    if (auto* action = qobject_cast<PlaylistEndActionEditor*>(editor))
        action->setAction(entry->endAction());
    else if (auto* type = qobject_cast<PlaylistTransitionTypeEditor*>(editor))
        type->setType(entry->transitionType());
    else if (auto* seconds = qobject_cast<DoubleEdit*>(editor)) {
        const QString shown = PlaylistModel::secondsText(entry->transitionDuration());
        if (!seconds->property(givenProperty).isValid()) // later it would write over what is typed
            seconds->setDecimals(static_cast<int>(shown.size() - shown.indexOf(u'.') - 1));
        seconds->setValue(entry->transitionDuration());
        seconds->setProperty(givenProperty, seconds->value());
    }
}

/// Only what the operator has chosen or typed: an editor that is left as it was would put the value of its
/// row into all that are selected.
void PlaylistDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                    const QModelIndex& index) const
{
    if (qobject_cast<ZTDropdownMenu*>(editor) && !editor->property(chosenProperty).toBool())
        return;
    if (const auto* action = qobject_cast<const PlaylistEndActionEditor*>(editor))
        setSelectedData(model, index, static_cast<int>(action->action()));
    else if (const auto* type = qobject_cast<const PlaylistTransitionTypeEditor*>(editor))
        setSelectedData(model, index, static_cast<int>(type->type()));
    else if (auto* seconds = qobject_cast<DoubleEdit*>(editor)) {
        // Tab and a click elsewhere come here before the field has heard of them.
        seconds->commit();
        // The value that its row has already is typed for the other rows.
        const QString typed = seconds->property(typedProperty).toString().replace(u',', u'.');
        bool isNumber = false;
        const double wanted = std::clamp(typed.toDouble(&isNumber), seconds->minimum(), seconds->maximum());
        const bool isConfirmed = isNumber && wanted == seconds->value();
        if (isConfirmed || seconds->value() != seconds->property(givenProperty).toDouble())
            setSelectedData(model, index, seconds->value());
    }
}

void PlaylistDelegate::setSelectedData(QAbstractItemModel* model, const QModelIndex& index,
                                       const QVariant& value) const
{
    auto* editor = qobject_cast<PlaylistEditorModel*>(model);
    const QItemSelectionModel* selection = m_view ? m_view->selectionModel() : nullptr;
    if (!editor)
        return;
    QList<QModelIndex> cells{index};
    if (selection && selection->isRowSelected(index.row(), {})) {
        cells.clear();
        for (const QModelIndex& row : selection->selectedRows(index.column()))
            cells.append(row);
    }
    editor->setSelectedData(cells, value);
}

void PlaylistDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                            const QModelIndex& index) const
{
    Q_UNUSED(index);
    // As wide as its texts, which the cell of a narrow list shows by icons.
    const QWidget* area = editor->parentWidget();
    const int width = std::min(std::max(option.rect.width(), editor->sizeHint().width()), area->width());
    const int left = std::clamp(option.rect.left(), 0, area->width() - width);
    editor->setGeometry(left, option.rect.top(), width, option.rect.height());
}

void PlaylistDelegate::drawDragAndDropTarget(QPainter* painter, const QRect& place, const QRect& area,
                                             const QFont& font, const QString& words)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QColor accent = getColor(colors::Zt_orange);
    const bool isLine = place.height() == 0;
    if (isLine) {
        const int y = std::clamp(place.top(), area.top() + 2, area.bottom() - 1);
        painter->fillRect(area.left(), y - 2, area.width(), 3, accent);
        painter->setPen(Qt::NoPen);
        painter->setBrush(accent);
        painter->drawEllipse(QPointF(area.left() + 4, y - 0.5), 4, 4);
    } else {
        painter->setPen(QPen(accent, 2));
        painter->setBrush(getColor(colors::Zt_orange_20));
        painter->drawRoundedRect(QRectF(place).adjusted(1, 1, -1, -1), 3, 3);
    }
    if (!words.isEmpty()) {
        QFont bold = font;
        bold.setWeight(QFont::DemiBold);
        const QFontMetrics metrics(bold);
        const QString text = metrics.elidedText(words, Qt::ElideRight, area.width() - 4 * margin);
        QRect label(0, 0, metrics.horizontalAdvance(text) + 2 * margin, metrics.height() + 4);
        label.moveCenter({area.center().x(), place.center().y()});
        label.moveTop(
            std::clamp(label.top(), area.top(), std::max(area.top(), area.bottom() - label.height())));
        painter->setPen(Qt::NoPen);
        painter->setBrush(accent);
        painter->drawRoundedRect(label, 3, 3);
        painter->setFont(bold);
        painter->setPen(getColor(colors::White));
        painter->drawText(label, Qt::AlignCenter, text);
    }
    painter->restore();
}

} // namespace vantrel
