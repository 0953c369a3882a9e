#include "common/ui/shell/showprogress.h"

#include "common/ui/shell/showservice.h"
#include "common/ui/toolkit/ztdialog.h"

#include <QNetworkReply>
#include <QTimer>

namespace vantrel {

namespace {

constexpr int moment = 300; // milliseconds for which nobody asks what is going on

} // namespace

ShowProgress::ShowProgress(QWidget* window)
    : QObject(window)
    , m_window(window)
{
}

void ShowProgress::follow(QNetworkReply* reply, const QString& title, const QString& text)
{
    if (!reply)
        return;
    auto* soon = new QTimer(reply);
    soon->setSingleShot(true);
    connect(soon, &QTimer::timeout, this, [this, reply, title, text] { open(reply, title, text); });
    connect(reply, &QNetworkReply::finished, soon, &QTimer::stop);
    soon->start(moment);
}

void ShowProgress::open(QNetworkReply* reply, const QString& title, const QString& text)
{
    auto* dialog = new ZTDialog(title, m_window);
    dialog->setObjectNames(QStringLiteral("ShowProgressDialog"));
    dialog->setDescription(text);
    dialog->setAcceptText({});
    dialog->setCancelText(tr("CANCEL"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAttribute(Qt::WA_ShowWithoutActivating); // the keys stay with the show
    connect(dialog, &QDialog::rejected, reply, [reply] { ShowService::stop(reply); });
    connect(reply, &QNetworkReply::finished, dialog, &QDialog::accept);
    dialog->show();
}

} // namespace vantrel
