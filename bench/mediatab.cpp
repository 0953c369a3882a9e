// The MEDIA tab with a full collection: what it costs to show it first, and to scroll through it by the
// wheel, as pictures and as a table, with the pictures of what is in view coming in.
#include "bench/row.h"
#include "bench/turn.h"
#include "common/import/slotpayload.h"
#include "common/qml/qmlmanager.h"
#include "common/qml/selectionmodel.h"
#include "common/ui/style/stylesheet.h"
#include "common/views/media/collectionpanes.h"
#include "common/views/media/mediaview.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLoggingCategory>
#include <QMimeData>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickWidget>
#include <QStackedWidget>
#include <QWheelEvent>

#include <algorithm>

using namespace vantrel;
using namespace vantrel::test;
using vantrel::bench::longestTurn;
using vantrel::bench::row;
using vantrel::bench::spentMs;

namespace {

constexpr int steps = 400;

/// Resident, in MB.
double memory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').at(1).toDouble() * 4096 / 1e6;
}

/// Counts the pictures of a widget.
class Paints : public QObject
{
public:
    explicit Paints(QWidget* widget) { widget->installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

QQuickItem* find(QQuickItem* from, const QString& name)
{
    if (from->objectName() == name)
        return from;
    for (QQuickItem* child : from->childItems()) {
        if (QQuickItem* found = find(child, name))
            return found;
    }
    return nullptr;
}

/// By the wheel over the middle of the view, where the slots of that name stand.
bool measureScroll(MediaView& view, const QString& pane, const char* longestName, const char* meanName)
{
    QQuickWidget* const quick = view.quickWidget();
    const QQuickItem* const grid = find(quick->rootObject(), pane + QStringLiteral("-grid"));
    Paints paints(quick);
    QElapsedTimer clock;
    clock.start();
    bool isDown = true;
    double longest = 0;
    const double before = spentMs();
    const double from = grid->property("contentY").toDouble();
    for (int step = 0; step < steps; ++step) {
        const int painted = paints.count;
        const QPointF at(quick->width() / 2.0, quick->height() / 2.0);
        const double place = grid->property("contentY").toDouble();
        const double end = grid->property("contentHeight").toDouble() - grid->height();
        isDown = isDown ? place < end - 4000 : place < 4000; // at an end nothing would be drawn
        auto* wheel = new QWheelEvent(at, quick->mapToGlobal(at), {}, {0, isDown ? -360 : 360}, Qt::NoButton,
                                      Qt::NoModifier, Qt::NoScrollPhase, false);
        wheel->setTimestamp(
            static_cast<quint64>(clock.elapsed())); // what it moves by depends on how fast they come
        QCoreApplication::postEvent(quick, wheel);
        const double turn = longestTurn([&] { return paints.count > painted; });
        if (turn < 0) {
            std::fprintf(stderr, "no picture at step %d, contentY %.0f height %.0f\n", step,
                         grid->property("contentY").toDouble(), grid->property("contentHeight").toDouble());
            return false;
        }
        longest = std::max(longest, turn);
    }
    const double mean = (spentMs() - before) / paints.count;
    std::fprintf(stderr, "%d pictures, scrolled from %.0f to %.0f\n", paints.count, from,
                 grid->property("contentY").toDouble());
    row(longestName, "one picture of a 60 Hz screen", longest, 16, "ms", 1);
    row(meanName, "60 pictures a second", mean, 1000.0 / 60, "ms", 1);
    return true;
}

/// A drag of all slots of the collection: what it carries, and what other slots read of it.
bool measureDrag(MediaView& view, const MediaMirror& mirror)
{
    QQuickItem* const pane = find(view.quickWidget()->rootObject(), QStringLiteral("media-slots"));
    auto* const selection = pane->property("selection").value<SelectionModel*>();
    selection->selectAll();
    const double before = spentMs();
    QVariant chosen;
    QMetaObject::invokeMethod(pane, "selectedSlots", Q_RETURN_ARG(QVariant, chosen));
    QList<MediaAddress> addresses;
    for (const int slot : chosen.value<QList<int>>())
        addresses.append(MediaAddress(1, slot));
    const std::unique_ptr<QMimeData> data(mirror.model.mimeDataOf(addresses));
    const SlotPayload payload = SlotPayload::of(data.get());
    const double cost = spentMs() - before;
    selection->clearSelection();
    if (payload.addresses().size() != MediaCollection::slotIndexMax)
        return false;
    row("mediatab/drag-of-all-slots", "one picture of a 60 Hz screen", cost, 16, "ms", 1);
    return true;
}

bool measure()
{
    MediaMirror mirror(makeLibrary(3, MediaCollection::slotIndexMax));
    QStackedWidget window;
    window.addWidget(new QWidget);
    auto* view = new MediaView({.library = &mirror.model, .provider = &mirror.provider});
    window.addWidget(view);
    window.resize(1920, 1080);
    Paints windowPaints(&window); // what any window costs does not count
    window.show();
    if (longestTurn([&] { return windowPaints.count > 0; }) < 0)
        return false;
    const double memoryBefore = memory();
    const double before = spentMs();
    window.setCurrentIndex(1);
    Paints paints(view->quickWidget());
    const auto isShown = [&] {
        return paints.count > 0 && find(view->quickWidget()->rootObject(), QStringLiteral("media-slot1"));
    };
    if (longestTurn(isShown) < 0)
        return false;
    row("mediatab/first-show", "what an operator is to wait at most", spentMs() - before, 120, "ms", 1);
    row("mediatab/memory", "what it may take", memory() - memoryBefore, 40, "MB", 1);
    QObject* const actions =
        view->quickWidget()->rootContext()->contextProperty(QStringLiteral("mediaActions")).value<QObject*>();
    const auto isWhole = [&] {
        const QQuickItem* grid = find(view->quickWidget()->rootObject(), QStringLiteral("media-slots-grid"));
        return grid->property("count").toInt() == MediaCollection::slotIndexMax;
    };
    if (longestTurn(isWhole) < 0 || !measureDrag(*view, mirror))
        return false;
    const auto pane = QStringLiteral("media-slots");
    if (!measureScroll(*view, pane, "mediatab/scroll-pictures-longest", "mediatab/scroll-pictures") ||
        !actions->setProperty("isTable", true) ||
        !measureScroll(*view, pane, "mediatab/scroll-table-longest", "mediatab/scroll-table") ||
        !actions->setProperty("isTable", false))
        return false;
    auto* const panes = view->quickWidget()
                            ->rootContext()
                            ->contextProperty(QStringLiteral("collectionPanes"))
                            .value<CollectionPanes*>();
    // The slots come into view in one turn, and are drawn in the next.
    const auto open = [&](int collection, const char* grid) {
        panes->open(collection);
        const double shown = longestTurn([&] {
            const QQuickItem* beside = find(view->quickWidget()->rootObject(), QLatin1String(grid));
            return beside && beside->property("count").toInt() > 0;
        });
        const double drawn = longestTurn([&, before = paints.count] { return paints.count > before; });
        return shown < 0 || drawn < 0 ? -1 : std::max(shown, drawn);
    };
    const double opening = open(2, "media-slots2-grid");
    row("mediatab/open-beside-longest", "one picture of a 60 Hz screen", opening, 16, "ms", 1);
    return opening >= 0 && open(3, "media-slots3-grid") >= 0 &&
           measureScroll(*view, QStringLiteral("media-slots2"), "mediatab/scroll-beside-longest",
                         "mediatab/scroll-beside");
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("vantrel.*.debug=false\nvantrel.*.info=false"));
    StyleSheet::apply(application);
    const bool isDone = measure();
    QMLManager::instance()->deinitialize();
    return isDone ? 0 : 1;
}
