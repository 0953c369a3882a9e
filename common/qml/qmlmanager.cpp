#include "common/qml/qmlmanager.h"

#include "common/filesystem/model/localhomelocations.h"
#include "common/import/imagesequencecandidatemodel.h"
#include "common/import/mediadrop.h"
#include "common/import/stillimagecandidatemodel.h"
#include "common/media/address/mediastate.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/notification/notificationstatusmodel.h"
#include "common/notification/pendingnotificationmodel.h"
#include "common/notification/sortednotificationmodel.h"
#include "common/qml/dialogfactory.h"
#include "common/qml/fontsizes.h"
#include "common/qml/iconprovider.h"
#include "common/qml/mediaenums.h"
#include "common/qml/mediaicons.h"
#include "common/qml/notificationstyle.h"
#include "common/qml/qmlthumbnailprovider.h"
#include "common/qml/quickdialog.h"
#include "common/qml/rowspeech.h"
#include "common/qml/selectionmodel.h"
#include "common/qml/tooltips.h"
#include "common/session/session.h"
#include "common/ui/style/colors.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QQmlContext>
#include <QtQml>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.qml")

const auto uncreatable = QStringLiteral("Uncreatable type");

void registerTypes()
{
    const auto onlyEnums = QStringLiteral("Error: only enums");
    qmlRegisterType<colors::ColorHelper>("Tessen.Utils", 1, 0, "ColorHelper");
    qmlRegisterUncreatableMetaObject(colors::staticMetaObject, "Tessen.Utils", 1, 0, "Vantrel", onlyEnums);
    qmlRegisterUncreatableMetaObject(media::staticMetaObject, "Tessen.Utils", 1, 0, "Media", onlyEnums);
    qmlRegisterUncreatableType<ZTDialog>("Tessen.Models", 1, 0, "ZTWidgetDialog", uncreatable);
    qmlRegisterType<QuickDialog>("Tessen.Models", 1, 0, "ZTQMLDialog");
    qmlRegisterType<SelectionModel>("Tessen.Models", 1, 0, "ZTSelectionModel");
    qmlRegisterUncreatableMetaObject(images::staticMetaObject, "Tessen.Utils", 1, 0, "Images", onlyEnums);
    qmlRegisterType<ImageSequenceCandidateModel>("Tessen.Models", 1, 0, "ImageSequenceModel");
    qmlRegisterType<StillImageCandidateModel>("Tessen.Models", 1, 0, "StillImageModel");
    qmlRegisterUncreatableType<MediaDrop>("Tessen.Models", 1, 0, "MediaDrop", uncreatable);
    qmlRegisterUncreatableType<NotificationManager>("Tessen", 1, 0, "NotificationManager", uncreatable);
    qmlRegisterUncreatableType<Notification>("Tessen", 1, 0, "Notification", uncreatable);
    qmlRegisterType<NotificationModel>("Tessen", 1, 0, "NotificationModel");
    qmlRegisterType<SortedNotificationModel>("Tessen", 1, 0, "AllNotificationModel");
    qmlRegisterType<PendingNotificationModel>("Tessen", 1, 0, "PendingNotificationModel");
    qmlRegisterType<NotificationStatusModel>("Tessen", 1, 0, "NotificationStatusModel");
}

} // namespace

/// What lives as long as the engine does.
class QMLManagerPrivate
{
public:
    QMLManagerPrivate()
    {
        engine.addImportPath(QStringLiteral("qrc:/QmlModules"));
        QQmlContext* context = engine.rootContext();
        context->setContextProperty(QStringLiteral("notificationManager"),
                                    NotificationManagerImpl::instance());
        context->setContextProperty(QStringLiteral("session"), Session::instance());
        context->setContextProperty(QStringLiteral("fontSizes"), &fontSizes);
        context->setContextProperty(QStringLiteral("colorHelper"), &colorHelper);
        context->setContextProperty(QStringLiteral("commandCenter"), &commandCenter);
        context->setContextProperty(QStringLiteral("dialogs"), &dialogs);
        context->setContextProperty(QStringLiteral("homeLocationsPath"),
                                    LocalHomeLocations::instance()->homePath());
        context->setContextProperty(QStringLiteral("toolTips"), &toolTips);
        context->setContextProperty(QStringLiteral("rowSpeech"), &rowSpeech);
        context->setContextProperty(QStringLiteral("notificationStyle"), &notificationStyle);
        context->setContextProperty(QStringLiteral("mediaIcons"), &mediaIcons);
        engine.addImageProvider(QStringLiteral("thumbnails"), new QmlThumbnailProvider);
        engine.addImageProvider(QStringLiteral("icons"), new IconProvider);
    }

    FontSizes fontSizes;
    colors::ColorHelper colorHelper;
    ImplMediaCollectionManager commandCenter;
    DialogFactory dialogs;
    ToolTips toolTips;
    RowSpeech rowSpeech;
    NotificationStyle notificationStyle;
    MediaIcons mediaIcons;
    QQmlEngine engine; // last: it goes before what its objects are
};

QMLManager::QMLManager() = default;
QMLManager::~QMLManager() = default;

QMLManager* QMLManager::instance()
{
    static QMLManager manager;
    return &manager;
}

void QMLManager::initialize()
{
    if (d)
        return;
    qCInfo(log) << "Initializing QML manager...";
    qputenv("QT_QUICK_CONTROLS_STYLE", "Material");
    qputenv("QT_QUICK_CONTROLS_MATERIAL_THEME", "Dark");
    static const bool once = (registerTypes(), true);
    Q_UNUSED(once);
    d = std::make_unique<QMLManagerPrivate>();
    connect(qApp, &QCoreApplication::aboutToQuit, this, &QMLManager::deinitialize, Qt::UniqueConnection);
}

QQmlEngine* QMLManager::engine() const
{
    return d ? &d->engine : nullptr;
}

ImplMediaCollectionManager* QMLManager::commandCenter() const
{
    return d ? &d->commandCenter : nullptr;
}

DialogFactory* QMLManager::dialogs() const
{
    return d ? &d->dialogs : nullptr;
}

void QMLManager::deinitialize()
{
    if (d)
        d->dialogs.closeAll();
    d.reset();
}

} // namespace vantrel
