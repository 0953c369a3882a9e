#include "ombra/show/showfolder.h"

#include "ombra/show/showfile.h"
#include "tarn/media/medialibrary.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel;
using namespace vantrel::ombra;

class ShowFolderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A clock that was set back, or begins in 1970 at each start, takes no copy that was just made.
    void keepsTheNewestCopyWhateverTheClockSays()
    {
        const QTemporaryDir folder;
        const std::string show =
            showfile::textOf(showfile::make(MediaLibrary().toJson(), Json::object(), Json::array()));
        QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("earlier")));
        const auto put = [&](const QString& id) {
            QFile file(folder.filePath(QStringLiteral("earlier/%1.show").arg(id)));
            return file.open(QIODevice::WriteOnly) && file.write(show.c_str()) > 0;
        };
        QVERIFY(put(QStringLiteral("7000000-clear"))); // of 1970, and the oldest
        for (int i = 10; i < 29; ++i)                  // of the year 2065
            QVERIFY(put(QStringLiteral("30000000000000%1-hour").arg(i)));
        ShowFolder shows(folder.path().toStdString());
        std::string why;
        for (const char* before : {"import", "revert"})
            QVERIFY2(shows.keepCopy(before, show, &why), why.c_str());
        const auto copies = shows.copies(Json::object());
        QCOMPARE(copies.size(), ShowFolder::keptCopies);
        QCOMPARE(copies[0].name, std::string("revert"));
        QCOMPARE(copies[1].name, std::string("import"));
        QCOMPARE(copies.back().id, std::string("3000000000000011-hour"));
        QVERIFY(shows.readCopy(copies[0].id, &why));
    }
};

HALCYRA_TEST(ShowFolderTest)
#include "showfoldertest.moc"
