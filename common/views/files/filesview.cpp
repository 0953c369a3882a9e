#include "common/views/files/filesview.h"

#include "common/filesystem/model/homelocations.h"
#include "common/filesystem/models/conflictdesk.h"
#include "common/filesystem/models/filesmodel.h"
#include "common/filesystem/models/filesystemdrophandler.h"
#include "common/filesystem/models/filesystemoperationswrapper.h"
#include "common/filesystem/models/operationsmodel.h"
#include "common/filesystem/models/pathmodel.h"
#include "common/filesystem/schedule/filesystemoperations.h"
#include "common/qml/quickview.h"
#include "common/session/window/mainwindowhandle.h"
#include "common/ui/style/colors.h"
#include "common/views/files/fileactions.h"

#include <QLoggingCategory>
#include <QQmlContext>
#include <QVBoxLayout>
#include <QtQml>

// Its name is looked for outside of all namespaces.
static void initResources()
{
    Q_INIT_RESOURCE(filesview);
}

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.qml")

void registerTypes()
{
    const auto why = QStringLiteral("Uncreatable");
    qmlRegisterUncreatableType<FilesModel>("Tessen.Models", 1, 0, "FilesModel", why);
    qmlRegisterUncreatableType<PathModel>("Tessen.Models", 1, 0, "PathModel", why);
    qmlRegisterUncreatableType<FileSystem>("Tessen.Models", 1, 0, "FileSystem", why);
    qmlRegisterUncreatableType<FileSystemOperationsWrapper>("Tessen.Models", 1, 0, "FileSystemOperations",
                                                            why);
    qmlRegisterUncreatableType<OperationsModel>("Tessen.Models", 1, 0, "OperationsModel", why);
    qmlRegisterUncreatableType<ConflictDesk>("Tessen.Models", 1, 0, "ConflictDesk", why);
}

} // namespace

FilesView::FilesView(const Sources& sources, QWidget* parent)
    : QWidget(parent)
    , m_sources(sources)
    , m_desk(new ConflictDesk(sources.operations, this))
    , m_drops(new FileSystemDropHandler(sources.provider, sources.operations, m_desk, this))
{
    setObjectName(QStringLiteral("FilesTab"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

FilesView::~FilesView()
{
    delete m_view; // before what its objects are
}

void FilesView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!m_view)
        load();
}

void FilesView::load()
{
    static const bool once = (registerTypes(), true);
    Q_UNUSED(once);
    initResources();
    const QUrl file(QStringLiteral("qrc:/FilesView/qml/FilesView.qml"));
    qCInfo(log) << "Creating view for QML file:" << file;
    m_view = new QuickView(this);
    m_view->setObjectName(QStringLiteral("FilesTab-view"));
    m_view->setAccessibleName(tr("Files"));
    m_view->setClearColor(colors::getColor(colors::Slate_grey_900));
    if (!mainWindowWidget())
        qCInfo(log) << "Unable to read main window";
    QQmlContext* context = m_view->rootContext();
    context->setContextProperty(QStringLiteral("session"), m_sources.session);
    context->setContextProperty(QStringLiteral("mainWindow"), mainWindowWidget());
    context->setContextProperty(QStringLiteral("homeLocations"), m_sources.homeLocations);
    context->setContextProperty(QStringLiteral("fileSystemOperations"),
                                new FileSystemOperationsWrapper(m_sources.operations, m_view));
    context->setContextProperty(QStringLiteral("fileSystemDropHandler"), m_drops);
    context->setContextProperty(QStringLiteral("conflictDesk"), m_desk);
    context->setContextProperty(QStringLiteral("fileActions"),
                                new FileActions(m_view, m_drops, m_desk, m_view));
    m_view->setSource(file);
    layout()->addWidget(m_view);
    setFocusProxy(m_view);
}

} // namespace vantrel
