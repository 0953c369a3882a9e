#include "common/media/models/playlist/playlistcsv.h"

#include "common/media/address/entryaddressutils.h"
#include "common/media/address/mediautils.h"
#include "tarn/media/enumtext.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"

#include <QElapsedTimer>
#include <QIODevice>

#include <algorithm>
#include <array>

namespace vantrel {

using media::MediaUtils;

namespace {

constexpr qint64 pieceSize = 65536;
constexpr double maxTransition = 3600; // seconds; what a list holds is taken back whole

QByteArray quoted(const QString& text)
{
    const bool needsQuotes =
        std::ranges::any_of(text, [](QChar c) { return c == u',' || c == u'"' || c == u'\n' || c == u'\r'; });
    if (!needsQuotes)
        return text.toUtf8();
    return '"' + QString(text).replace(u'"', QStringLiteral("\"\"")).toUtf8() + '"';
}

QByteArray lineOf(const QStringList& fields)
{
    QByteArrayList texts;
    for (const QString& field : fields)
        texts.append(quoted(field));
    return texts.join(',') + "\r\n";
}

/// The value whose text in the library or on the screen this is, in any case of letters.
template <typename Enum, std::size_t Count, typename ToText>
bool readEnum(const QString& text, const std::array<Enum, Count>& values, const ToText& shown, Enum& out)
{
    const auto isText = [&](Enum value) {
        return text.compare(QLatin1String(toStr(value)), Qt::CaseInsensitive) == 0 ||
               text.compare(shown(value), Qt::CaseInsensitive) == 0;
    };
    const auto found = std::ranges::find_if(values, isText);
    if (found == values.end())
        return false;
    out = *found;
    return true;
}

QString shortened(const QString& text)
{
    constexpr qsizetype most = 60;
    return text.size() <= most ? text : text.left(most) + QChar(0x2026);
}

QStringList fieldsOf(const MediaLibrary& library, const EntryAddress& address, const PlaylistEntry& entry)
{
    const MediaSlot* slot = library.findSlot(entry.getMediaUrl());
    QString duration;
    if (slot)
        duration = slot->isFinite() ? QString::number(slot->getTrimmedDuration(), 'g', 12)
                                    : QStringLiteral("infinite");
    return {QString::fromStdString(address.toString(true)),
            slot ? QString::fromStdString(slot->getName()) : QString(),
            QString::fromStdString(entry.getMediaUrl()),
            duration,
            QString::fromUtf8(toStr(entry.getTransitionType())),
            QString::fromUtf8(toStr(entry.getEndAction())),
            QString::number(entry.getTransitionDuration(), 'g', 12)};
}

} // namespace

const char* PlaylistCsv::title(Column column)
{
    static const char* const titles[ColumnCount] = {
        "address", "name", "media", "duration", "transition", "end action", "transition duration"};
    return titles[column];
}

bool PlaylistCsv::write(QIODevice& device, const MediaLibrary& library, int playlist, QString* error)
{
    const Playlist* list = library.findPlaylist(playlist);
    if (!list) {
        *error = tr("There is no playlist %1 to export.").arg(playlist);
        return false;
    }
    QStringList titles;
    for (int column = 0; column < ColumnCount; ++column)
        titles.append(QString::fromLatin1(title(static_cast<Column>(column))));
    QByteArray text = lineOf(titles);
    for (const auto& [address, entry] : list->getEntries())
        text += lineOf(fieldsOf(library, address, entry));
    if (device.write(text) == text.size())
        return true;
    *error = tr("The file could not be written: %1").arg(device.errorString());
    return false;
}

PlaylistCsvImport::PlaylistCsvImport(const MediaLibrary& library)
    : m_library(library)
    , m_reader([this](CsvReader::Record&& record) { take(std::move(record)); })
{
    std::ranges::fill(m_places, -1);
}

bool PlaylistCsvImport::readSome(QIODevice& device, int milliseconds)
{
    QElapsedTimer time;
    time.start();
    if (!device.isSequential() && device.size() > maxBytes)
        refuse(tr("The file is larger than %1 MB. No playlist needs that much: is it the right file?")
                   .arg(maxBytes / 1024 / 1024));
    while (!m_isFinished) {
        const QByteArray piece = device.read(pieceSize);
        m_bytes += piece.size();
        if (m_bytes > maxBytes)
            refuse(tr("The file is larger than %1 MB. No playlist needs that much: is it the right file?")
                       .arg(maxBytes / 1024 / 1024));
        else if (piece.isEmpty() && !device.atEnd())
            refuse(tr("The file could not be read: %1").arg(device.errorString()));
        if (m_isFinished)
            break;
        m_reader.feed({piece.constData(), static_cast<std::size_t>(piece.size())});
        if (piece.isEmpty() || device.atEnd()) {
            m_reader.finish();
            m_isFinished = true;
            if (!m_hasTitles)
                refuse(tr("The file is empty."));
        } else if (time.elapsed() >= milliseconds) {
            return true;
        }
    }
    return false;
}

void PlaylistCsvImport::refuse(const QString& why)
{
    m_isFinished = true;
    m_refusal = m_refusal.isEmpty() ? why : m_refusal;
    m_lines.clear();
    m_problems.clear();
    m_problemCount = 0;
    m_unlistedCount = 0;
}

ImportPlaylistCommand::Entries PlaylistCsvImport::entries() const
{
    ImportPlaylistCommand::Entries entries;
    for (const auto& [address, line] : m_lines)
        entries.emplaceBack(address, line.entry);
    return entries;
}

void PlaylistCsvImport::take(CsvReader::Record&& record)
{
    if (!m_refusal.isEmpty())
        return;
    if (!m_hasTitles) {
        takeTitles(record);
        return;
    }
    const QString broken = QString::fromStdString(record.fault);
    const int swallowed = record.fault.empty() ? 0 : record.lastLine - record.line; // by an open quote
    const QString fault = swallowed > 0
                              ? tr("The lines up to %1 cannot be read: %2.").arg(record.lastLine).arg(broken)
                          : broken.isEmpty() ? takeEntry(record)
                                             : tr("The line cannot be read: %1.").arg(broken);
    if (fault.isEmpty())
        return;
    m_problemCount += 1 + swallowed;
    if (m_problems.size() < maxProblems)
        m_problems.append({record.line, fault});
    else
        ++m_unlistedCount;
}

void PlaylistCsvImport::takeTitles(const CsvReader::Record& record)
{
    m_hasTitles = true;
    for (std::size_t i = 0; i < record.fields.size(); ++i) {
        const QString text = QString::fromStdString(record.fields[i]).trimmed();
        for (int column = 0; column < PlaylistCsv::ColumnCount; ++column) {
            const auto* title = PlaylistCsv::title(static_cast<PlaylistCsv::Column>(column));
            if (m_places[column] < 0 && text.compare(QLatin1String(title), Qt::CaseInsensitive) == 0)
                m_places[column] = static_cast<int>(i);
        }
    }
    for (const PlaylistCsv::Column needed : {PlaylistCsv::Address, PlaylistCsv::Media}) {
        if (m_places[needed] < 0)
            refuse(tr("The first line names no column \"%1\". Its columns must be separated by commas.")
                       .arg(QLatin1String(PlaylistCsv::title(needed))));
    }
}

QString PlaylistCsvImport::field(const CsvReader::Record& record, PlaylistCsv::Column column) const
{
    const int place = m_places[column];
    return place < 0 || place >= static_cast<int>(record.fields.size())
               ? QString()
               : QString::fromStdString(record.fields[static_cast<std::size_t>(place)]).trimmed();
}

/// What is wrong with the line; empty when it was taken.
QString PlaylistCsvImport::takeEntry(const CsvReader::Record& record)
{
    const QString addressText = field(record, PlaylistCsv::Address);
    const EntryAddress address = EntryAddressUtils::typed(addressText);
    if (!address.isValid())
        return tr("\"%1\" is no address: write a number such as 5 or 5.1.").arg(shortened(addressText));
    if (const auto taken = m_lines.find(address); taken != m_lines.end())
        return tr("The address %1 is that of line %2 already.")
            .arg(QString::fromStdString(address.toString(true)))
            .arg(taken->second.number);
    PlaylistEntry entry;
    entry.setTransitionDuration(1.0);
    QString fault = readMedia(field(record, PlaylistCsv::Media), entry);
    if (fault.isEmpty())
        fault = readTransition(field(record, PlaylistCsv::Transition), entry);
    if (fault.isEmpty())
        fault = readEndAction(field(record, PlaylistCsv::EndActionText), entry);
    if (fault.isEmpty())
        fault = readTransitionDuration(field(record, PlaylistCsv::TransitionDuration), entry);
    if (fault.isEmpty())
        m_lines.emplace(address, Line{record.line, entry});
    return fault;
}

QString PlaylistCsvImport::readMedia(const QString& text, PlaylistEntry& entry) const
{
    const bool isSlot = MediaUtils::isSlotAddress(text);
    const MediaAddress slot = isSlot ? MediaUtils::parseSlotAddress(text) : MediaAddress();
    if (!slot.isValid())
        return tr("\"%1\" names no slot: write brume://collections/1/slots/2, for example.")
            .arg(shortened(text));
    if (!m_library.findSlot(slot.collection, slot.slot))
        return tr("The server has no slot %1 in collection %2.").arg(slot.slot).arg(slot.collection);
    entry.setMediaUrl(MediaUtils::toSlotAddress(slot).toStdString());
    return {};
}

QString PlaylistCsvImport::readTransition(const QString& text, PlaylistEntry& entry)
{
    constexpr std::array values{TakeTransitionType::Crossfade, TakeTransitionType::DipToColor,
                                TakeTransitionType::DirectCut};
    TakeTransitionType type = entry.getTransitionType();
    if (!text.isEmpty() && !readEnum(text, values, &MediaUtils::transitionTypeToHumanReadable, type))
        return tr("\"%1\" is no transition: it is crossfade, dipToColor or directCut.").arg(shortened(text));
    entry.setTransitionType(type);
    return {};
}

QString PlaylistCsvImport::readEndAction(const QString& text, PlaylistEntry& entry)
{
    constexpr std::array values{EndAction::Next, EndAction::Pause, EndAction::Stop, EndAction::Repeat};
    EndAction action = entry.getEndAction();
    // Has no words of its own on the screen, and comes back as it was exported.
    if (text.compare(QLatin1String(toStr(EndAction::GoTo)), Qt::CaseInsensitive) == 0)
        action = EndAction::GoTo;
    else if (!text.isEmpty() && !readEnum(text, values, &MediaUtils::endActionToHumanReadable, action))
        return tr("\"%1\" is no end action: it is next, pause, stop or repeat.").arg(shortened(text));
    entry.setEndAction(action);
    return {};
}

QString PlaylistCsvImport::readTransitionDuration(const QString& text, PlaylistEntry& entry)
{
    if (text.isEmpty())
        return {};
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0 && seconds <= maxTransition))
        return tr("\"%1\" is no duration of a transition: it is 0 to %2 seconds.")
            .arg(shortened(text))
            .arg(maxTransition);
    entry.setTransitionDuration(seconds);
    return {};
}

} // namespace vantrel
