#include "common/media/address/mediautils.h"

#include "common/media/address/mediafiles.h"
#include "common/media/address/medialogging.h"
#include "tarn/media/mediaenums.h"

#include <QCoreApplication>
#include <QModelIndex>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("MediaUtils", text);
}

} // namespace

QString scaleModeToPrettyString(ScaleMode mode)
{
    switch (mode) {
    case ScaleMode::Default:
        return tr("Default");
    case ScaleMode::Fit:
        return tr("Fit");
    case ScaleMode::Clip:
        return tr("Clip");
    case ScaleMode::Stretch:
        return tr("Stretch");
    case ScaleMode::Centered:
        return tr("Centered");
    case ScaleMode::TopLeft:
        return tr("Top left");
    case ScaleMode::TopRight:
        return tr("Top right");
    case ScaleMode::BottomLeft:
        return tr("Bottom left");
    case ScaleMode::BottomRight:
        return tr("Bottom right");
    }
    return QString::fromUtf8(toStr(mode));
}

namespace media {

namespace {

constexpr int slotColumn = 0;
constexpr int urlColumn = 10;
constexpr int collectionNumberRole = 271; // a slot's collection, or the collection's own

QRegularExpression pattern(const QString& text)
{
    return QRegularExpression(text, QRegularExpression::CaseInsensitiveOption);
}

} // namespace

const QRegularExpression MediaUtils::collectionRegex =
    pattern(QStringLiteral(R"(^(brume://collections?)/(\d+)/slots/(\d+)$)"));
const QRegularExpression MediaUtils::playlistRegex =
    pattern(QStringLiteral(R"(^(brume://playlists?)/(\d+)/entries/(\d+(?:\.\d+)?)$)"));

bool MediaUtils::isMediaAddress(const QString& address)
{
    return isSlotAddress(address) || isPlaylistAddress(address);
}

bool MediaUtils::isSlotAddress(const QString& address)
{
    return collectionRegex.match(address).hasMatch();
}

bool MediaUtils::isPlaylistAddress(const QString& address)
{
    return playlistRegex.match(address).hasMatch();
}

MediaAddress MediaUtils::parseSlotAddress(const QString& address)
{
    const QRegularExpressionMatch match = collectionRegex.match(address);
    if (!match.hasMatch()) {
        qCDebug(lcMedia) << "Input did not match regex" << address;
        return {};
    }
    bool collectionRead = false;
    bool slotRead = false;
    const int collection = match.captured(2).toInt(&collectionRead, 10);
    const int slot = match.captured(3).toInt(&slotRead, 10);
    if (!collectionRead)
        qCDebug(lcMedia) << "Invalid collection value in " << address;
    if (!slotRead)
        qCDebug(lcMedia) << "Invalid slot value in " << address;
    return collectionRead && slotRead ? MediaAddress(collection, slot) : MediaAddress();
}

PlaylistAndEntry MediaUtils::parsePlaylistAddress(const QString& address)
{
    PlaylistAndEntry result;
    const QRegularExpressionMatch match = playlistRegex.match(address);
    if (!match.hasMatch()) {
        qCDebug(lcMedia) << "Input did not match regex" << address;
        return result;
    }
    bool playlistRead = false;
    result.playlist = match.captured(2).toInt(&playlistRead, 10);
    const bool entryRead = result.entry.parseString(match.captured(3).toStdString());
    result.valid = playlistRead && entryRead;
    if (!playlistRead)
        qCDebug(lcMedia) << "Invalid playlist number value in " << address;
    if (!entryRead) // the same words on purpose: the address as a whole is at fault
        qCDebug(lcMedia) << "Invalid playlist number value in " << address;
    if (result.playlist < 1) {
        qCDebug(lcMedia) << "Playlist number must be 1 or greater. " << address;
        result.valid = false;
    }
    return result;
}

int MediaUtils::collectionNumber(const QModelIndex& index)
{
    const QVariant number = index.data(collectionNumberRole);
    return number.isValid() ? number.toInt() : -1;
}

MediaAddress MediaUtils::parseCollectionIndex(const QModelIndex& index)
{
    if (index.row() < 0 || index.column() < 0 || !index.model()) {
        qCWarning(lcMedia) << "MediaUtils::parseCollectionIndex invalid index given";
        return {};
    }
    const QModelIndex urlIndex = index.siblingAtColumn(urlColumn);
    const QVariant slot = index.siblingAtColumn(slotColumn).data(Qt::DisplayRole);
    if (!slot.isValid()) {
        qCWarning(lcMedia) << "Failed to acquire slot data at index";
        return {};
    }
    const QVariant url = urlIndex.data(Qt::DisplayRole);
    if (!url.isValid()) {
        qCWarning(lcMedia) << "Failed to acquire url data at index";
        return {};
    }
    if (url.toString().size() < 3) {
        qCWarning(lcMedia) << "MediaUtils::parseCollectionIndex mediaUrl" << url.toString() << "is too short";
        return {};
    }
    return {collectionNumber(urlIndex), slot.toInt()};
}

QString MediaUtils::toSlotAddress(int collection, int slot)
{
    return QStringLiteral("brume://collections/%1/slots/%2").arg(collection).arg(slot);
}

QString MediaUtils::toSlotAddress(MediaAddress address)
{
    return toSlotAddress(address.collection, address.slot);
}

QString MediaUtils::toPlaylistAddress(int playlist, EntryAddress entry)
{
    return QStringLiteral("brume://playlists/%1/entries/%2")
        .arg(playlist)
        .arg(QString::fromStdString(entry.toString(true)));
}

MediaState MediaUtils::serverEquivalentState(MediaState state)
{
    if (state < MediaState::PlayableWithCaveats)
        return MediaState::Playable;
    return state == MediaState::PlayableWithCaveats ? state : MediaState::NotPlayable;
}

bool MediaUtils::isPlayable(MediaState state)
{
    return state < MediaState::NotPlayable;
}

QString MediaUtils::describeMediaState(MediaState state)
{
    switch (state) {
    case MediaState::ProgramPlay:
        return QStringLiteral("GUI ONLY PlaybackState::ProgramPlay");
    case MediaState::ProgramPause:
        return QStringLiteral("GUI ONLY PlaybackState::ProgramPause");
    case MediaState::ProgramStop:
        return QStringLiteral("GUI ONLY PlaybackState::ProgramStop");
    case MediaState::PreviewPlay:
        return QStringLiteral("GUI ONLY PlaybackState::PreviewPlay");
    case MediaState::PreviewPause:
        return QStringLiteral("GUI ONLY PlaybackState::PreviewPause");
    case MediaState::PreviewStop:
        return QStringLiteral("GUI ONLY PlaybackState::PreviewStop");
    case MediaState::Playable:
        return QStringLiteral("METADATA PlaybackState::Playable");
    case MediaState::PlayableWithCaveats:
        return QStringLiteral("METADATA PlaybackState::PlayableWithCaveats");
    case MediaState::NotPlayable:
        return QStringLiteral("METADATA PlaybackState::NotPlayable");
    case MediaState::UnknownState:
        return QStringLiteral("GUI ONLY PlaybackState::UnknownState");
    case MediaState::MediaStateCount:
        return QStringLiteral("GUI ONLY PlaybackState::MediaStateCount");
    }
    return QStringLiteral("default handler, SHOULD NEVER OCCUR!");
}

QString MediaUtils::formatSeconds(double seconds)
{
    if (!std::isfinite(seconds))
        return {};
    const auto minutes = static_cast<long long>(std::clamp(seconds / 60, -9e15, 9e15));
    const double rest = seconds - static_cast<double>(minutes) * 60;
    QString text;
    if (minutes != 0)
        text = QString::number(minutes) + u' ' + tr("min");
    if (rest > 0) {
        if (!text.isEmpty())
            text += u' ';
        text += QString::number(rest, 'f', qFuzzyCompare(rest, std::floor(rest)) ? 0 : 1) + u' ' + tr("sec");
    }
    return text;
}

MediaType MediaUtils::getMediaType(const QString& path)
{
    const QString name = getNameInPath(path);
    // Without any "." lastIndexOf is -1 and the whole name is taken.
    const QString suffix = name.mid(std::max<qsizetype>(name.lastIndexOf(u'.'), 0));
    if (mediaFileExtensions(QStringLiteral(".")).contains(suffix))
        return MediaType::VideoFile;
    static const QStringList imageSuffixes = imageSequenceFileExtensions(QStringLiteral("."));
    if (!imageSuffixes.contains(suffix)) {
        qCWarning(lcMedia) << "Unknown file media type for" << path;
        return MediaType::Unknown;
    }
    static const QRegularExpression sequencePattern(QStringLiteral(R"(^(.*?)(?:\%(\d{2,})d)(\.\w+))"));
    const QRegularExpressionMatch match = sequencePattern.match(name);
    const bool isSequence = match.hasMatch() && !match.captured(1).isEmpty() &&
                            match.captured(2).toInt() >= 1 && !match.captured(3).isEmpty();
    return isSequence ? MediaType::ImageSequence : MediaType::ImageFile;
}

QString MediaUtils::transitionTypeToHumanReadable(TakeTransitionType type)
{
    switch (type) {
    case TakeTransitionType::Crossfade:
        return tr("Crossfade");
    case TakeTransitionType::DipToColor:
        return tr("Dip to color");
    case TakeTransitionType::DirectCut:
        return tr("Direct cut");
    }
    const QString text = QString::fromUtf8(toStr(type));
    qCWarning(lcMedia) << "No user facing representation implemented for transition type: " << text;
    return text;
}

QString MediaUtils::endActionToHumanReadable(EndAction action)
{
    switch (action) {
    case EndAction::Next:
        return tr("Next");
    case EndAction::Pause:
        return tr("Pause");
    case EndAction::Stop:
        return tr("Stop");
    case EndAction::Repeat:
        return tr("Repeat");
    case EndAction::GoTo:
        qCWarning(lcMedia) << "Go to end action encountered, not yet supported";
        return tr("Go to");
    }
    const QString text = QString::fromUtf8(toStr(action));
    qCWarning(lcMedia) << "No user facing representation implemented for end action: " << text;
    return text;
}

} // namespace media
} // namespace vantrel
