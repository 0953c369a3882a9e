#include "common/outputs/modekeeper.h"

#include "common/outputs/outputmodel.h"
#include "common/outputs/outputtexts.h"
#include "common/ui/toolkit/confirmationdialog.h"

#include <QApplication>

namespace vantrel {

namespace {

constexpr int serverTakes = 5000; // milliseconds at most from the wish to the new mode

} // namespace

ModeKeeper::ModeKeeper(int outputNumber, OutputModel* model, QWidget* parent)
    : QObject(parent)
    , m_outputNumber(outputNumber)
    , m_model(model)
    , m_parent(parent)
{
    connect(model, &OutputModel::modeAsked, this, [this] { m_sinceAsked.start(); });
    connect(model, &OutputModel::dataChanged, this, &ModeKeeper::follow);
}

void ModeKeeper::follow()
{
    const bool waits = m_model->confirmSeconds() > 0;
    if (!waits && m_dialog)
        giveUp();
    else if (m_dialog)
        m_dialog->setDescription(question());
    else if (waits && m_sinceAsked.isValid() && m_sinceAsked.elapsed() < serverTakes)
        ask();
}

/// Over the dialog in which the mode was chosen, where that stays open.
void ModeKeeper::ask()
{
    m_sinceAsked.invalidate();
    QWidget* over = QApplication::activeModalWidget();
    m_dialog = new ConfirmationDialog(tr("Keep this video mode?"), question(), tr("KEEP"),
                                      over ? over : m_parent->window());
    m_dialog->setCancelText(tr("GO BACK"));
    m_dialog->setObjectNames(QStringLiteral("KeepModeDialog"));
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setBeside();
    connect(m_dialog, &ConfirmationDialog::confirmed, m_model, &OutputModel::keepMode);
    connect(m_dialog, &ConfirmationDialog::rejected, m_model, &OutputModel::revertMode);
    m_dialog->open();
}

void ModeKeeper::giveUp()
{
    m_sinceAsked.invalidate();
    if (m_dialog)
        m_dialog->done(ConfirmationDialog::Accepted); // nothing is to be sent
}

QString ModeKeeper::question() const
{
    const auto value = [this](int column) { return m_model->index(0, column).data(); };
    const auto together = [](QString text) { return text.replace(u' ', QChar::Nbsp); };
    const int seconds = m_model->confirmSeconds();
    return tr("Output %1, which the audience sees, shows %2 at %3. It goes back by itself in %4.")
        .arg(m_outputNumber)
        .arg(together(
                 sizeText(value(OutputModel::WidthColumn).toInt(), value(OutputModel::HeightColumn).toInt())),
             together(value(OutputModel::FieldFrequencyColumn).toString()),
             together(seconds == 1 ? tr("1 second") : tr("%1 seconds").arg(seconds)));
}

} // namespace vantrel
