#pragma once

#include <QString>

class QByteArray;
class QDir;
struct archive;

namespace vantrel {

/// Packs the log folder and a manifest of the machine into a zip for support. A plain object: made, used once
/// and dropped. Main thread only.
class DiagnosticsManager
{
public:
    /// Asks for a file and saves to it.
    void saveDiagnostics();
    /// Saves to that path. A failure is logged, told in a dialog, and leaves what was written until then.
    bool saveDiagnostics(const QString& path);

    /// The chosen file, with ".zip" at its end; empty when the operator gave up.
    QString getSaveFileName(const QString& defaultName) const;
    /// Null on failure.
    archive* openZip(const QString& path) const;
    bool closeZip(archive* zip) const;
    /// Adds everything below the folder; entry names are relative to base (null: to the folder itself).
    bool zipDirectory(archive* zip, const QString& path, const QDir* base) const;
    bool addFileToZip(archive* zip, const QString& absolutePath, const QString& entryName) const;
    bool addManifestToZip(archive* zip, const QString& entryName) const;
    QString getSystemInfo() const;
    QString getCurrentOS() const;
    void displayErrorDialog(const QString& title, const QString& text) const;

private:
    bool fail() const;
    static QString withZipSuffix(const QString& name);
    static bool writeEntry(archive* zip, const QString& name, const QByteArray& content,
                           const qint64* modified);
};

} // namespace vantrel
