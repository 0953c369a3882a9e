#pragma once

#include <QMutex>
#include <QString>
#include <QtGlobal>

#include <memory>

class QFile;
class QTextStream;

namespace vantrel {

/// The process's one message handler: writes each message to the run's file in a folder of bounded size and
/// to standard output, and hands it on to the handler that stood before. Any thread.
class LogManager
{
public:
    /// Made on first use, which also sweeps the folder and installs the handler.
    static LogManager& instance();
    ~LogManager();
    LogManager(const LogManager&) = delete;
    LogManager& operator=(const LogManager&) = delete;

    void install();
    void uninstall();
    /// Closes the file, removes the oldest files while the folder is above the limit, and installs the
    /// handler; the next message opens a new file.
    void rotateLogs();

    QString logDir() const;
    void setLogToStdOut(bool enabled);
    /// The bound on the folder in bytes, checked at rotation only. 52428800 at first.
    void setSizeLimit(qint64 bytes);

    static void customLogger(QtMsgType type, const QMessageLogContext& context, const QString& message);

private:
    LogManager();

    void handleCustomLogger(QtMsgType type, const QMessageLogContext& context, const QString& message);
    bool createNewLogFile();
    void closeFile();
    qint64 logFolderSize() const;
    void cleanupOldLogs(qint64& size) const;
    bool makeDirectory() const;
    static void writeLogLine(QtMsgType type, const QMessageLogContext& context, const QString& message,
                             QTextStream& stream);

    mutable QMutex m_mutex; // guards every field below
    qint64 m_sizeLimit = 52428800;
    bool m_logToStdOut = true;
    bool m_logToFile = true;
    QString m_path;
    std::unique_ptr<QFile> m_file;
    QString m_directory;
    QtMessageHandler m_previous = nullptr;
    QString m_pattern;
    std::unique_ptr<QTextStream> m_stream;
};

} // namespace vantrel
