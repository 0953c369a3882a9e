#include "common/outputs/edidsummary.h"
#include "common/outputs/edidtext.h"
#include "common/outputs/modekeeper.h"
#include "common/outputs/modelinedialog.h"
#include "common/outputs/outputmodel.h"
#include "common/session/mirror/guimodeline.h"
#include "common/session/mirror/guioutput.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/errordialog.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/ztdropdownmenu.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel;
using vantrel::test::expectWarning;

namespace {

/// The shortest that passes: 64 bytes that sum up to 0.
QByteArray halfBlock()
{
    QByteArray bytes = QByteArray::fromHex("00ffffffffffff00").leftJustified(64, '\x2a');
    int sum = 0;
    for (const char byte : bytes)
        sum += static_cast<uchar>(byte);
    bytes[63] = static_cast<char>(bytes[63] - sum % 256);
    return bytes;
}

} // namespace

class TestModelineDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_output = std::make_shared<GUIOutput>();
        m_modes = std::make_shared<QList<std::shared_ptr<GUIModeline>>>();
        for (const char* id : {"own", "std"}) {
            auto mode = std::make_shared<GUIModeline>();
            mode->setId(QLatin1String(id));
            mode->setLabel(QLatin1String(id) + QStringLiteral(" label"));
            mode->setStandard(qstrcmp(id, "std") == 0);
            m_modes->append(mode);
        }
        m_model = std::make_unique<OutputModel>(nullptr);
        m_model->setOutput(m_output);
        m_model->setModelines(m_modes);
        m_dialog = std::make_unique<ModelineDialog>();
        m_dialog->setModel(m_model.get());
    }

    void offersWhatTheOutputHas()
    {
        m_dialog->resetView();
        QVERIFY(m_dialog->isAuto()); // no mode is set, and none is preferred
        QVERIFY(m_dialog->acceptButton()->isEnabled());
        m_output->setPreferredModelineId(QStringLiteral("own"));
        m_output->setModelineId(QStringLiteral("std"));
        m_dialog->resetView();
        QVERIFY(!m_dialog->isAuto());
        QVERIFY(!m_dialog->acceptButton()->isEnabled()); // nothing to override with
        const auto* format = m_dialog->findChild<ZTDropdownMenu*>(QStringLiteral("ModelineDialog-format"));
        QStringList entries;
        for (int i = 0; i < format->count(); ++i)
            entries.append(format->itemText(i));
        QCOMPARE(entries, QStringList({QStringLiteral("EDID formats"), QStringLiteral("own label"),
                                       QStringLiteral("Standard formats"), QStringLiteral("std label")}));
        QCOMPARE(m_dialog->getCurrentModelineId(), QStringLiteral("std"));
        m_output->setEdid(QString::fromLatin1(halfBlock().toHex()));
        m_dialog->updateData();
        QVERIFY(m_dialog->acceptButton()->isEnabled());
        QVERIFY(!button("import")->isEnabled() && !button("read")->isEnabled()); // disconnected
        m_output->setConnected(true);
        m_dialog->updateData();
        QVERIFY(button("import")->isEnabled() && button("read")->isEnabled());
        m_output->setModelineId(QStringLiteral("own"));
        m_dialog->resetView();
        QVERIFY(m_dialog->isAuto());
        m_output->setEdidOverride(QStringLiteral("00"));
        m_dialog->resetView();
        QVERIFY(!m_dialog->isAuto());
    }

    /// What is chosen and not applied outlasts what happens to the output meanwhile.
    void keepsWhatIsChosen()
    {
        m_output->setEdid(QString::fromLatin1(halfBlock().toHex()));
        m_output->setModelineId(QStringLiteral("std"));
        m_dialog->resetView();
        m_dialog->show();
        auto* format = m_dialog->findChild<ZTDropdownMenu*>(QStringLiteral("ModelineDialog-format"));
        format->setCurrentIndex(1);
        Q_EMIT format->activated(1);
        m_output->setConnected(true);
        m_model->onReset();
        QCOMPARE(m_dialog->getCurrentModelineId(), QStringLiteral("own"));
        QVERIFY(!m_dialog->isAuto());
        QSignalSpy applied(m_dialog.get(), &ModelineDialog::applied);
        m_dialog->handleConfirm();
        QCOMPARE(applied.count(), 1);
        QCOMPARE(applied.first().at(0).toBool(), false);
        QCOMPARE(applied.first().at(1).toString(), QStringLiteral("own"));
        QVERIFY(!m_dialog->isVisible());
    }

    void readsEdids_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("warnings"); // none: it is an EDID
        const QByteArray hex = halfBlock().toHex();
        QByteArray lines;
        for (int i = 0; i < hex.size(); i += 2)
            lines += hex.mid(i, 2) + (i % 16 == 14 ? "\r\n" : "\t");
        QByteArray wrongSum = halfBlock();
        wrongSum[20] = 0;
        const QString header = QStringLiteral("Invalid EDID header");
        QTest::newRow("bytes") << halfBlock() << QStringList();
        QTest::newRow("text with tabs and CRLF") << lines << QStringList();
        QTest::newRow("upper case") << hex.toUpper() << QStringList();
        QTest::newRow("wrong checksum") << wrongSum << QStringList(QStringLiteral("Invalid EDID checksum"));
        QTest::newRow("wrong length") << hex.chopped(2) << QStringList(QStringLiteral("Invalid EDID length"));
        QTest::newRow("empty") << QByteArray() << QStringList(header);
        QTest::newRow("rubbish") << QByteArray("Dear display, <b>hello</b>\n") << QStringList(header);
        // Bytes that happen to be hexadecimal digits are text.
        QTest::newRow("digits") << QByteArray(128, 'A') << QStringList(header);
        QTest::newRow("10 MB") << QByteArray(10 << 20, '0')
                               << QStringList{QStringLiteral("larger than any EDID"), header};
    }
    void readsEdids()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, warnings);
        const QString path = m_folder.filePath(QStringLiteral("in.dat"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        file.close();
        for (const QString& warning : std::as_const(warnings))
            expectWarning(warning);
        if (warnings.isEmpty())
            expectWarning(QStringLiteral("Failed to init setEdidOverride command")); // nobody is there
        m_dialog->importFile(path);
        const auto* error = m_dialog->findChild<ErrorDialog*>();
        QCOMPARE(error != nullptr, !warnings.isEmpty());
        if (error)
            QCOMPARE(error->description(), QStringLiteral("Cannot interpret file content."));
    }

    void writesEdids_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("suffix"); // of the dialog
        QTest::addColumn<bool>("text");
        QTest::newRow("binary") << "name.BIN"
                                << "txt" << false;
        QTest::newRow("text") << "name.txt"
                              << "bin" << true;
        QTest::newRow("binary by the filter") << "name"
                                              << "bin" << false;
        QTest::newRow("text by the filter") << "name"
                                            << "txt" << true;
    }
    void writesEdids()
    {
        QFETCH(QString, name);
        QFETCH(QString, suffix);
        QFETCH(bool, text);
        m_output->setEdid(QString::fromLatin1(halfBlock().toHex()));
        const QString path = m_folder.filePath(name);
        m_dialog->exportFile(path, suffix);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), text ? halfBlock().toHex(' ').toUpper() : halfBlock());
    }

    void tellsWhatTheDisplaySays()
    {
        const auto facts = [](const QString& edid) {
            QStringList all;
            for (const EdidFact& fact : edidSummary(edid))
                all.append(fact.title + fact.text);
            return all;
        };
        QFile file(QFINDTESTDATA("../fuzz/corpus/edid/ombra-1"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray edid = file.readAll().mid(1);
        const QStringList told = facts(QString::fromLatin1(edid.toHex()));
        for (const char* fact :
             {"Maker:OMB", "Model:Ombra Wall", "Serial number:OW4K-00021", "Made:2026, week 12",
              "Picture:121 x 68 cm", "Native mode:1920 x 1080p 50 Hz", "Modes:17, up to 3840 x 2160p 60 Hz",
              "Colors:30 bits (10 bpc), RGB", "Audio:LPCM 2 channels, 48 kHz"})
            QVERIFY2(told.contains(QLatin1String(fact)), qPrintable(told.join(u'\n')));
        QCOMPARE(facts({}), QStringList());
        // What "Auto" would set is the display's own, whatever EDID stands in its place.
        m_output->setEdid(QString::fromLatin1(edid.toHex()));
        m_output->setEdidOverride(QStringLiteral("00"));
        m_output->setPreferredModelineId(QStringLiteral("own"));
        m_dialog->resetView();
        QCOMPARE(m_dialog->findChild<ElidedLabel*>(QStringLiteral("ModelineDialog-preferred"))->text(),
                 QStringLiteral("1920 x 1080p 50 Hz"));
        QCOMPARE(facts(QString::fromLatin1(edid.left(64).toHex())),
                 QStringList(
                     QStringLiteral("EDID:It has 64 bytes, and an EDID has 1 to 256 blocks of 128 bytes.")));
        QCOMPARE(facts(QStringLiteral("hello")),
                 QStringList(QStringLiteral("EDID:It is no hexadecimal text.")));
    }

    /// Whoever changed what the audience sees is asked, and nobody else.
    void asksWhetherTheModeStays()
    {
        QWidget window;
        bool isHeard = true;
        ModeKeeper keeper(
            2, m_model.get(), [&isHeard] { return isHeard; }, &window);
        const auto wait = [this](int seconds) {
            m_output->setConfirmSeconds(seconds);
            m_model->onReset();
        };
        const auto question = [&window] { return window.findChild<ConfirmationDialog*>(); };
        wait(15);
        QVERIFY(!question()); // somebody else did
        wait(0);
        expectWarning(QStringLiteral("Failed to init selectModeline command"));
        m_model->sendModelineId(QStringLiteral("std"), false);
        wait(15);
        QPointer<ConfirmationDialog> dialog = question();
        QVERIFY(dialog && dialog->isVisible());
        wait(1);
        QVERIFY2(dialog->description().contains(QStringLiteral("in 1\u00a0second.")),
                 qPrintable(dialog->description()));
        wait(0); // the server has gone back: there is nothing to send
        QTRY_VERIFY(!dialog);

        expectWarning(QStringLiteral("Failed to init selectModeline command"));
        m_model->sendModelineId(QStringLiteral("std"), false);
        wait(15);
        isHeard = false; // a hiccup of the link
        keeper.follow();
        QTRY_VERIFY(!question());
        isHeard = true;
        keeper.follow();
        dialog = question();
        QVERIFY(dialog && dialog->isVisible());
        expectWarning(QStringLiteral("Failed to init keepMode command"));
        dialog->acceptButton()->click(); // which does not go out
        QTRY_VERIFY(!dialog);
        wait(8);
        QVERIFY(question());
        expectWarning(QStringLiteral("Failed to init revertMode command"));
        question()->reject();
    }

    void saysWhatCannotBeWritten()
    {
        expectWarning(QStringLiteral("Cannot write"));
        m_dialog->exportFile(QStringLiteral("/nowhere/at/all.bin"), QStringLiteral("bin"));
        const auto* error = m_dialog->findChild<ErrorDialog*>();
        QVERIFY(error);
        QCOMPARE(error->title(), QStringLiteral("Error exporting EDID file"));
        QCOMPARE(error->description(), QStringLiteral("Could not open binary file for writing."));
    }

private:
    PushButton* button(const char* name) const
    {
        return m_dialog->findChild<PushButton*>(
            QStringLiteral("ModelineDialog-%1-button").arg(QLatin1String(name)));
    }

    QTemporaryDir m_folder;
    std::shared_ptr<GUIOutput> m_output;
    OutputModel::Modelines m_modes;
    std::unique_ptr<OutputModel> m_model;
    std::unique_ptr<ModelineDialog> m_dialog;
};

HALCYRA_TEST(TestModelineDialog)
#include "test_modelinedialog.moc"
