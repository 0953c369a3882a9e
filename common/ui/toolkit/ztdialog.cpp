#include "common/ui/toolkit/ztdialog.h"

#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/uncovered.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

ZTDialog::ZTDialog(QWidget* parent)
    : ZTDialog(QString(), parent)
{
}

ZTDialog::ZTDialog(const QString& title, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
    , m_title(new ZTLabel(this))
    , m_description(new ZTLabel(this))
    , m_content(new QVBoxLayout)
    , m_buttons(new QWidget(this))
    , m_accept(new PushButton(tr("OK"), this))
    , m_cancel(new PushButton(tr("CANCEL"), this))
{
    setAttribute(Qt::WA_StyledBackground);
    m_title->setStyleClass(QStringLiteral("title"));
    m_description->setStyleClass(QStringLiteral("dim"));
    m_description->setWordWrap(true);
    m_description->hide();
    m_content->setSpacing(12);

    auto* buttons = new QHBoxLayout(m_buttons);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(8);
    buttons->addStretch(1);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_accept);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(16);
    layout->addWidget(m_title);
    layout->addWidget(m_description);
    layout->addLayout(m_content, 1);
    layout->addSpacing(4);
    layout->addWidget(m_buttons);

    setAcceptClass(QStringLiteral("accent"));
    m_cancel->setStyleClass(QStringLiteral("cancel"));
    m_accept->setDefault(true);
    connect(m_accept, &PushButton::clicked, this, &ZTDialog::onAccept);
    connect(m_cancel, &PushButton::clicked, this, &ZTDialog::reject);
    connect(this, &QWidget::windowTitleChanged, m_title, &QLabel::setText);
    setTitle(title);
    setMinimumWidth(380);
}

void ZTDialog::setTitle(const QString& title)
{
    m_title->setText(title);
    setWindowTitle(title);
}

QString ZTDialog::title() const
{
    return m_title->text();
}

void ZTDialog::setDescription(const QString& text)
{
    m_description->setText(text);
    m_description->setVisible(!text.isEmpty());
}

QString ZTDialog::description() const
{
    return m_description->text();
}

void ZTDialog::setAcceptText(const QString& text)
{
    m_accept->setText(text);
    m_accept->setVisible(!text.isEmpty());
}

void ZTDialog::setCancelText(const QString& text)
{
    m_cancel->setText(text);
    m_cancel->setVisible(!text.isEmpty());
}

void ZTDialog::setAcceptEnabled(bool enabled)
{
    m_accept->setEnabled(enabled);
}

void ZTDialog::setAcceptClass(const QString& name)
{
    m_accept->setStyleClass(name);
}

void ZTDialog::addButton(PushButton* button)
{
    static_cast<QHBoxLayout*>(m_buttons->layout())->insertWidget(0, button);
}

void ZTDialog::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_title->setObjectName(base + QStringLiteral("-title"));
    m_description->setObjectName(base + QStringLiteral("-description"));
    m_accept->setObjectName(base + QStringLiteral("-accept-button"));
    m_cancel->setObjectName(base + QStringLiteral("-cancel-button"));
}

void ZTDialog::onAccept()
{
    Q_EMIT confirmed();
    if (m_closesOnAccept)
        accept();
}

void ZTDialog::fitToContent()
{
    // adjustSize() would stop at two thirds of the screen, which large texts in a small window need.
    layout()->activate();
    QSize wanted = sizeHint().expandedTo(minimumSize());
    if (layout()->hasHeightForWidth())
        wanted.setHeight(std::max(layout()->totalHeightForWidth(wanted.width()), minimumHeight()));
    resize(wanted.boundedTo(screen()->availableSize() * 9 / 10));
    if (!isVisible())
        return;
    // What has grown goes upwards rather than over the status bar.
    const int beyond = geometry().bottom() - lowestBottom().value_or(geometry().bottom());
    moveOntoScreen(pos() - QPoint(0, std::max(0, beyond)));
}

/// Over a window its status bar stays in sight, unless there is no room for that.
std::optional<int> ZTDialog::lowestBottom() const
{
    constexpr int foot = 48;
    const QWidget* over = parentWidget() ? parentWidget()->window() : nullptr;
    if (!over || !over->isVisible() || qobject_cast<const QDialog*>(over) ||
        height() + foot >= over->frameGeometry().height())
        return std::nullopt;
    return over->frameGeometry().bottom() - foot;
}

/// As near to that place as the screen holds all of it.
void ZTDialog::moveOntoScreen(QPoint place)
{
    const QRect limits = screen()->availableGeometry();
    place.setX(qBound(limits.left(), place.x(), qMax(limits.left(), limits.right() - width())));
    place.setY(qBound(limits.top(), place.y(), qMax(limits.top(), limits.bottom() - height())));
    move(place);
}

/// Who opened it may be disabled, as by a lost link: a dialog that is disabled with it could not be closed,
/// and would lock the window below it.
void ZTDialog::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        setEnabled(true);
}

void ZTDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (event->spontaneous())
        return;
    fitToContent();
    place();
}

void ZTDialog::place()
{
    const QWidget* over = parentWidget() ? parentWidget()->window() : nullptr;
    const bool isOverSome = over && over->isVisible();
    if (m_isBeside && isOverSome && !qobject_cast<const QDialog*>(over)) {
        const int bottom =
            over->mapFromGlobal(QPoint(0, lowestBottom().value_or(over->geometry().bottom()))).y();
        return moveOntoScreen(over->mapToGlobal(uncoveredPlace(*over, size(), bottom)));
    }
    const QRect room = isOverSome ? over->frameGeometry() : screen()->availableGeometry();
    QRect place(QPoint(), size());
    place.moveCenter(room.center());
    if (const auto lowest = lowestBottom())
        place.moveBottom(*lowest);
    moveOntoScreen(place.topLeft());
}

void ZTDialog::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && m_accept->isVisible()) {
        if (m_accept->isEnabled())
            m_accept->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

void ZTDialog::mousePressEvent(QMouseEvent* event)
{
    m_grip =
        event->position().y() <= m_title->geometry().bottom() + 8 ? event->position().toPoint() : QPoint();
    QDialog::mousePressEvent(event);
}

void ZTDialog::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::LeftButton) && !m_grip.isNull())
        move(event->globalPosition().toPoint() - m_grip);
    QDialog::mouseMoveEvent(event);
}

} // namespace vantrel
