// Folders of thousands of files of a live server that are dropped on its slots: how long it takes until what
// they hold is on the screen, and the longest turn until the server has told of all of it.
#include "bench/row.h"
#include "bench/turn.h"
#include "common/media/items/mimedata.h"
#include "common/qml/dropdialog.h"
#include "common/qml/qmlmanager.h"
#include "common/qml/quickview.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/views/slotdrops.h"
#include "tests/support/livesession.h"
#include "tests/support/testmedia.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QMimeData>
#include <QQuickWindow>
#include <QStandardPaths>

#include <algorithm>
#include <tuple>
#include <unistd.h>
#include <utility>

using namespace vantrel;
using bench::spentMs;
using test::LiveSession;

namespace {

/// Files of one inode, of which none of the names runs.
bool fillFolder(const QString& folder, const QString& of, int count, const QString& suffix)
{
    for (int i = 0; i < count; ++i) {
        const QString name = QStringLiteral("%1 of all %2").arg(QChar(u'a' + i % 26)).arg(i * 13) + suffix;
        if (link(qPrintable(of), qPrintable(folder + u'/' + name)) != 0)
            return false;
    }
    return true;
}

bool makeFolders(const QString& media)
{
    const QString clip = media + QStringLiteral("/clip.mp4");
    const QString still = media + QStringLiteral("/still.png");
    const QString mixed = media + QStringLiteral("/mixed");
    const QString videos = media + QStringLiteral("/videos");
    QImage picture(64, 36, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString one = media + QStringLiteral("/one");
    return test::makeClip(clip, {}, 1) && picture.save(still) && QDir().mkpath(mixed) &&
           QDir().mkpath(videos) && QDir().mkpath(one) && fillFolder(one, still, 1, QStringLiteral(".png")) &&
           fillFolder(mixed, still, 5000, QStringLiteral(".png")) &&
           fillFolder(mixed, clip, 5000, QStringLiteral(".mp4")) &&
           fillFolder(videos, clip, 9000, QStringLiteral(".mp4"));
}

DropDialog* openDialog()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* dialog = qobject_cast<DropDialog*>(widget);
        if (dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

/// From the drop of a folder of the server until what it holds is on the screen, and the longest turn until
/// the server has told of all.
std::pair<double, double> reviewFolder(SlotDrops& drops, const QString& path)
{
    const QJsonObject folder{
        {QStringLiteral("path"), path},        {QStringLiteral("name"), path},
        {QStringLiteral("isDirectory"), true}, {QStringLiteral("duration"), 0},
        {QStringLiteral("isPlayable"), true},  {QStringLiteral("fileSystem"), QStringLiteral("server")}};
    QMimeData data;
    data.setData(mimeformat::type, mimeformat::mediaType.toUtf8());
    data.setData(mimeformat::json, QJsonDocument(QJsonArray{folder}).toJson(QJsonDocument::Compact));
    QElapsedTimer clock;
    clock.start();
    drops.begin(&data);
    drops.aim(1);
    const double before = spentMs();
    drops.drop(1);
    double longest = spentMs() - before;
    drops.end();
    bool isFollowed = false;
    bool isPainted = false;
    const auto isShown = [&] {
        const DropDialog* const dialog = openDialog();
        if (dialog && !std::exchange(isFollowed, true)) {
            auto* const view = dialog->findChild<QuickView*>();
            QObject::connect(view->quickWindow(), &QQuickWindow::afterRendering, view,
                             [&isPainted] { isPainted = true; });
        }
        return isPainted;
    };
    const double shown = bench::longestTurn(isShown);
    const double seen = double(clock.elapsed());
    const double told = bench::longestTurn([] { return openDialog()->acceptButton()->isEnabled(); }, 600000);
    if (shown < 0 || told < 0)
        return {-1, -1};
    longest = std::max({longest, shown, told});
    openDialog()->reject();
    if (!QTest::qWaitFor([] { return !openDialog(); }))
        return {-1, -1};
    return {seen, longest};
}

} // namespace

int main(int argc, char** argv)
{
    QStandardPaths::setTestModeEnabled(true);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("vantrel.*=false"));
    StyleSheet::apply(application);
    test::OmbraProcess server;
    LiveSession live;
    if (!makeFolders(server.mediaFolder()) || !server.start() || !live.open(server))
        return 1;
    QWidget window;
    SlotDrops drops(live.session.get(), &live.manager, &window);
    drops.setCollection(LiveSession::collection);
    const auto [firstSeen, firstLongest] = reviewFolder(drops, QStringLiteral("/one"));
    if (firstSeen < 0)
        return 1;
    bench::row("drops/first-dialog-longest", "one picture of a 60 Hz screen", firstLongest, 16, "ms", 1);
    for (const auto& [folder, seenName, longestName] :
         {std::tuple("/mixed", "drops/folder-of-10000-candidates", "drops/folder-of-10000-longest"),
          std::tuple("/videos", "drops/videos-of-9000-candidates", "drops/videos-of-9000-longest")}) {
        const auto [seen, longest] = reviewFolder(drops, QLatin1String(folder));
        if (seen < 0)
            return 1;
        bench::row(seenName, "what an operator is to wait at most", seen, 2000, "ms", 1);
        bench::row(longestName, "one picture of a 60 Hz screen", longest, 16, "ms", 1);
    }
    QMLManager::instance()->deinitialize();
    return 0;
}
