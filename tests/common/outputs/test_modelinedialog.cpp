#include "common/outputs/edidtext.h"
#include "common/outputs/modelinedialog.h"
#include "common/outputs/outputmodel.h"
#include "common/session/mirror/guimodeline.h"
#include "common/session/mirror/guioutput.h"
#include "common/ui/toolkit/errordialog.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/ztdropdownmenu.h"
#include "tests/support/testmain.h"

#include <QFile>
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
