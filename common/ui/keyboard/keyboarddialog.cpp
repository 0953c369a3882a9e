#include "common/ui/keyboard/keyboarddialog.h"

#include "common/session/settings/keymap.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/keyfield.h"
#include "common/ui/keyboard/keynotice.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int smallestList = 120; // pixels

QString textOf(const QString& action)
{
    const KeyAction* found = findKeyAction(action);
    return found ? found->text : action;
}

QString textOf(const QKeySequence& key)
{
    return keyCaps(key).join(u'+');
}

} // namespace

KeyboardDialog::KeyboardDialog(Hotkeys* hotkeys, QWidget* parent)
    : ZTDialog(tr("Keyboard"), parent)
    , m_hotkeys(hotkeys)
{
    makeSearch();
    makeList();
    m_notice = new KeyNotice(this);
    m_resetAll = new PushButton(tr("RESET ALL"), this);
    contentLayout()->addWidget(m_notice);
    connect(m_notice, &KeyNotice::swapChosen, this, [this] { resolve(true); });
    connect(m_notice, &KeyNotice::takeOverChosen, this, [this] { resolve(false); });
    connect(m_notice, &KeyNotice::keepChosen, this, &KeyboardDialog::keep);
    m_resetAll->setStyleClass(QStringLiteral("cancel"));
    m_resetAll->setToolTip(tr("All actions get back the keys of a new installation"));
    connect(m_resetAll, &QAbstractButton::clicked, this, &KeyboardDialog::confirmResetAll);
    addButton(m_resetAll);
    setTabOrder(m_resetAll, acceptButton());
    setAcceptText(tr("CLOSE"));
    setAcceptClass(QStringLiteral("cancel"));
    setCancelText(QString());
    setObjectNames(QStringLiteral("KeyboardDialog"));
    connect(m_hotkeys, &Hotkeys::mappingChanged, this, &KeyboardDialog::refresh);
    refresh();
    followFontSize(this, [this](FontSize size) { setMinimumWidth(scaled(560, size)); });
}

void KeyboardDialog::makeSearch()
{
    m_search = new ZTEdit(this);
    m_search->setPlaceholderText(tr("Search an action or a key"));
    m_search->setToolTip(tr("Lists the actions whose name, group or key holds the text"));
    m_search->setAccessibleName(tr("Search the keys"));
    m_search->setClearButtonEnabled(true);
    m_search->setEscapeClears(true);
    m_search->addAction(tintedIcon(QStringLiteral("search")), QLineEdit::LeadingPosition);
    m_search->installEventFilter(this);
    connect(m_search, &QLineEdit::textChanged, this, &KeyboardDialog::filter);
    contentLayout()->addWidget(m_search);
}

void KeyboardDialog::makeList()
{
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 12, 0);
    column->setSpacing(4);
    QString group;
    for (const KeyAction& action : keyActions()) {
        if (action.group != group) {
            group = action.group;
            auto* title = new ZTLabel(group, page);
            title->setStyleClass(QStringLiteral("section"));
            title->setContentsMargins(0, m_groups.isEmpty() ? 0 : 12, 0, 0);
            column->addWidget(title);
            m_groups.append({title, static_cast<int>(m_rows.size()), 0});
        }
        addRow(page, action.name, action.text);
        ++m_groups.last().count;
    }
    m_nothing = new ZTLabel(page);
    m_nothing->setStyleClass(QStringLiteral("dim"));
    m_nothing->setWordWrap(true);
    m_nothing->hide();
    column->addWidget(m_nothing);
    column->addStretch(1);
    m_area = new QScrollArea(this);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setFocusPolicy(Qt::NoFocus);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_area->setWidgetResizable(true);
    m_area->setWidget(page);
    contentLayout()->addWidget(m_area, 1);
}

void KeyboardDialog::addRow(QWidget* page, const QString& action, const QString& text)
{
    auto* line = new QWidget(page);
    auto* label = new ZTLabel(text, line);
    auto* field = new KeyField(line);
    auto* reset = new IconButton(QStringLiteral("undo"), {}, line);
    label->setBuddy(field);
    field->setToolTip(tr("Change the key of \"%1\"").arg(text));
    reset->setAccessibleName(tr("Reset the key of \"%1\"").arg(text));
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(8, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(label, 1);
    layout->addWidget(field);
    layout->addWidget(reset);
    page->layout()->addWidget(line);
    m_rows.append({action, line, field, reset});
    connect(field, &KeyField::keyPressed, this,
            [this, action](const QKeySequence& key) { onKey(action, key); });
    connect(field, &KeyField::recordingChanged, this, [this](bool recording) {
        if (recording && m_notice->isAsking())
            endQuestion(); // another key for one of the two
        else if (!m_notice->isAsking())
            m_notice->showHint();
    });
    connect(field, &KeyField::moveRequested, this, [this, field](int step) { moveFocus(field, step); });
    connect(reset, &QAbstractButton::clicked, this, [this, action] { resetRow(action); });
}

KeyboardDialog::Row* KeyboardDialog::row(const QString& action)
{
    const auto found = std::ranges::find(m_rows, action, &Row::action);
    return found == m_rows.end() ? nullptr : &*found;
}

void KeyboardDialog::refresh()
{
    const QMap<QString, QVariant> defaults = defaultKeymap();
    bool isChanged = false;
    for (const Row& row : std::as_const(m_rows)) {
        const QKeySequence key = m_hotkeys->mapping(row.action);
        const auto preset = defaults.value(row.action).value<QKeySequence>();
        const bool differs = key != preset;
        isChanged = isChanged || differs;
        row.field->setKey(key);
        row.field->setAccessibleName(
            tr("%1: %2").arg(textOf(row.action), key.isEmpty() ? tr("no key") : textOf(key)));
        row.reset->setEnabled(differs);
        row.reset->setToolTip(differs ? tr("Back to %1").arg(textOf(preset))
                                      : tr("As in a new installation"));
    }
    m_resetAll->setEnabled(isChanged);
}

void KeyboardDialog::filter(const QString& text)
{
    const QString wanted = text.trimmed();
    bool anything = false;
    for (const Group& group : std::as_const(m_groups)) {
        bool inGroup = false;
        for (const Row& row : m_rows.sliced(group.first, group.count)) {
            const KeyAction* action = findKeyAction(row.action);
            const QStringList texts{action->text, action->group, textOf(m_hotkeys->mapping(row.action))};
            const bool isShown = std::ranges::any_of(texts, [&wanted](const QString& candidate) {
                return candidate.contains(wanted, Qt::CaseInsensitive);
            });
            row.line->setVisible(isShown);
            inGroup = inGroup || isShown;
        }
        group.title->setVisible(inGroup);
        anything = anything || inGroup;
    }
    m_nothing->setText(tr("No action and no key holds \"%1\".").arg(wanted));
    m_nothing->setVisible(!anything);
    m_area->verticalScrollBar()->setValue(0);
}

void KeyboardDialog::onKey(const QString& action, const QKeySequence& key)
{
    Row* changed = row(action);
    if (const QString reason = reservedKeyReason(action, key); !reason.isEmpty()) {
        m_notice->showRefusal(tr("%1 Press another key, or Esc.").arg(reason));
        return;
    }
    changed->field->setRecording(false);
    if (const KeyAction* holder = keyHolder(m_hotkeys->keymap(), key, action))
        askAbout(action, holder->name, key);
    else
        assign(action, key);
}

void KeyboardDialog::assign(const QString& action, const QKeySequence& key)
{
    m_hotkeys->remap(action, key);
    m_hotkeys->saveKeymap();
    m_notice->showDone(key.isEmpty() ? tr("\"%1\" has no key now.").arg(textOf(action))
                                     : tr("\"%1\" is on %2 now.").arg(textOf(action), textOf(key)));
}

void KeyboardDialog::askAbout(const QString& action, const QString& holder, const QKeySequence& key)
{
    m_conflict = {action, holder, key};
    const QKeySequence old = m_hotkeys->mapping(action);
    const bool canSwap = !old.isEmpty() && reservedKeyReason(holder, old).isEmpty();
    const QString choice = canSwap ? tr("Swap the two, or take it over and leave that without a key?")
                                   : tr("Take it over and leave that without a key?");
    m_notice->ask(tr("%1 belongs to \"%2\". %3").arg(textOf(key), textOf(holder), choice), canSwap);
    for (const Row& row : std::as_const(m_rows))
        row.line->setEnabled(row.action == action || row.action == holder); // one question at a time
    m_area->ensureWidgetVisible(row(holder)->line);
    m_search->setEnabled(false);
    m_resetAll->setEnabled(false);
}

void KeyboardDialog::resolve(bool swap)
{
    const Conflict conflict = std::exchange(m_conflict, {});
    const QKeySequence old = m_hotkeys->mapping(conflict.action);
    m_hotkeys->remap(conflict.holder, swap ? old : QKeySequence());
    m_hotkeys->remap(conflict.action, conflict.key);
    m_hotkeys->saveKeymap();
    keep();
    row(conflict.action)->field->setFocus(Qt::TabFocusReason);
    const QString first = tr("\"%1\" is on %2 now").arg(textOf(conflict.action), textOf(conflict.key));
    m_notice->showDone(swap ? tr("%1, \"%2\" on %3.").arg(first, textOf(conflict.holder), textOf(old))
                            : tr("%1, \"%2\" has no key.").arg(first, textOf(conflict.holder)));
}

void KeyboardDialog::endQuestion()
{
    m_conflict = {};
    for (const Row& row : std::as_const(m_rows))
        row.line->setEnabled(true);
    m_search->setEnabled(true);
    m_notice->showHint();
    refresh();
}

void KeyboardDialog::keep()
{
    const QString action = m_conflict.action;
    endQuestion();
    if (const Row* asked = row(action))
        asked->field->setFocus(Qt::TabFocusReason);
}

void KeyboardDialog::resetRow(const QString& action)
{
    endQuestion();
    row(action)->field->setFocus(Qt::TabFocusReason); // the button goes grey
    const auto preset = defaultKeymap().value(action).value<QKeySequence>();
    if (const KeyAction* holder = keyHolder(m_hotkeys->keymap(), preset, action))
        askAbout(action, holder->name, preset);
    else
        assign(action, preset);
}

void KeyboardDialog::confirmResetAll()
{
    auto* dialog = new ConfirmationDialog(
        tr("Reset all keys?"), tr("All actions get back the keys of a new installation. Your own are lost."),
        tr("RESET"), this);
    dialog->setObjectNames(QStringLiteral("KeyboardDialog-reset-all"));
    dialog->setAcceptClass(QStringLiteral("red"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &ZTDialog::confirmed, this, [this] {
        m_hotkeys->setDefaults();
        m_hotkeys->saveKeymap();
        m_search->setFocus();
        m_notice->showDone(tr("All keys are those of a new installation."));
    });
    dialog->open();
}

void KeyboardDialog::moveFocus(KeyField* from, int step)
{
    const auto start = std::ranges::find(m_rows, from, &Row::field) - m_rows.begin();
    for (auto i = start + step; i >= 0 && i < m_rows.size(); i += step) {
        if (!m_rows[i].line->isHidden()) {
            m_rows[i].field->setFocus(Qt::TabFocusReason);
            m_area->ensureWidgetVisible(m_rows[i].line);
            return;
        }
    }
    if (step < 0)
        m_search->setFocus(Qt::TabFocusReason);
}

bool KeyboardDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_search && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
            const auto first =
                std::ranges::find_if(m_rows, [](const Row& row) { return !row.line->isHidden(); });
            if (first != m_rows.end())
                first->field->setFocus(Qt::TabFocusReason);
            return true;
        }
    }
    return ZTDialog::eventFilter(watched, event);
}

/// As high as the list, where the window over which it opens has room for that. A question takes its room
/// from the list then.
void KeyboardDialog::showFitting(QShowEvent* event)
{
    const QWidget* over = parentWidget() ? parentWidget()->window() : nullptr;
    const int height = over && over->isVisible() ? over->height() : screen()->availableSize().height();
    // It does not scroll sideways: whatever the font, the rows fit.
    m_area->setMinimumWidth(m_area->widget()->minimumSizeHint().width() +
                            m_area->verticalScrollBar()->sizeHint().width());
    m_area->setMinimumHeight(smallestList);
    layout()->activate();
    const int others = layout()->totalSizeHint().height() - m_area->sizeHint().height();
    m_area->setMinimumHeight(
        qBound(smallestList, height * 9 / 10 - others, m_area->widget()->sizeHint().height()));
    ZTDialog::showEvent(event);
    m_area->setMinimumHeight(smallestList);
    if (const int most = height * 9 / 10; this->height() > most)
        resize(width(), most); // texts that wrap count for more than they take
}

void KeyboardDialog::showEvent(QShowEvent* event)
{
    if (event->spontaneous()) {
        ZTDialog::showEvent(event);
        return;
    }
    m_search->clear();
    keep();
    m_search->setFocus();
    showFitting(event);
}

void KeyboardDialog::setObjectNames(const QString& base)
{
    ZTDialog::setObjectNames(base);
    m_search->setObjectNames(base + QStringLiteral("-search"));
    m_area->setObjectName(base + QStringLiteral("-scroll-area"));
    m_nothing->setObjectName(base + QStringLiteral("-nothing"));
    m_notice->setObjectNames(base + QStringLiteral("-notice"));
    m_resetAll->setObjectName(base + QStringLiteral("-reset-all-button"));
    for (const Row& row : std::as_const(m_rows)) {
        row.line->setObjectName(base + u'-' + row.action);
        row.field->setObjectName(base + u'-' + row.action + QStringLiteral("-key"));
        row.reset->setObjectName(base + u'-' + row.action + QStringLiteral("-reset-button"));
    }
}

} // namespace vantrel
