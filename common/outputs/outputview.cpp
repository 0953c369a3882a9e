#include "common/outputs/outputview.h"

#include "common/command/execute.h"
#include "common/command/invokemethodcommand.h"
#include "common/outputs/audiooutputitem.h"
#include "common/outputs/outputcolumn.h"
#include "common/outputs/outputitem.h"
#include "common/outputs/outputmodel.h"
#include "common/outputs/outputslogging.h"
#include "common/session/link/linkhealth.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/session.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/accordion.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/contextmenubutton.h"
#include "common/ui/toolkit/ztlabel.h"
#include "common/ui/toolkit/ztmenu.h"
#include "tarn/scene/object.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

namespace vantrel {

OutputView::OutputView(Session* session, QWidget* parent)
    : ZTFrame(parent)
    , m_session(session)
    , m_menu(new ZTMenu(this))
{
    setObjectName(QStringLiteral("PlayerTab-outputs-widget"));
    setProperty("class", QStringLiteral("panel"));
    auto* items = new Accordion(this);
    for (std::size_t i = 0; i < m_outputs.size(); ++i) {
        m_outputs[i] = new OutputItem(static_cast<int>(i), session, items);
        items->addPanel(m_outputs[i]);
    }
    items->addPanel(new AudioOutputItem(session, items));
    m_items = items;
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Expanding);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeTitleRow());
    layout->addWidget(makeScrollArea(items, this), 1);
    followFontSize(this, [this](FontSize size) { updateMinimumWidth(size); });
    connect(session, &Session::connected, this, &OutputView::updateUsable);
    connect(session, &Session::disconnected, this, &OutputView::updateUsable);
    connect(session->linkHealth(), &LinkHealth::changed, this, &OutputView::updateUsable);
    updateUsable();
}

QWidget* OutputView::makeTitleRow()
{
    auto* row = new QWidget(this);
    auto* button = new ContextMenuButton(row);
    button->setObjectName(QStringLiteral("PlayerTab-outputs-menu-button"));
    button->setToolTip(tr("More for all outputs"));
    button->setAccessibleName(tr("More for all outputs"));
    button->setContextMenu(m_menu);
    m_menu->setObjectNames(QStringLiteral("PlayerTab-outputs-menu"));
    QAction* reset = m_menu->addEntry(QStringLiteral("undo"), tr("Reset to defaults"));
    reset->setObjectName(QStringLiteral("PlayerTab-outputs-ResetToDefaults-action"));
    connect(reset, &QAction::triggered, this, &OutputView::confirmReset);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makeColumnTitle(tr("Properties"), row), 1);
    layout->addWidget(button);
    return row;
}

OutputModel* OutputView::model(int output) const
{
    return m_outputs[static_cast<std::size_t>(output)]->model();
}

void OutputView::showContextMenu()
{
    m_menu->popup(QCursor::pos());
}

void OutputView::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
    showContextMenu();
}

/// It changes what is on air.
void OutputView::confirmReset()
{
    auto* dialog = new ConfirmationDialog(
        tr("Reset to defaults"),
        tr("Targets, formats, scaling, backgrounds and EDID files of all outputs are set back, and the "
           "program output changes at once. A video mode of program goes back by itself unless you keep it. "
           "Do you want to continue?"),
        tr("RESET"), window());
    dialog->setObjectNames(QStringLiteral("ResetOutputsDialog"));
    dialog->setAcceptClass(QStringLiteral("red"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &ZTDialog::confirmed, this, &OutputView::resetOutputs);
    dialog->open();
}

void OutputView::resetOutputs()
{
    const QModelIndex system = m_session->objectTreeModel()->index(QStringLiteral("/device/system"));
    if (!execute<InvokeMethodCommand>(m_session->getQUndoStack(), "resetOutputConfiguration command",
                                      system.data(ObjectTreeModel::ObjectRole).value<Object*>(),
                                      QStringLiteral("resetOutputConfiguration"), VariantMap(),
                                      tr("Reset outputs")))
        return;
    for (const OutputItem* output : m_outputs)
        Q_EMIT output->model()->modeAsked(); // it may set another one on air
}

/// What is set while nobody hears it would only look set.
void OutputView::updateUsable()
{
    const bool isUsable = m_session->isReachable();
    m_items->setEnabled(isUsable);
    for (QAction* action : m_menu->actions()) // the menu itself opens, and shows what there is
        action->setEnabled(isUsable);
}

void OutputView::updateMinimumWidth(FontSize size)
{
    setMinimumWidth(outputColumnWidth(size));
}

} // namespace vantrel
