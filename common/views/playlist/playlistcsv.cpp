#include "common/views/playlist/playlistcsv.h"

#include "common/media/address/mediautils.h"
#include "tarn/media/medialibrary.h"

#include <QCoreApplication>
#include <QMap>
#include <QStringList>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

namespace vantrel {

using media::MediaUtils;

namespace {

constexpr double longestTransition = 10.0;
constexpr qsizetype mostEntries = 100'000;

QString translated(const char* text)
{
    return QCoreApplication::translate("PlaylistCsv", text);
}

struct Row
{
    qsizetype line;
    QStringList cells;
};

/// Cuts a text into rows of cells. A quote that is never closed ends the last row, and is told.
class Table
{
public:
    explicit Table(const QString& text)
        : m_text(text)
        , m_separator(separatorOf(text))
    {
        for (qsizetype i = 0; i < m_text.size(); ++i)
            i = take(i);
        if (!m_cell.isEmpty() || !m_row.cells.isEmpty())
            endRow();
    }

    const QList<Row>& rows() const { return m_rows; }
    /// The line of a quote without an end; 0 where all have one.
    qsizetype openQuote() const { return m_quoted ? m_quoteLine : 0; }

private:
    static QChar separatorOf(const QString& text)
    {
        const QString head = text.left(text.indexOf(u'\n'));
        for (const QChar each : {u'\t', u';'}) {
            if (head.contains(each))
                return each;
        }
        return u',';
    }

    qsizetype take(qsizetype i)
    {
        const QChar c = m_text[i];
        if (c == u'\n')
            ++m_line;
        if (m_quoted) {
            if (c != u'"')
                m_cell.append(c);
            else if (i + 1 < m_text.size() && m_text[i + 1] == u'"')
                m_cell.append(m_text[++i]);
            else
                m_quoted = false;
        } else if (c == u'"' && m_cell.trimmed().isEmpty()) {
            m_quoted = true;
            m_quoteLine = m_line;
            m_cell.clear();
        } else if (c == m_separator) {
            endCell();
        } else if (c == u'\n') {
            endRow();
        } else if (c != u'\r') {
            m_cell.append(c);
        }
        return i;
    }
    void endCell() { m_row.cells.append(std::exchange(m_cell, {}).trimmed()); }
    void endRow()
    {
        endCell();
        if (m_row.cells.size() > 1 || !m_row.cells.first().isEmpty())
            m_rows.append(m_row);
        m_row = {m_line, {}};
    }

    const QString& m_text;
    const QChar m_separator;
    QList<Row> m_rows;
    Row m_row{1, {}};
    QString m_cell;
    qsizetype m_line = 1;
    qsizetype m_quoteLine = 0;
    bool m_quoted = false;
};

/// The place of each named column; -1 for one that is not there.
struct Columns
{
    qsizetype address = -1;
    qsizetype media = -1;
    qsizetype transition = -1;
    qsizetype seconds = -1;
    qsizetype endAction = -1;

    explicit Columns(const QStringList& head)
    {
        const auto find = [&head](const char* name) {
            return std::ranges::find_if(head,
                                        [name](const QString& cell) {
                                            return cell.compare(QLatin1String(name), Qt::CaseInsensitive) ==
                                                   0;
                                        }) -
                   head.begin();
        };
        const auto place = [&](qsizetype& at, const char* name) {
            const qsizetype found = find(name);
            at = found < head.size() ? found : -1;
        };
        place(address, "address");
        place(media, "media");
        place(transition, "transition");
        place(seconds, "transition time");
        place(endAction, "end action");
    }
};

QString cellOf(const Row& row, qsizetype column)
{
    return column >= 0 ? row.cells.value(column) : QString();
}

/// "1-4", or the URL of a slot.
MediaAddress slotOf(const QString& text)
{
    if (MediaUtils::isSlotAddress(text))
        return MediaUtils::parseSlotAddress(text);
    const QStringList parts = text.split(u'-');
    bool isCollection = false;
    bool isSlot = false;
    const int collection = parts.value(0).trimmed().toInt(&isCollection);
    const int slot = parts.value(1).trimmed().toInt(&isSlot);
    return parts.size() == 2 && isCollection && isSlot && collection >= 0 && slot >= 0
               ? MediaAddress(collection, slot)
               : MediaAddress();
}

/// The value that is called so, by its text in files or on the screen; nothing for another text.
template <typename Enum, std::size_t n, typename Shown>
std::optional<Enum> valueOf(const QString& text, const std::array<Enum, n>& all, const Shown& shown)
{
    const auto found = std::ranges::find_if(all, [&](Enum each) {
        return text.compare(QLatin1String(toStr(each)), Qt::CaseInsensitive) == 0 ||
               text.compare(shown(each), Qt::CaseInsensitive) == 0;
    });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

constexpr std::array transitions{TakeTransitionType::Crossfade, TakeTransitionType::DipToColor,
                                 TakeTransitionType::DirectCut};
constexpr std::array endActions{EndAction::Next, EndAction::Pause, EndAction::Stop, EndAction::Repeat};

/// Fills the entry from the row; why not, where that cannot be.
QString fill(const Row& row, const Columns& columns, EntryAddress& address, PlaylistEntry& entry)
{
    if (!address.parseString(cellOf(row, columns.address).toStdString()))
        return translated("\"%1\" is no address. Write a number such as 5 or 5.1.")
            .arg(cellOf(row, columns.address).left(40));
    const MediaAddress slot = slotOf(cellOf(row, columns.media));
    if (!slot.isValid())
        return translated("\"%1\" is no slot. Write collection and slot, such as 1-4.")
            .arg(cellOf(row, columns.media).left(40));
    entry.setMediaUrl(MediaUtils::toSlotAddress(slot).toStdString());
    entry.setTransitionDuration(1.0);
    if (const QString text = cellOf(row, columns.transition); !text.isEmpty()) {
        const auto type = valueOf(text, transitions, &MediaUtils::transitionTypeToHumanReadable);
        if (!type)
            return translated("\"%1\" is no transition. Write Crossfade, Dip to color or Direct cut.")
                .arg(text.left(40));
        entry.setTransitionType(*type);
    }
    if (const QString text = cellOf(row, columns.seconds); !text.isEmpty()) {
        bool isNumber = false;
        const double seconds = QString(text).replace(u',', u'.').toDouble(&isNumber);
        if (!isNumber || !(seconds >= 0 && seconds <= longestTransition))
            return translated("\"%1\" is no transition time. Write seconds from 0.0 to 10.0.")
                .arg(text.left(40));
        entry.setTransitionDuration(seconds);
    }
    if (const QString text = cellOf(row, columns.endAction); !text.isEmpty()) {
        const auto action = valueOf(text, endActions, &MediaUtils::endActionToHumanReadable);
        if (!action)
            return translated("\"%1\" is no end action. Write Next, Pause, Stop or Repeat.")
                .arg(text.left(40));
        entry.setEndAction(*action);
    }
    return {};
}

QString quoted(QString text)
{
    if (text.contains(u'"') || text.contains(u',') || text.contains(u'\n') || text.contains(u'\r'))
        return u'"' + text.replace(QStringLiteral("\""), QStringLiteral("\"\"")) + u'"';
    return text;
}

} // namespace

PlaylistCsv::Reading PlaylistCsv::read(const QByteArray& text)
{
    Reading reading;
    QString decoded = QString::fromUtf8(text);
    if (decoded.startsWith(QChar::ByteOrderMark))
        decoded.remove(0, 1);
    const Table table(decoded);
    const QList<Row>& rows = table.rows();
    const Columns columns(rows.isEmpty() ? QStringList() : rows.first().cells);
    if (columns.address < 0 || columns.media < 0) {
        reading.faults.append(
            {1, translated("The first line must name the columns, \"Address\" and \"Media\" "
                           "among them. Export a playlist to see how.")});
        return reading;
    }
    struct Found
    {
        PlaylistEntry entry;
        qsizetype line;
    };
    std::map<EntryAddress, Found> found;
    for (const Row& row : rows.sliced(1)) {
        EntryAddress address;
        PlaylistEntry entry;
        QString reason = fill(row, columns, address, entry);
        if (reason.isEmpty() && table.openQuote() == row.line)
            reason = translated("A quote has no end.");
        if (reason.isEmpty() && qsizetype(found.size()) >= mostEntries)
            reason = translated("A playlist takes %1 entries at the most.").arg(mostEntries);
        if (reason.isEmpty() && !found.emplace(address, Found{entry, row.line}).second)
            reason = translated("Address %1 stands in line %2 already.")
                         .arg(QString::fromStdString(address.toString(false)))
                         .arg(found.at(address).line);
        if (!reason.isEmpty())
            reading.faults.append({row.line, reason});
    }
    for (const auto& [address, each] : found) {
        reading.entries.append({address, each.entry});
        reading.lines.append(each.line);
    }
    return reading;
}

void PlaylistCsv::checkMedia(Reading& reading, const MediaLibrary& library)
{
    Reading checked;
    checked.faults = std::move(reading.faults);
    for (qsizetype i = 0; i < reading.entries.size(); ++i) {
        const auto& entry = reading.entries[i].second;
        const MediaAddress slot = MediaUtils::parseSlotAddress(QString::fromStdString(entry.getMediaUrl()));
        if (library.findSlot(slot.collection, slot.slot)) {
            checked.entries.append(reading.entries[i]);
            checked.lines.append(reading.lines[i]);
        } else {
            checked.faults.append(
                {reading.lines[i],
                 translated("The server has no slot %1-%2.").arg(slot.collection).arg(slot.slot)});
        }
    }
    std::ranges::sort(checked.faults, {}, &Fault::line);
    reading = std::move(checked);
}

QByteArray PlaylistCsv::write(const MediaLibrary& library, int playlist)
{
    const Playlist* list = library.findPlaylist(playlist);
    if (!list)
        return {};
    QString text = QStringLiteral("Address,Name,Media,Duration,Transition,Transition time,End action\r\n");
    for (const auto& [address, entry] : list->getEntries()) {
        const MediaAddress at = MediaUtils::parseSlotAddress(QString::fromStdString(entry.getMediaUrl()));
        const MediaSlot* slot = library.findSlot(at.collection, at.slot);
        const QString length = !slot              ? QString()
                               : slot->isFinite() ? QString::number(slot->getTrimmedDuration(), 'f', 3)
                                                  : translated("Infinite");
        const QStringList cells{
            QString::fromStdString(address.toString(false)),
            slot ? QString::fromStdString(slot->getName()) : QString(),
            QStringLiteral("%1-%2").arg(at.collection).arg(at.slot),
            length,
            QString::fromLatin1(toStr(entry.getTransitionType())),
            QString::number(entry.getTransitionDuration(), 'f', 1),
            QString::fromLatin1(toStr(entry.getEndAction())),
        };
        QStringList safe;
        for (const QString& cell : cells)
            safe.append(quoted(cell));
        text += safe.join(u',') + QStringLiteral("\r\n");
    }
    return text.toUtf8();
}

} // namespace vantrel
