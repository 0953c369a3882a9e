#include "common/ui/diagnostics/logmanager.h"

#include "tarn/log/log.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTextStream>

#include <cstdio>
#include <cstring>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.log")

// Colours for a terminal: the previous handler prints with this pattern.
constexpr auto messagePattern =
    "\033[32m%{time h:mm:ss.zzz} %{if-debug}\033[0;30;47m-D-%{endif}%{if-warning}\033[5;30;43m-W-%{endif}"
    "%{if-critical}\033[5;30;41m-E-%{endif}%{if-fatal}\033[7;31;40m-F-%{endif}\033[0m "
    "\033[37m%{file}:%{line}%{if-category} \033[32m %{category}:%{endif}\033[34m %{function}\033[37m : "
    "\033[0m%{message}";

const char* levelMark(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return " *D* ";
    case QtWarningMsg:
        return " *W* ";
    case QtCriticalMsg:
        return " *C* ";
    case QtFatalMsg:
        return " *F* ";
    case QtInfoMsg:
        return " *I* ";
    }
    return " ? ";
}

/// The part of a path that lies inside the source tree; the whole path where it has no such part.
const char* insideSources(const char* file)
{
    const char* inside = file ? std::strstr(file, "Tessen/") : nullptr;
    return inside ? inside : file;
}

} // namespace

LogManager& LogManager::instance()
{
    static LogManager manager;
    return manager;
}

LogManager::LogManager()
    : m_directory(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
                  QStringLiteral("/logs"))
    , m_pattern(QString::fromLatin1(messagePattern))
{
    if (!makeDirectory())
        qFatal("Unable to create log directories");
    rotateLogs();
}

LogManager::~LogManager()
{
    qInstallMessageHandler(nullptr);
    const QMutexLocker lock(&m_mutex);
    m_logToStdOut = false; // its stream goes before, at the end of the process
    tellHeld(RepeatLimit::Clock::time_point::max());
    closeFile();
}

void LogManager::install()
{
    const QtMessageHandler before = qInstallMessageHandler(customLogger);
    const QMutexLocker lock(&m_mutex);
    if (!m_previous && before != customLogger)
        m_previous = before;
}

void LogManager::uninstall()
{
    const QMutexLocker lock(&m_mutex);
    qInstallMessageHandler(m_previous);
}

void LogManager::rotateLogs()
{
    makeDirectory();
    // While the folder is changed, messages of this call go to Qt's own handler.
    qInstallMessageHandler(nullptr);
    const QMutexLocker lock(&m_mutex);
    closeFile();
    qint64 size = logFolderSize();
    if (size > m_sizeLimit)
        cleanupOldLogs(size, m_sizeLimit);
    qSetMessagePattern(m_pattern);
    const QtMessageHandler before = qInstallMessageHandler(customLogger);
    if (!m_previous)
        m_previous = before;
}

void LogManager::setFileSizeLimit(qint64 bytes)
{
    const QMutexLocker lock(&m_mutex);
    m_fileSizeLimit = bytes;
}

QString LogManager::logDir() const
{
    const QMutexLocker lock(&m_mutex);
    return m_directory;
}

void LogManager::setLogToStdOut(bool enabled)
{
    const QMutexLocker lock(&m_mutex);
    m_logToStdOut = enabled;
}

void LogManager::setSizeLimit(qint64 bytes)
{
    const QMutexLocker lock(&m_mutex);
    m_sizeLimit = bytes;
}

void LogManager::customLogger(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    instance().handleCustomLogger(type, context, message);
}

void LogManager::handleCustomLogger(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const std::string line = scrubbed(message.toStdString());
    const QString text = QString::fromStdString(line);
    QtMessageHandler previous = nullptr;
    {
        const QMutexLocker lock(&m_mutex);
        tellHeld(RepeatLimit::Clock::now());
        if (!m_repeats.admits(type, line) || !append(type, context, text))
            return;
        previous = m_previous;
    }
    // Outside the lock, since the previous handler may log itself.
    if (previous) {
        const QMessageLogContext shortened(insideSources(context.file), context.line, context.function,
                                           context.category);
        previous(type, shortened, text);
    }
}

void LogManager::tellHeld(RepeatLimit::Clock::time_point now)
{
    for (const RepeatLimit::Held& held : m_repeats.takeHeld(now))
        append(static_cast<QtMsgType>(held.level), {}, QString::fromStdString(held.text()));
}

bool LogManager::append(QtMsgType type, const QMessageLogContext& context, const QString& line)
{
    if (!m_file && !createNewLogFile()) {
        m_file.reset();
        return false;
    }
    if (!m_stream)
        m_stream = std::make_unique<QTextStream>(m_file.get());
    writeLogLine(type, context, line, *m_stream);
    m_stream->flush(); // the last line before a crash is the one that counts
    if (m_file->size() >= m_fileSizeLimit) {
        closeFile();
        qint64 size = logFolderSize();
        cleanupOldLogs(size, m_sizeLimit - m_fileSizeLimit); // room for the next file
    }
    if (m_logToStdOut) {
        static QTextStream out(stdout, QIODevice::WriteOnly);
        writeLogLine(type, context, line, out);
        out.flush();
    }
    return true;
}

bool LogManager::createNewLogFile()
{
    makeDirectory();
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd_HH-mm-ss.zzz"));
    m_path = QDir(m_directory).filePath(QStringLiteral("halcyra_log_%1.txt").arg(stamp));
    qCDebug(log) << "New log file is:" << m_path;
    m_file = std::make_unique<QFile>(m_path);
    if (m_file->open(QIODevice::Text | QIODevice::NewOnly))
        return true;
    // Without an access mode this open fails by intent: two programs never share a file, the second goes
    // without.
    if (m_file->open(QIODevice::Text)) {
        qCWarning(log)
            << "Unable to open log file in exclusive NewOnly -mode, other application might also have "
               "the log file open";
        return true;
    }
    return false;
}

void LogManager::closeFile()
{
    if (m_stream)
        m_stream->flush();
    m_stream.reset();
    m_file.reset();
}

qint64 LogManager::logFolderSize() const
{
    qint64 size = 0;
    for (const QFileInfo& file : QDir(m_directory).entryInfoList(QDir::Files | QDir::Hidden))
        size += file.size();
    return size;
}

void LogManager::cleanupOldLogs(qint64& size, qint64 limit) const
{
    const QFileInfoList files =
        QDir(m_directory).entryInfoList(QDir::Files | QDir::Hidden, QDir::Time | QDir::Reversed);
    for (const QFileInfo& file : files) {
        if (size <= limit)
            return;
        qCDebug(log) << "Removing old log" << file.absoluteFilePath();
        const qint64 bytes = file.size();
        if (QFile::remove(file.absoluteFilePath()))
            size -= bytes;
    }
}

bool LogManager::makeDirectory() const
{
    return QDir().mkpath(m_directory);
}

void LogManager::writeLogLine(QtMsgType type, const QMessageLogContext& context, const QString& message,
                              QTextStream& stream)
{
    stream << QDateTime::currentDateTime().toString(QStringLiteral("HH:mm:ss.zzz")) << ':' << levelMark(type);
    if (context.file)
        stream << QString::fromUtf8(context.file) << ':' << context.line << ' ';
    stream << "- " << message << '\n';
}

} // namespace vantrel
