#include "common/views/media/slotdetails.h"

#include "common/media/address/showntext.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/qml/selectionmodel.h"
#include "common/views/media/slotgridmodel.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/mediametadata.h"

#include <QElapsedTimer>

#include <array>

namespace vantrel {

namespace {

constexpr int turnMs = 4;
constexpr int changesTogetherMs = 200;
constexpr qsizetype mostTwins = 8;

constexpr std::array factColumns{
    SingleMediaModel::MediaTypeColumn,   SingleMediaModel::DurationColumn, SingleMediaModel::VideoColumn,
    SingleMediaModel::WidthColumn,       SingleMediaModel::HeightColumn,   SingleMediaModel::AspectColumn,
    SingleMediaModel::FpsColumn,         SingleMediaModel::BitRateColumn,  SingleMediaModel::ColorSpaceColumn,
    SingleMediaModel::PixelFormatColumn, SingleMediaModel::AudioColumn,    SingleMediaModel::ChannelsColumn,
    SingleMediaModel::FileSizeColumn,    SingleMediaModel::ImportedColumn, SingleMediaModel::ModifiedColumn};

QVariantMap fact(const QString& label, const QString& value)
{
    return {{QStringLiteral("label"), label}, {QStringLiteral("value"), value}};
}

} // namespace

SlotDetails::SlotDetails(const Sources& sources, QObject* parent)
    : QObject(parent)
    , m_sources(sources)
    , m_one(sources.aggregator, sources.playlists, sources.provider)
{
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, &SlotDetails::look);
    connect(&m_turn, &Turn::come, this, &SlotDetails::count);
    connect(&m_one, &QAbstractItemModel::modelReset, this, &SlotDetails::onChange);
    connect(&m_one, &QAbstractItemModel::dataChanged, this, &SlotDetails::onChange);
    if (sources.aggregator) {
        connect(sources.aggregator, &MediaDataAggregator::thumbnailChanged, this,
                [this](const QUrl& file) { showPicture(file); });
        connect(sources.aggregator, &MediaDataAggregator::thumbnailInvalidated, this,
                &SlotDetails::showPicture);
    }
}

void SlotDetails::follow(SelectionModel* selection)
{
    if (m_selection)
        m_selection->disconnect(this);
    m_selection = selection;
    if (selection) {
        connect(selection, &SelectionModel::revisionChanged, this, [this] { m_soon.start(0); });
        connect(selection, &SelectionModel::rowModelChanged, this, &SlotDetails::followSlots);
    }
    followSlots();
    m_soon.start(0);
}

void SlotDetails::followSlots()
{
    if (m_slots)
        m_slots->disconnect(this);
    m_slots = m_selection ? qobject_cast<SlotGridModel*>(m_selection->rowModel()) : nullptr;
    if (m_slots)
        connect(m_slots, &QAbstractItemModel::dataChanged, this, &SlotDetails::onChange);
}

void SlotDetails::onChange()
{
    if (m_turn.isAsked())
        m_isStale = true;
    else if (m_shown.count > 0 && !m_soon.isActive())
        m_soon.start(changesTogetherMs);
}

void SlotDetails::look()
{
    m_turn.stop();
    m_isStale = false;
    m_rows = m_selection && m_slots ? m_selection->rows() : QList<int>();
    if (m_rows.size() < 2) {
        m_rows.isEmpty() ? showNone() : showOne();
        return;
    }
    m_one.setMediaAddress({});
    m_summary = {};
    m_next = 0;
    count();
}

void SlotDetails::showNone()
{
    m_one.setMediaAddress({});
    m_shown = {};
    Q_EMIT changed();
}

void SlotDetails::showOne()
{
    const int number = m_slots->slotAt(m_rows.first());
    const QModelIndex source = m_slots->sourceOf(number);
    if (!source.isValid())
        return showNone();
    const QString address = media::MediaUtils::toSlotAddress(m_slots->collection(), number);
    if (m_one.mediaAddress() != address)
        m_one.setMediaAddress(address);
    ShownSlots shown;
    shown.count = 1;
    shown.collection = m_slots->collection();
    shown.slot = number;
    shown.name = source.data(MediaLibraryModel::NameRole).toString();
    shown.kind = source.data(MediaLibraryModel::KnownTypeRole).toInt();
    shown.file = source.data(MediaLibraryModel::UrlRole).toUrl();
    shown.path = shownText(shown.file.isLocalFile() ? shown.file.toLocalFile() : shown.file.toString());
    shown.isPlayable = source.data(MediaLibraryModel::PlayableRole).toBool();
    shown.faults = m_slots->faultsOf(number);
    const MediaMetadataPtr metadata =
        m_sources.aggregator ? m_sources.aggregator->knownMetadata(shown.file) : nullptr;
    if (metadata && metadata->getMediaType() != MediaType::Unknown)
        shown.facts = factsOfOne();
    else
        shown.facts = {fact(m_one.headerData(SingleMediaModel::DurationColumn, Qt::Horizontal).toString(),
                            source.data(MediaLibraryModel::DurationRole).toString())};
    for (const QString& use : m_one.getUsedInList())
        shown.uses.append(SingleMediaModel::removePrefix(use, QStringLiteral("\u2514 ")));
    shown.twins = twinsOf(shown.file, number);
    const bool isOther = m_shown.file != shown.file;
    shown.picture = m_shown.picture; // each text of it is another picture to who shows it
    m_shown = shown;
    if (isOther)
        showPicture(shown.file);
    else
        Q_EMIT changed();
}

void SlotDetails::showPicture(const QUrl& file)
{
    if (!m_slots || m_shown.slot < 0 || file != m_shown.file)
        return;
    m_shown.picture = m_slots->pictureOf(m_shown.slot);
    Q_EMIT changed();
}

QVariantList SlotDetails::factsOfOne() const
{
    QVariantList facts;
    for (const int column : factColumns) {
        const QString value = m_one.index(0, column).data().toString();
        if (value.isEmpty() || value.startsWith(u'-')) // nobody knows, or there is none
            continue;
        const QString label = m_one.headerData(column, Qt::Horizontal).toString();
        if (label.isEmpty() && !facts.isEmpty())
            facts.last() = fact(facts.last().toMap().value(QStringLiteral("label")).toString(),
                                facts.last().toMap().value(QStringLiteral("value")).toString() +
                                    QStringLiteral(", ") + value);
        else
            facts.append(fact(label, value));
    }
    return facts;
}

QStringList SlotDetails::twinsOf(const QUrl& file, int slot) const
{
    QStringList twins;
    QList<MediaAddress> all = m_sources.library->slotsWith(file);
    all.removeOne(MediaAddress(m_slots->collection(), slot));
    for (const MediaAddress& address : all) {
        if (twins.size() == mostTwins)
            return twins << tr("and %n more", nullptr, static_cast<int>(all.size() - mostTwins));
        twins.append(m_one.getCollectionString(address.collection, address.slot));
    }
    return twins;
}

void SlotDetails::count()
{
    if (!m_slots)
        return;
    QElapsedTimer clock;
    clock.start();
    for (; m_next < m_rows.size(); ++m_next) {
        if (m_next % 32 == 31 && clock.elapsed() >= turnMs) {
            m_turn.ask();
            return;
        }
        const int number = m_slots->slotAt(m_rows[m_next]);
        const QModelIndex source = m_slots->sourceOf(number);
        if (!source.isValid())
            continue;
        const QUrl file = source.data(MediaLibraryModel::UrlRole).toUrl();
        const MediaAddress address(m_slots->collection(), number);
        m_summary.add(source, m_sources.aggregator ? m_sources.aggregator->knownMetadata(file) : nullptr,
                      m_sources.playlists && !m_sources.playlists->slotEntries(address).isEmpty());
    }
    m_shown = {};
    m_shown.count = m_summary.count();
    m_shown.collection = m_slots->collection();
    m_shown.facts = m_summary.facts();
    m_shown.file = m_summary.commonFile();
    Q_EMIT changed();
    if (m_isStale)
        m_soon.start(changesTogetherMs);
}

} // namespace vantrel
