#include "common/qml/dropdialog.h"

#include "common/import/mediadrop.h"
#include "common/qml/quickview.h"
#include "common/ui/style/colors.h"
#include "common/ui/toolkit/uncovered.h"

#include <QLoggingCategory>
#include <QQmlComponent>
#include <QQuickItem>
#include <QTimer>
#include <QVBoxLayout>

// Its name is looked for outside of all namespaces.
static void initResources()
{
    Q_INIT_RESOURCE(dropview);
}

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.qml")

QString titleOf(const MediaDrop& drop)
{
    return drop.collection() < 0
               ? DropDialog::tr("Drop on slot %1 of a collection that is gone").arg(drop.startSlot())
               : DropDialog::tr("Drop on slot %1 of collection %2")
                     .arg(drop.startSlot())
                     .arg(drop.collection());
}

} // namespace

DropDialog::DropDialog(MediaDrop* drop, QWidget* parent)
    : ZTDialog(titleOf(*drop), parent)
    , m_drop(drop)
    , m_medias(drop)
{
    setObjectNames(QStringLiteral("DropDialog"));
    setClosesOnAccept(false);
    setAcceptText(tr("ADD"));
    m_sequences.setImageResults(drop->imageResults());
    m_stills.setImageResults(drop->imageResults());
    for (const CandidateModel* model : std::initializer_list<CandidateModel*>{&m_sequences, &m_stills}) {
        connect(model, &CandidateModel::dataChanged, this, [this, model] { take(*model); });
        connect(model, &CandidateModel::imageResultsChanged, this, [this, model] { take(*model); });
    }
    const auto leave = [this] {
        m_drop.clear();
        if (isVisible()) // else it is how that came, or there is nothing yet
            reject();
    };
    connect(drop, &MediaDrop::collectionChanged, this, [this, drop] { setTitle(titleOf(*drop)); });
    connect(&m_turn, &Turn::come, this, &DropDialog::prepare);
    connect(drop, &MediaDrop::saved, this, &QDialog::accept);
    connect(drop, &MediaDrop::canceled, this, leave);
    connect(drop, &QObject::destroyed, this, leave);

    initResources();
    const QUrl file(QStringLiteral("qrc:/DropView/qml/DropView.qml"));
    qCInfo(log) << "Creating view for QML file:" << file;
    m_view = new QuickView(this);
    m_view->setObjectName(QStringLiteral("DropDialog-view"));
    m_view->setAccessibleName(tr("What was found"));
    m_view->setClearColor(colors::getColor(colors::Slate_grey_800));
    contentLayout()->addWidget(m_view, 1);
    m_view->setFocus();
    m_component = new QQmlComponent(m_view->engine(), file, QQmlComponent::Asynchronous, m_view);
    updateAccept();
}

DropDialog::~DropDialog()
{
    delete m_view; // before what its objects are
}

void DropDialog::showOnceLoaded()
{
    if (m_component->isLoading())
        connect(m_component, &QQmlComponent::statusChanged, this, &DropDialog::build);
    else
        build();
}

void DropDialog::build()
{
    if (!m_drop)
        return reject(); // nobody waits for it any more
    // Several of these may be open: what they see is no property of the engine's.
    QObject* const root = m_component->createWithInitialProperties(
        {{QStringLiteral("medias"), QVariant::fromValue(&m_medias)},
         {QStringLiteral("sequences"), QVariant::fromValue(&m_sequences)},
         {QStringLiteral("stills"), QVariant::fromValue(&m_stills)},
         {QStringLiteral("dialog"), QVariant::fromValue(this)}});
    if (!root)
        qCWarning(log) << "QML error:" << m_component->errorString();
    m_view->setContent(m_component->url(), m_component, root);
    if (const auto* item = m_view->rootObject())
        connect(item, &QQuickItem::implicitHeightChanged, this, &DropDialog::fit);
    m_turn.ask();
}

/// All in one turn would be seen in the pictures of the channels: each list, and then its rows, are made in
/// one of their own, before the dialog is shown.
void DropDialog::prepare()
{
    constexpr int lists = 3;
    QQuickItem* const root = m_view->rootObject();
    if (!m_drop)
        return reject();
    if (root && m_step == lists) {
        fitToContent();
        root->setSize(m_view->size());
    }
    QVariant isMore;
    if (root)
        QMetaObject::invokeMethod(root, "fill", Q_RETURN_ARG(QVariant, isMore), Q_ARG(QVariant, m_step++));
    if (isMore.toBool())
        m_turn.ask();
    else
        show();
}

void DropDialog::showEvent(QShowEvent* event)
{
    ZTDialog::showEvent(event);
    if (!event->spontaneous())
        place();
    // A dialog tabs into its first control when it opens; what is to be typed comes first.
    if (m_view->rootObject() && !event->spontaneous())
        QTimer::singleShot(0, m_view->rootObject(),
                           [root = m_view->rootObject()] { QMetaObject::invokeMethod(root, "takeFocus"); });
}

/// What was changed in one list shows in the other one, and in how many slots it takes.
void DropDialog::take(const CandidateModel& model)
{
    const QList<images::ImagesResult> results = model.imageResults();
    m_sequences.setImageResults(results);
    m_stills.setImageResults(results);
    if (m_drop && m_drop->imageResults() != results)
        m_drop->setImageResults(results);
}

void DropDialog::setIsSound(bool isSound)
{
    if (m_isSound == isSound)
        return;
    m_isSound = isSound;
    updateAccept();
    Q_EMIT isSoundChanged();
}

void DropDialog::setForecast(const DropForecast& forecast)
{
    m_forecast = forecast;
    setDescription(forecast.text());
    setAcceptText(forecast.overwritten > 0 ? tr("OVERWRITE") : tr("ADD"));
    setAcceptClass(forecast.overwritten > 0 ? QStringLiteral("red") : QStringLiteral("accent"));
    updateAccept();
    fit();
}

/// Lists come and go with what the operator makes of the pictures.
void DropDialog::fit()
{
    if (!isVisible())
        return;
    m_view->updateGeometry();
    fitToContent();
    if (pos() == m_place)
        place();
}

/// Over nothing of the window that an operator watches on air, as long as there is such a place.
void DropDialog::place()
{
    if (const QWidget* window = parentWidget() ? parentWidget()->window() : nullptr)
        move(window->mapToGlobal(uncoveredPlace(*window, size(), window->height())));
    m_place = pos();
}

void DropDialog::updateAccept()
{
    setAcceptEnabled(m_isSound && m_forecast.isPossible());
}

} // namespace vantrel
