// The rows of the media panel and of cue lists, in all that can become of them.
#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "common/session/mirror/guiplayback.h"
#include "common/ui/gallery/gallerysections.h"
#include "common/ui/gallery/stategrid.h"
#include "common/ui/style/colors.h"
#include "common/views/playlist/listclock.h"
#include "common/views/playlist/playlistcontainer.h"
#include "common/views/playlist/playlistview.h"
#include "common/views/slotdelegate.h"
#include "common/views/slotlistview.h"
#include "tarn/media/medialibrary.h"

#include <QStandardItemModel>

#include <array>
#include <optional>
#include <utility>

namespace vantrel::gallery {

namespace {

/// A library of three media, each an entry of its list.
QByteArray sample()
{
    constexpr std::array media{std::pair("Walk-in", "videoFile"), std::pair("Logo", "imageFile"),
                               std::pair("Interlude", "audioFile")};
    QByteArrayList places, entries;
    for (const auto& [name, type] : media) {
        const QByteArray number = QByteArray::number(places.size() + 1);
        places.append('"' + number + R"(":{"name":")" + name + R"(","contentUrl":"file:///)" + name +
                      R"(","inpoint":0.0,"outpoint":null,"duration":20.0,"mediaDuration":20.0,)"
                      R"("scaleMode":"default","isPlayable":true,"durationType":"manual",)"
                      R"("imageSequence":null,"type":")" +
                      type + "\"}");
        entries.append('"' + number + R"(":{"slotUrl":"brume://collections/1/slots/)" + number +
                       R"(","endAction":"next","transitionType":"crossfade","transitionDuration":1.0})");
    }
    return R"({"collections":{"1":{"name":"Gala","slots":{)" + places.join(',') +
           R"(}}},"playlists":{"1":{"name":"Gala","entries":{)" + entries.join(',') + "}}}}";
}

/// The list, its first entry on air and its third on preview.
struct SampleList : QObject
{
    explicit SampleList(QObject* parent)
        : QObject(parent)
        , library(makeRef<MediaLibrary>())
        , media(library)
        , lists(library, &media)
        , preview(&lists, &media)
        , program(&lists, &media)
        , model(&lists, nullptr, &preview, &program, {Preview, Program}, nullptr)
    {
        Json json;
        if (Json::parseString(sample().toStdString(), json))
            library->parseJson(json);
        media.onReset();
        lists.onReset();
        preview.init();
        program.init();
        preview.setMedia(QStringLiteral("brume://playlists/1/entries/3"));
        program.setMedia(QStringLiteral("brume://playlists/1/entries/1"));
        clock.emplace(&program, &lists);
        model.onPreviewChange();
        model.onProgramChange();
        model.setPlaylistNumber(1);
    }

    Ref<MediaLibrary> library;
    MediaLibraryProvider media;
    PlaylistProvider lists;
    GUIPlayback preview;
    GUIPlayback program;
    std::optional<ListClock> clock; // there is no scene that would tell it of anything later
    PlaylistModel model;
};

QWidget* makeCues(SampleList* list, int selected)
{
    auto* cues = new PlaylistContainer({Program}, false);
    cues->setModel(&list->model);
    cues->setClock(&*list->clock);
    cues->setMinimumSize(620, 180);
    auto* view = cues->findChild<PlaylistView*>();
    view->setFocusPolicy(Qt::NoFocus);
    view->setSelectionMode(QAbstractItemView::MultiSelection);
    for (int row = 0; row < selected; ++row)
        view->selectRow(row);
    return cues;
}

struct Slot
{
    const char* name;
    MediaState state;
    MediaType type;
};

constexpr std::array slotRows{
    Slot{"Walk-in", MediaState::ProgramPlay, MediaType::VideoFile},
    Slot{"Opening", MediaState::PreviewPause, MediaType::VideoFile},
    Slot{"Logo", MediaState::Playable, MediaType::ImageFile},
    Slot{"Interlude", MediaState::PlayableWithCaveats, MediaType::AudioFile},
    Slot{"Interview", MediaState::NotPlayable, MediaType::VideoFile},
};

QWidget* makeSlots(bool areSelected, bool isStale)
{
    auto* view = new SlotListView;
    auto* model = new QStandardItemModel(view);
    for (int i = 0; i < int(slotRows.size()); ++i) {
        const Slot& slot = slotRows[std::size_t(i)];
        auto* item = new QStandardItem(QString::fromLatin1(slot.name));
        item->setData(i + 1, MediaLibraryModel::NumberRole);
        item->setData(QString::fromLatin1(slot.name), MediaLibraryModel::NameRole);
        item->setData(20.0, MediaLibraryModel::OutpointRole);
        item->setData(int(slot.type), MediaLibraryModel::KnownTypeRole);
        for (const int role : {MediaLibraryModel::StateRole, MediaLibraryModel::KnownStateRole})
            item->setData(int(slot.state), role);
        if (slot.state == MediaState::NotPlayable)
            item->setData(QStringList{QStringLiteral("The file is damaged.")},
                          MediaLibraryModel::KnownFaultsRole);
        model->appendRow(item);
    }
    auto* delegate = new SlotDelegate(view);
    delegate->setStale(isStale);
    view->setModel(model);
    view->setItemDelegate(delegate);
    view->setFocusPolicy(Qt::NoFocus);
    view->setSelectionMode(QAbstractItemView::MultiSelection);
    if (areSelected)
        view->selectAll();
    view->setFixedWidth(300);
    view->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents); // at each text size
    return view;
}

} // namespace

QWidget* makeRows(QWidget* parent)
{
    auto* grid = new StateGrid({}, parent);
    grid->addRow(QStringLiteral("Slots, selected, old"),
                 {makeSlots(false, false), makeSlots(true, false), makeSlots(true, true)});
    auto* list = new SampleList(grid);
    grid->addWide(QStringLiteral("Cue list"), makeCues(list, 0));
    grid->addWide(QStringLiteral("selected"), makeCues(list, int(list->model.rowCount())));
    return grid;
}

} // namespace vantrel::gallery
