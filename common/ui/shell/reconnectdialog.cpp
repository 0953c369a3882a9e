#include "common/ui/shell/reconnectdialog.h"

#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int dotMilliseconds = 1000;
constexpr int maxDots = 4;
constexpr int margin = 6;
constexpr int padding = 14;   // so narrow that the dialog covers little more than the media panel
constexpr int mostText = 248; // pixels, at any text size

} // namespace

ReconnectDialog::ReconnectDialog(QWidget* parent)
    : ZTDialog(tr("Connection to the server lost"), parent)
    , m_label(new ZTLabel(this))
{
    setObjectNames(QStringLiteral("ReconnectDialog"));
    setModal(false);
    setMinimumWidth(0);
    setAttribute(Qt::WA_ShowWithoutActivating);
    m_label->setObjectName(QStringLiteral("ReconnectDialog-text"));
    m_label->setStyleClass(QStringLiteral("dim"));
    m_label->setWordWrap(true);
    titleLabel()->setWordWrap(true);
    layout()->setContentsMargins(padding, padding, padding, padding);
    contentLayout()->addWidget(m_label);
    setAcceptText(tr("STOP"));
    setAcceptClass(QStringLiteral("cancel"));
    setCancelText(QString());
    acceptButton()->setToolTip(tr("Stop trying to reconnect"));
    connect(this, &ZTDialog::confirmed, this, &ReconnectDialog::stop);
    m_dotTimer.setInterval(dotMilliseconds);
    connect(&m_dotTimer, &QTimer::timeout, this, &ReconnectDialog::updateText);
    followFontSize(this, [this](FontSize) { updateText(); });
}

void ReconnectDialog::displayDialog()
{
    m_dots = 0;
    updateText();
    m_dotTimer.start();
    show();
}

void ReconnectDialog::updateText()
{
    const QString text = tr("Attempting to reconnect to the server");
    // Too narrow for the whole line: the last word stands below, whatever the number of dots.
    m_label->ensurePolished();
    const int textWidth = std::min(m_label->fontMetrics().horizontalAdvance(text) - 1, mostText);
    m_label->setFixedWidth(textWidth);
    titleLabel()->setFixedWidth(textWidth);
    // Blanks fill the line up, so that it keeps its width.
    m_label->setText(text + QString(m_dots, u'.') + QString(maxDots - m_dots, u' '));
    m_dots = (m_dots + 1) % (maxDots + 1);
}

void ReconnectDialog::showEvent(QShowEvent* event)
{
    ZTDialog::showEvent(event);
    // Above the connection's state in the status bar, away from the pictures and from TAKE.
    fitToContent();
    const QWidget* bar = parentWidget();
    if (bar && bar->isVisible())
        move(bar->mapToGlobal(QPoint(0, -height() - margin)));
}

void ReconnectDialog::hideEvent(QHideEvent* event)
{
    m_dotTimer.stop();
    ZTDialog::hideEvent(event);
}

} // namespace vantrel
