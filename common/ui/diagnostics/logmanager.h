#pragma once

#include "tarn/log/logfile.h"
#include "tarn/log/repeatlimit.h"

#include <QMutex>
#include <QString>
#include <QtGlobal>

#include <memory>

class QFile;
class QTextStream;

namespace vantrel {

/// The process's one message handler: writes each message to the run's file in a folder of bounded size and
/// to standard output, and hands it on to the handler that stood before. A message is one line of at most 2
/// KB, and the same one comes at most ten times a second, then as a count. A full file is followed by the
/// next one. Any thread.
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
    /// The bound on the folder in bytes, checked at rotation and where a file is full. 52428800 at first.
    void setSizeLimit(qint64 bytes);
    /// The bytes after which a run goes on in a new file; 10485760 at first.
    void setFileSizeLimit(qint64 bytes);

    static void customLogger(QtMsgType type, const QMessageLogContext& context, const QString& message);

private:
    LogManager();

    void handleCustomLogger(QtMsgType type, const QMessageLogContext& context, const QString& message);
    void tellHeld(RepeatLimit::Clock::time_point now);
    bool append(QtMsgType type, const QMessageLogContext& context, const QString& line);
    bool createNewLogFile();
    void closeFile();
    qint64 logFolderSize() const;
    void cleanupOldLogs(qint64& size, qint64 limit) const;
    bool makeDirectory() const;
    static void writeLogLine(QtMsgType type, const QMessageLogContext& context, const QString& message,
                             QTextStream& stream);

    mutable QMutex m_mutex; // guards every field below
    qint64 m_sizeLimit = 52428800;
    qint64 m_fileSizeLimit = LogFile::largestFile;
    RepeatLimit m_repeats;
    bool m_logToStdOut = true;
    QString m_path;
    std::unique_ptr<QFile> m_file;
    QString m_directory;
    QtMessageHandler m_previous = nullptr;
    QString m_pattern;
    std::unique_ptr<QTextStream> m_stream;
};

} // namespace vantrel
