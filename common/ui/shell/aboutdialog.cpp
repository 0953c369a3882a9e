#include "common/ui/shell/aboutdialog.h"

#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QSysInfo>
#include <QVBoxLayout>

namespace vantrel {

AboutDialog::AboutDialog(QWidget* parent)
    : ZTDialog(tr("About"), parent)
{
    setObjectNames(QStringLiteral("AboutDialog"));
    setAcceptText(tr("CLOSE"));
    setAcceptClass(QStringLiteral("cancel"));
    setCancelText(QString());

    auto* logo = new QLabel(this);
    logo->setPixmap(IconCache::original(QStringLiteral("zt_logo"), QSize(56, 56), devicePixelRatioF()));
    auto* name = new ZTLabel(QStringLiteral("Halcyra"), this);
    name->setStyleClass(QStringLiteral("display"));
    const QString version = QCoreApplication::applicationVersion();
    auto* number = new ZTLabel(tr("Version %1").arg(version.isEmpty() ? tr("unknown") : version), this);
    number->setObjectName(QStringLiteral("AboutDialog-version"));
    auto* system = new ZTLabel(
        tr("Qt %1 on %2").arg(QString::fromLatin1(qVersion()), QSysInfo::prettyProductName()), this);
    system->setWordWrap(true);
    for (ZTLabel* label : {number, system})
        label->setStyleClass(QStringLiteral("dim"));

    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(name);
    texts->addWidget(number);
    texts->addWidget(system);
    auto* row = new QHBoxLayout;
    row->setSpacing(20);
    row->addWidget(logo, 0, Qt::AlignTop);
    row->addLayout(texts, 1);
    contentLayout()->addLayout(row);
}

} // namespace vantrel
