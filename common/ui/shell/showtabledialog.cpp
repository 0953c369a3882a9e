#include "common/ui/shell/showtabledialog.h"

#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHeaderView>
#include <QScreen>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

ShowTableDialog::ShowTableDialog(const QString& title, const QStringList& headers, const QString& accept,
                                 QWidget* parent)
    : ZTDialog(title, parent)
    , m_model(new ShowTableModel(headers, this))
    , m_pages(new QStackedWidget(this))
    , m_table(new QTableView(m_pages))
    , m_text(new ZTLabel(m_pages))
{
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->setAccessibleName(title);
    m_table->verticalHeader()->hide();
    QHeaderView* header = m_table->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setStretchLastSection(true);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setHighlightSections(false);
    m_text->setStyleClass(QStringLiteral("dim"));
    m_text->setWordWrap(true);
    m_text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_pages->addWidget(m_table);
    m_pages->addWidget(m_text);
    contentLayout()->addWidget(m_pages, 1);
    setAcceptText(accept);
    setCancelText(tr("CANCEL"));
    followFontSize(this, [this](FontSize size) {
        setMinimumWidth(scaled(760, size));
        m_pages->setMinimumHeight(scaled(240, size));
    });
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ShowTableDialog::updateChoice);
    connect(m_model, &QAbstractItemModel::modelReset, this, &ShowTableDialog::updateChoice);
    connect(m_table, &QTableView::doubleClicked, this, [this] {
        if (acceptButton()->isEnabled())
            acceptButton()->click();
    });
    connect(this, &ZTDialog::confirmed, this, [this] { Q_EMIT accepted(chosen()); });
    updateChoice();
}

void ShowTableDialog::openWaiting(const QString& text)
{
    setText(text);
    open();
}

void ShowTableDialog::setText(const QString& text)
{
    m_model->setRows({});
    m_text->setText(text);
    m_pages->setCurrentWidget(m_text);
}

void ShowTableDialog::setRows(const QList<ShowTableModel::Row>& rows, const QString& empty)
{
    const QString before = selected();
    m_model->setRows(rows);
    m_text->setText(empty);
    m_pages->setCurrentWidget(rows.isEmpty() ? static_cast<QWidget*>(m_text) : m_table);
    for (int row = 0; row < rows.size(); ++row) {
        if (row == 0 || rows[row].id == before)
            m_table->setCurrentIndex(m_model->index(row, 0));
    }
    if (rows.isEmpty())
        return;
    m_table->setFocus();
    // As wide as what it tells, where the screen is.
    const QHeaderView* header = m_table->horizontalHeader();
    const int last = m_model->columnCount() - 1;
    const QAbstractItemView* view = m_table;
    const int wanted = header->sectionPosition(last) + view->sizeHintForColumn(last) +
                       m_table->verticalScrollBar()->sizeHint().width() + 2 * m_table->frameWidth();
    m_pages->setMinimumWidth(std::min(wanted, screen()->availableSize().width() * 4 / 5));
    fitToContent();
    place();
}

void ShowTableDialog::addChoice(PushButton* button)
{
    addButton(button);
    m_choices.append(button);
    updateChoice();
}

const ShowTableModel::Row* ShowTableDialog::selectedRow() const
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    return rows.isEmpty() ? nullptr : &m_model->rows()[rows.first().row()];
}

QString ShowTableDialog::chosen() const
{
    const ShowTableModel::Row* row = selectedRow();
    return row && row->fault.isEmpty() ? row->id : QString();
}

QString ShowTableDialog::selected() const
{
    const ShowTableModel::Row* row = selectedRow();
    return row ? row->id : QString();
}

void ShowTableDialog::updateChoice()
{
    setAcceptEnabled(!chosen().isEmpty());
    for (PushButton* button : std::as_const(m_choices))
        button->setEnabled(!selected().isEmpty());
}

void ShowTableDialog::setObjectNames(const QString& base)
{
    ZTDialog::setObjectNames(base);
    m_table->setObjectName(base + QStringLiteral("-view"));
    m_text->setObjectName(base + QStringLiteral("-text"));
}

} // namespace vantrel
