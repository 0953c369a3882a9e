#include "common/ui/diagnostics/diagnosticsmanager.h"

#include "common/session/window/mainwindowhandle.h"
#include "common/ui/diagnostics/logmanager.h"
#include "common/ui/toolkit/errordialog.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QSysInfo>
#include <archive.h>
#include <archive_entry.h>

#include <memory>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.diagnostics")

struct EntryFree
{
    void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};

QString tr(const char* text)
{
    return QCoreApplication::translate("DiagnosticsManager", text);
}

} // namespace

void DiagnosticsManager::saveDiagnostics()
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd_hh-mm-ss"));
    const QString path = getSaveFileName(QStringLiteral("halcyra_gui_diagnostics_%1").arg(stamp));
    if (path.isEmpty()) {
        qCDebug(log) << "User aborted diagnostics saving";
        return;
    }
    saveDiagnostics(path);
}

bool DiagnosticsManager::saveDiagnostics(const QString& path)
{
    archive* zip = openZip(path);
    if (!zip) {
        qCWarning(log) << "Failed to create zip archive:" << path;
        return fail();
    }
    const bool filled = zipDirectory(zip, LogManager::instance().logDir(), nullptr) &&
                        addManifestToZip(zip, QStringLiteral("manifest.txt"));
    const bool closed = closeZip(zip);
    if (!filled || !closed)
        return fail();
    qCDebug(log) << "Diagnostics successfully saved to:" << path;
    return true;
}

bool DiagnosticsManager::fail() const
{
    qCWarning(log) << "Failed to save diagnostics";
    displayErrorDialog(tr("Error"), tr("Failed to save diagnostics"));
    return false;
}

QString DiagnosticsManager::withZipSuffix(const QString& name)
{
    const QString suffix = QStringLiteral(".zip");
    return name.endsWith(suffix, Qt::CaseInsensitive) ? name : name + suffix;
}

QString DiagnosticsManager::getSaveFileName(const QString& defaultName) const
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString chosen =
        QFileDialog::getSaveFileName(mainWindowWidget(), tr("Choose file Location"),
                                     QDir(folder).filePath(defaultName), tr("ZIP Files (*.zip)"));
    return chosen.isEmpty() ? QString() : withZipSuffix(chosen);
}

archive* DiagnosticsManager::openZip(const QString& path) const
{
    archive* zip = archive_write_new();
    if (!zip)
        return nullptr;
    if (archive_write_set_format_zip(zip) == ARCHIVE_OK &&
        archive_write_open_filename_w(zip, path.toStdWString().c_str()) == ARCHIVE_OK)
        return zip;
    archive_write_free(zip);
    return nullptr;
}

bool DiagnosticsManager::closeZip(archive* zip) const
{
    const bool closed = archive_write_close(zip) == ARCHIVE_OK;
    archive_write_free(zip);
    return closed;
}

bool DiagnosticsManager::zipDirectory(archive* zip, const QString& path, const QDir* base) const
{
    const QDir directory(path);
    if (!directory.exists()) {
        qCWarning(log) << "Requested directory doesn't exists";
        return false;
    }
    const QDir& root = base ? *base : directory;
    const QFileInfoList entries = directory.entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo& entry : entries) {
        const QString absolute = entry.absoluteFilePath();
        const bool added = entry.isDir() ? zipDirectory(zip, absolute, &root)
                                         : addFileToZip(zip, absolute, root.relativeFilePath(absolute));
        if (!added) {
            qCWarning(log) << "Failed to add file " << absolute << " to zip";
            return false;
        }
    }
    return true;
}

bool DiagnosticsManager::addFileToZip(archive* zip, const QString& absolutePath,
                                      const QString& entryName) const
{
    const QFileInfo info(absolutePath);
    QFile file(absolutePath);
    if (!info.exists() || !info.isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    const qint64 modified = info.lastModified().toSecsSinceEpoch();
    return writeEntry(zip, entryName, file.readAll(), &modified);
}

bool DiagnosticsManager::addManifestToZip(archive* zip, const QString& entryName) const
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    const QStringList lines = {
        QStringLiteral("Timestamp: ") + stamp,
        QStringLiteral("Halcyra GUI application: ") + QCoreApplication::applicationName(),
        QStringLiteral("Halcyra GUI version: ") + QCoreApplication::applicationVersion(),
        QStringLiteral("Halcyra GUI dir path: ") + QCoreApplication::applicationDirPath(),
        QStringLiteral("System: ") + getCurrentOS(),
        getSystemInfo(),
    };
    const QString text = lines.join(u'\n') + u'\n';
    qCDebug(log).noquote() << "Generated content for the file:" << text;
    return writeEntry(zip, entryName, text.toUtf8(), nullptr);
}

bool DiagnosticsManager::writeEntry(archive* zip, const QString& name, const QByteArray& content,
                                    const qint64* modified)
{
    const std::unique_ptr<archive_entry, EntryFree> entry(archive_entry_new());
    if (!entry)
        return false;
    archive_entry_set_pathname_utf8(entry.get(), name.toUtf8().constData());
    archive_entry_set_size(entry.get(), content.size());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    if (modified)
        archive_entry_set_mtime(entry.get(), *modified, 0);
    if (archive_write_header(zip, entry.get()) != ARCHIVE_OK)
        return false;
    return archive_write_data(zip, content.constData(), static_cast<std::size_t>(content.size())) >= 0;
}

QString DiagnosticsManager::getSystemInfo() const
{
    return QStringLiteral("OS: %1\nKernel: %2\nVersion: %3\nArchitecture: %4")
        .arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
             QSysInfo::currentCpuArchitecture());
}

QString DiagnosticsManager::getCurrentOS() const
{
#if defined(Q_OS_LINUX)
    return QStringLiteral("Linux");
#elif defined(Q_OS_WIN)
    return QStringLiteral("Windows");
#else
    return QSysInfo::kernelType();
#endif
}

void DiagnosticsManager::displayErrorDialog(const QString& title, const QString& text) const
{
    auto* dialog = new ErrorDialog(title, text, mainWindowWidget());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

} // namespace vantrel
