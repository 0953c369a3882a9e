#include "tests/integration/editwindow.h"

#include "common/command/abstractdiffapicommand.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"
#include "tarn/media/medialibrary.h"
#include "tests/integration/randomoperator.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTest>
#include <QUndoStack>

#include <cstdio>
#include <iostream>

namespace vantrel::test {

namespace {

constexpr const char* orders = "HALCYRA_EDIT_WINDOW"; // the ports and the seed
constexpr int patience = 30000;                       // milliseconds

/// The operator of one window.
class Desk
{
public:
    explicit Desk(quint32 seed)
        : m_operator(seed)
        , m_seed(seed)
    {
    }

    QByteArray answer(const std::string& word)
    {
        if (word == "edit")
            return edit();
        if (word == "undo" || word == "redo")
            return step(word == "undo");
        if (word == "settle")
            return QTest::qWaitFor([this] { return isQuiet(); }, patience) ? "settled" : "still under way";
        if (word == "library")
            return isQuiet() ? QByteArray::fromStdString(session().mediaLibrary()->toJson().toString())
                             : QByteArray();
        return word == "done" ? std::exchange(m_done, {}).join('\t') : told();
    }

private:
    static Session& session() { return *Session::instance(); }
    static bool isQuiet()
    {
        const MediaLibraryApi* api = session().getMediaLibraryApi();
        return session().isConnected() && api && api->isCurrent() && api->edits()->isEmpty();
    }

    QByteArray edit()
    {
        const QString mark = QStringLiteral("#%1-%2#").arg(m_seed).arg(++m_edits);
        m_operator.setMark(mark);
        CommandPtr command;
        for (int tries = 0; tries < 20 && !command; ++tries)
            command = m_operator.next(session().mediaLibrary());
        if (!command)
            return "nothing to edit";
        const QByteArray patch = QByteArray::fromStdString(command->redoPatch().toString());
        const bool isMarked = patch.contains(mark.toUtf8());
        static const QByteArray kept =
            "\"/playlists/" + QByteArray::number(keptList) + "/entries/"; // the path of what it touches
        const bool isKept = isMarked && patch.contains(kept);
        command->setText(command->text() + u' ' + mark);
        QObject::connect(command.get(), &AbstractDiffApiCommand::answered, &m_heart,
                         [this, mark](EditDirection direction, bool isDone) {
                             if (isDone && direction == EditDirection::Redo)
                                 m_done << mark.toUtf8();
                         });
        session().executeCommand(command.release());
        const QByteArray answer = (isMarked ? QByteArray() : "?") + mark.toUtf8();
        return isKept ? answer + ' ' + QByteArray::number(patch.count(mark.toUtf8())) : answer;
    }

    /// An undo that its command has nothing for takes the command off the stack.
    static QByteArray step(bool isUndo)
    {
        QUndoStack* stack = session().getQUndoStack();
        const QString text = isUndo ? stack->undoText() : stack->redoText();
        isUndo ? stack->undo() : stack->redo();
        return text.section(u' ', -1).toUtf8();
    }

    static QByteArray told()
    {
        QStringList titles;
        for (const auto& notification : NotificationManagerImpl::instance()->notifications())
            titles.append(notification->title().simplified());
        return titles.join(u'\t').toUtf8();
    }

    QObject m_heart;
    Operator m_operator;
    QByteArrayList m_done; // marks of edits that the server has taken
    quint32 m_seed;
    int m_edits = 0;
};

} // namespace

EditWindow::EditWindow(quint16 httpPort, quint16 linkPort, quint16 previewPort, quint32 seed)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HALCYRA_TEST_CLASS"), QStringLiteral("TestRandomEdits"));
    environment.insert(QString::fromLatin1(orders),
                       QStringLiteral("%1 %2 %3 %4").arg(httpPort).arg(linkPort).arg(previewPort).arg(seed));
    m_process.setProcessEnvironment(environment);
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(QCoreApplication::applicationFilePath(), {});
}

EditWindow::~EditWindow()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(5000))
        m_process.kill();
    m_process.waitForFinished();
}

std::optional<QByteArray> EditWindow::ask(const QByteArray& word)
{
    m_process.write(word + '\n');
    std::optional<QByteArray> answer;
    const auto read = [&] {
        while (!answer && m_process.canReadLine()) {
            const QByteArray line = m_process.readLine();
            if (line.startsWith("@ "))
                answer = line.mid(2).trimmed();
        }
        return answer || m_process.state() == QProcess::NotRunning;
    };
    [[maybe_unused]] const bool isOver = QTest::qWaitFor(read, 2 * patience);
    return answer;
}

bool isEditWindow()
{
    return qEnvironmentVariableIsSet(orders);
}

void runEditWindow()
{
    const QList<QByteArray> words = qgetenv(orders).split(' ');
    ServerPorts ports;
    ports.http = words.value(0).toUShort();
    ports.link = words.value(1).toUShort();
    ports.ftp = 0;
    ports.preview = words.value(2).toUShort();
    Session::initialize(ports);
    const std::unique_ptr<Session> session(Session::instance());
    session->connectionHandler()->connect(QStringLiteral("127.0.0.1"));
    Desk desk(words.value(3).toUInt());
    QEventLoop loop;
    QSocketNotifier orderNotifier(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&orderNotifier, &QSocketNotifier::activated, &loop, [&] {
        std::string word;
        if (!std::getline(std::cin, word))
            return loop.quit();
        printf("@ %s\n", desk.answer(word).constData());
        fflush(stdout);
    });
    loop.exec();
}

} // namespace vantrel::test
