#include "common/filesystem/model/mounttable.h"

#include <QFile>
#include <QList>
#include <QSet>

#include <algorithm>

namespace vantrel {

namespace {

// Blanks, tabs, line breaks and backslashes stand as three octal digits.
QString unescaped(const QByteArray& field)
{
    QByteArray path;
    for (qsizetype index = 0; index < field.size(); ++index) {
        bool isNumber = false;
        const int code = field[index] == '\\' ? field.mid(index + 1, 3).toInt(&isNumber, 8) : 0;
        path.append(isNumber ? static_cast<char>(code) : field[index]);
        index += isNumber ? 3 : 0;
    }
    return QFile::decodeName(path);
}

bool isShare(const QByteArray& type)
{
    static const QSet<QByteArray> shares{
        "nfs",      "nfs4",       "cifs",        "smb3",       "smbfs",          "9p",
        "virtiofs", "fuse.sshfs", "fuse.rclone", "fuse.davfs", "davfs",          "ceph",
        "afs",      "zfs",        "vboxsf",      "fuse.s3fs",  "fuse.gvfsd-fuse"};
    return shares.contains(type);
}

bool isSystems(const QString& path)
{
    static const QStringList systems{
        QStringLiteral("/boot"), QStringLiteral("/etc"),  QStringLiteral("/usr"), QStringLiteral("/var"),
        QStringLiteral("/snap"), QStringLiteral("/proc"), QStringLiteral("/sys"), QStringLiteral("/dev")};
    return std::ranges::any_of(
        systems, [&](const QString& system) { return path == system || path.startsWith(system + u'/'); });
}

} // namespace

QStringList volumesIn(const QByteArray& mountInfo)
{
    QStringList volumes;
    for (const QByteArray& line : mountInfo.split('\n')) {
        // id parent device root path options [tags] - type source options
        const QList<QByteArray> fields = line.split(' ');
        const qsizetype dash = fields.indexOf("-", 6);
        if (dash < 0 || dash + 2 >= fields.size())
            continue;
        const QByteArray& type = fields[dash + 1];
        const bool isDisk = fields[dash + 2].startsWith("/dev/") && type != "squashfs";
        const QString path = unescaped(fields[4]);
        if ((isDisk || isShare(type)) && path != u"/" && !isSystems(path) && !volumes.contains(path))
            volumes.append(path);
    }
    return volumes;
}

QString volumeAbove(const QByteArray& mountInfo, const QString& path)
{
    QString volume = QStringLiteral("/");
    for (const QByteArray& line : mountInfo.split('\n')) {
        const QString mount = unescaped(line.split(' ').value(4));
        if (mount.size() > volume.size() && (path == mount || path.startsWith(mount + u'/')))
            volume = mount;
    }
    return volume;
}

} // namespace vantrel
