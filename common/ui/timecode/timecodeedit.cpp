#include "common/ui/timecode/timecodeedit.h"

#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLoggingCategory>
#include <QMouseEvent>
#include <QStackedWidget>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(lcTimecode, "vantrel.timecode")

constexpr ClockTime hourMs = 3600000;
constexpr ClockTime minuteMs = 60000;
constexpr ClockTime secondMs = 1000;
constexpr ClockTime longest = 359999999; // 99:59:59.999
constexpr int editExtraWidth = 20;       // pixels, room for the cursor and a digit more

QString padded(ClockTime value, int digits)
{
    return QStringLiteral("%1").arg(value, digits, 10, QLatin1Char('0'));
}

} // namespace

TimecodeEdit::TimecodeEdit(QWidget* parent)
    : QFrame(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Time"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(1);
    addField(Hours, 99);
    layout->addWidget(new ZTLabel(QStringLiteral(":"), this));
    addField(Minutes, 59);
    layout->addWidget(new ZTLabel(QStringLiteral(":"), this));
    addField(Seconds, 59);
    m_fractionSeparator = new ZTLabel(QStringLiteral("."), this);
    layout->addWidget(m_fractionSeparator);
    addField(Fraction, 999);
    resetTime(m_timecode, m_decimals, true);
    // Fields begin as labels, once whatever opened them during construction is over.
    QTimer::singleShot(0, this, [this] { stopEditing(false); });
}

TimecodeEdit::~TimecodeEdit()
{
    // An open field loses the focus while it is destroyed, and would tell of it.
    for (const ValueWidgets& field : std::as_const(m_fields))
        field.edit->disconnect(this);
}

void TimecodeEdit::addField(ValueType type, int maximum)
{
    ValueWidgets field;
    field.stack = new QStackedWidget(this);
    field.label = new ZTLabel(QStringLiteral("00"), field.stack);
    field.label->setAlignment(Qt::AlignCenter);
    field.edit = new ZTEdit(field.stack);
    auto* validator = new QIntValidator(0, maximum, field.edit);
    field.edit->setValidator(validator);
    field.edit->setMaxLength(3);
    field.edit->setInputMethodHints(Qt::ImhDigitsOnly);
    field.edit->setStyleSheet(QStringLiteral("padding: 0; min-height: 0;"));
    field.edit->setFocusPolicy(Qt::ClickFocus);
    if (type == Fraction)
        m_fractionValidator = validator;
    field.stack->addWidget(field.label);
    field.stack->addWidget(field.edit);
    field.stack->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    layout()->addWidget(field.stack);
    m_fields.insert(type, field);

    connect(field.label, &ZTLabel::mouseDoubleClicked, this, &TimecodeEdit::handleEditingRequest);
    connect(field.edit, &QLineEdit::editingFinished, this, [this] { stopEditing(true); });
    connect(field.edit, &QLineEdit::inputRejected, this, [this] { stopEditing(false); });
    field.edit->installEventFilter(this);
    setEditMode(type, false);
}

void TimecodeEdit::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_fields[Hours].edit->setObjectName(base + QStringLiteral("-Hours"));
    m_fields[Minutes].edit->setObjectName(base + QStringLiteral("-Minutes"));
    m_fields[Seconds].edit->setObjectName(base + QStringLiteral("-Seconds"));
    m_fields[Fraction].edit->setObjectName(base + QStringLiteral("-Fraction"));
    for (const ValueWidgets& field : std::as_const(m_fields))
        field.label->setObjectName(field.edit->objectName() + QStringLiteral("Label"));
}

void TimecodeEdit::setTimecode(const ClockTime& timecode)
{
    resetTime(timecode, m_decimals);
}

void TimecodeEdit::setDecimals(std::size_t decimals)
{
    resetTime(m_timecode, decimals);
}

void TimecodeEdit::setMinTimecode(ClockTime timecode)
{
    m_minTimecode = timecode;
    Q_EMIT minTimecodeChanged();
    resetTime(m_timecode, m_decimals);
}

void TimecodeEdit::setMaxTimecode(ClockTime timecode)
{
    const ClockTime limited = std::max(std::min(timecode, longest), m_minTimecode);
    if (limited == m_maxTimecode)
        return;
    m_maxTimecode = limited;
    Q_EMIT maxTimecodeChanged();
    resetTime(m_timecode, m_decimals);
}

void TimecodeEdit::resetTime(ClockTime timecode, std::size_t decimals, bool force)
{
    decimals = std::min<std::size_t>(decimals, 3);
    const ClockTime limited = std::max(std::min(timecode, m_maxTimecode), m_minTimecode);
    if (force || limited != m_timecode) {
        m_timecode = limited;
        Q_EMIT timecodeChanged();
    }
    if (force || decimals != m_decimals) {
        m_decimals = decimals;
        m_fractionValidator->setTop(static_cast<int>(secondMs / fractionUnit()) - 1);
        m_fields[Fraction].edit->setMaxLength(static_cast<int>(m_decimals));
        Q_EMIT decimalsChanged();
    }
    updateLabels();
    m_fractionSeparator->setVisible(m_decimals != 0);
    m_fields[Fraction].stack->setVisible(m_decimals != 0);
}

ClockTime TimecodeEdit::fractionUnit() const
{
    ClockTime unit = secondMs;
    for (std::size_t i = 0; i < m_decimals; ++i)
        unit /= 10;
    return unit;
}

void TimecodeEdit::updateLabels()
{
    m_fields[Hours].label->setText(padded(m_timecode / hourMs, 2));
    m_fields[Minutes].label->setText(padded(m_timecode % hourMs / minuteMs, 2));
    m_fields[Seconds].label->setText(padded(m_timecode % minuteMs / secondMs, 2));
    m_fields[Fraction].label->setText(
        padded(m_timecode % secondMs / fractionUnit(), static_cast<int>(m_decimals)));
    for (const ValueType type : {Hours, Minutes, Seconds, Fraction})
        setEditMode(type, m_editing == type);
}

void TimecodeEdit::setEditMode(ValueType type, bool editing)
{
    const ValueWidgets& field = m_fields[type];
    field.label->ensurePolished();
    const int extra = editing ? editExtraWidth : 0;
    field.stack->setFixedSize(field.label->sizeHint().width() + extra, field.label->sizeHint().height() + 4);
    field.stack->setCurrentWidget(editing ? static_cast<QWidget*>(field.edit) : field.label);
}

void TimecodeEdit::startEditing(ValueType type)
{
    if (m_editing == type || (type == Fraction && m_decimals == 0))
        return;
    stopEditing(false);
    m_editing = type;
    const ValueWidgets& field = m_fields[type];
    field.edit->setText(field.label->text());
    setEditMode(type, true);
    field.edit->setFocus(Qt::OtherFocusReason);
    field.edit->selectAll();
}

void TimecodeEdit::stopEditing(bool accept)
{
    // Leaving edit mode takes the focus, which comes back here: the field is no longer edited by then.
    const std::optional<ValueType> edited = std::exchange(m_editing, std::nullopt);
    for (const ValueType type : {Hours, Minutes, Seconds, Fraction})
        setEditMode(type, false);
    if (!accept || !edited)
        return;
    const ClockTime before = m_timecode;
    const ClockTime after = withField(*edited, m_fields[*edited].edit->text().toInt());
    qCDebug(lcTimecode) << "New timecode value is accepted:" << after << "old:" << before;
    resetTime(after, m_decimals, false);
    Q_EMIT timecodeEdited();
}

ClockTime TimecodeEdit::withField(ValueType type, ClockTime value) const
{
    switch (type) {
    case Hours: {
        const ClockTime hours = m_timecode / hourMs;
        return m_timecode + (value - hours % 100) * hourMs;
    }
    case Minutes:
        return m_timecode + (value - m_timecode % hourMs / minuteMs) * minuteMs;
    case Seconds:
        return m_timecode + (value - m_timecode % minuteMs / secondMs) * secondMs;
    default:
        return m_decimals == 0 ? m_timecode : m_timecode - m_timecode % secondMs + value * fractionUnit();
    }
}

void TimecodeEdit::handleEditingRequest()
{
    for (auto field = m_fields.cbegin(); field != m_fields.cend(); ++field) {
        if (field->label == sender()) {
            startEditing(field.key());
            return;
        }
    }
}

bool TimecodeEdit::moveEditing(ValueType from, bool forward)
{
    const int last = m_decimals == 0 ? Seconds : Fraction;
    const int next = from + (forward ? 1 : -1);
    if (next < Hours || next > last)
        return false;
    stopEditing(true);
    startEditing(static_cast<ValueType>(next));
    return true;
}

bool TimecodeEdit::eventFilter(QObject* watched, QEvent* event)
{
    if (m_editing && watched == m_fields[*m_editing].edit) {
        if (event->type() == QEvent::FocusOut) {
            stopEditing(false);
        } else if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Tab || key == Qt::Key_Backtab)
                return moveEditing(*m_editing, key == Qt::Key_Tab);
            const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
            if (key == Qt::Key_Escape || (isReturn && m_fields[*m_editing].edit->hasAcceptableInput())) {
                // Kept from this widget itself, which Return would make open a field again.
                stopEditing(isReturn);
                setFocus(Qt::OtherFocusReason);
                return true;
            }
        }
    }
    return QFrame::eventFilter(watched, event);
}

void TimecodeEdit::changeEvent(QEvent* event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        stopEditing(false); // also in a window that has no focus to lose
    if (event->type() != QEvent::StyleChange && event->type() != QEvent::FontChange)
        return;
    // Later: the fields, whose size is that of their digits, hear of the new font after this widget.
    QTimer::singleShot(0, this, [this] {
        for (auto field = m_fields.cbegin(); field != m_fields.cend(); ++field)
            setEditMode(field.key(), m_editing == field.key());
    });
}

void TimecodeEdit::mousePressEvent(QMouseEvent* event)
{
    event->accept(); // it gave the focus, which the window would take away again
}

void TimecodeEdit::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (!m_editing && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2))
        startEditing(Seconds);
    else
        QFrame::keyPressEvent(event);
}

} // namespace vantrel
