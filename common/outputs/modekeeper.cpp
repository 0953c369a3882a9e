#include "common/outputs/modekeeper.h"

#include "common/outputs/outputmodel.h"
#include "common/outputs/outputtexts.h"
#include "common/ui/toolkit/confirmationdialog.h"

#include <QApplication>

#include <utility>

namespace vantrel {

namespace {

constexpr int serverWaits =
    20000; // milliseconds: the 15 s that it gives, and what the wish takes to get there
constexpr int serverTakes = 2000; // milliseconds at most from an answer to what the server makes of it

bool isWithin(const QElapsedTimer& since, int time)
{
    return since.isValid() && since.elapsed() < time;
}

} // namespace

ModeKeeper::ModeKeeper(int outputNumber, OutputModel* model, std::function<bool()> isHeard, QWidget* parent)
    : QObject(parent)
    , m_outputNumber(outputNumber)
    , m_model(model)
    , m_parent(parent)
    , m_isHeard(std::move(isHeard))
{
    connect(model, &OutputModel::modeAsked, this, [this] {
        m_sinceAsked.start();
        m_sinceAnswered.invalidate();
    });
    connect(model, &OutputModel::dataChanged, this, &ModeKeeper::follow);
}

void ModeKeeper::follow()
{
    const bool isOpen = m_model->confirmSeconds() > 0;
    if (std::exchange(m_wasOpen, isOpen) && !isOpen && m_sinceAnswered.isValid())
        m_sinceAsked.invalidate(); // decided here: the next one is for who asks for it
    const bool waits = isOpen && m_isHeard();
    if (!waits)
        close();
    else if (m_dialog)
        m_dialog->setDescription(question());
    else if (isWithin(m_sinceAsked, serverWaits) && !isWithin(m_sinceAnswered, serverTakes))
        ask();
}

/// Over the dialog in which the mode was chosen, where that stays open.
void ModeKeeper::ask()
{
    QWidget* over = QApplication::activeModalWidget();
    m_dialog = new ConfirmationDialog(tr("Keep this video mode?"), question(), tr("KEEP"),
                                      over ? over : m_parent->window());
    m_dialog->setCancelText(tr("GO BACK"));
    m_dialog->setObjectNames(QStringLiteral("KeepModeDialog"));
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setBeside();
    connect(m_dialog, &ConfirmationDialog::confirmed, this, [this] { answer(m_model->keepMode()); });
    connect(m_dialog, &ConfirmationDialog::rejected, this, [this] { answer(m_model->revertMode()); });
    m_dialog->open();
}

/// One that did not go out leaves the question open: it is asked again while there is time.
void ModeKeeper::answer(bool isSent)
{
    if (isSent)
        m_sinceAnswered.start();
}

void ModeKeeper::close()
{
    if (m_dialog)
        m_dialog->done(ConfirmationDialog::Accepted); // nothing is to be sent
}

QString ModeKeeper::question() const
{
    const auto value = [this](int column) { return m_model->index(0, column).data(); };
    const auto together = [](QString text) { return text.replace(u' ', QChar::Nbsp); };
    const int seconds = m_model->confirmSeconds();
    const bool isPreview = value(OutputModel::TargetColumn).toString() == QStringLiteral("preview");
    return (isPreview
                ? tr("Output %1 shows %2 at %3. It goes back by itself in %4.")
                : tr("Output %1, which the audience sees, shows %2 at %3. It goes back by itself in %4."))
        .arg(m_outputNumber)
        .arg(together(
                 sizeText(value(OutputModel::WidthColumn).toInt(), value(OutputModel::HeightColumn).toInt())),
             together(value(OutputModel::FieldFrequencyColumn).toString()),
             together(seconds == 1 ? tr("1 second") : tr("%1 seconds").arg(seconds)));
}

} // namespace vantrel
