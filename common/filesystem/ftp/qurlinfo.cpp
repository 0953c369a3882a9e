#include "common/filesystem/ftp/qurlinfo.h"

namespace vantrel {

class QUrlInfoPrivate : public QSharedData
{
public:
    QString name, owner, group;
    int permissions = 0;
    qint64 size = 0;
    QDateTime lastModified, lastRead;
    bool isDir = false, isFile = false, isSymLink = false;
    bool isWritable = true, isReadable = true;

    bool operator==(const QUrlInfoPrivate& other) const
    {
        return name == other.name && owner == other.owner && group == other.group &&
               permissions == other.permissions && size == other.size && lastModified == other.lastModified &&
               lastRead == other.lastRead && isDir == other.isDir && isFile == other.isFile &&
               isSymLink == other.isSymLink && isWritable == other.isWritable &&
               isReadable == other.isReadable;
    }
};

namespace {

/// Negative, 0 or positive, as the first comes before, with or behind the second.
int compared(const QUrlInfo& a, const QUrlInfo& b, int sortBy)
{
    if (sortBy == QUrlInfo::ByTime)
        return a.lastModified() < b.lastModified() ? -1 : b.lastModified() < a.lastModified() ? 1 : 0;
    if (sortBy == QUrlInfo::BySize)
        return a.size() < b.size() ? -1 : b.size() < a.size() ? 1 : 0;
    return a.name().compare(b.name());
}

} // namespace

QUrlInfo::QUrlInfo() = default;
QUrlInfo::QUrlInfo(const QUrlInfo& other) = default;
QUrlInfo& QUrlInfo::operator=(const QUrlInfo& other) = default;
QUrlInfo::~QUrlInfo() = default;

QUrlInfoPrivate& QUrlInfo::data()
{
    if (!m_data)
        m_data = new QUrlInfoPrivate;
    return *m_data;
}

const QUrlInfoPrivate& QUrlInfo::read() const
{
    static const QUrlInfoPrivate none;
    return m_data ? *m_data : none;
}

void QUrlInfo::setName(const QString& name)
{
    data().name = name;
}

void QUrlInfo::setDir(bool isDir)
{
    data().isDir = isDir;
}

void QUrlInfo::setFile(bool isFile)
{
    data().isFile = isFile;
}

void QUrlInfo::setSymLink(bool isSymLink)
{
    data().isSymLink = isSymLink;
}

void QUrlInfo::setOwner(const QString& owner)
{
    data().owner = owner;
}

void QUrlInfo::setGroup(const QString& group)
{
    data().group = group;
}

void QUrlInfo::setSize(qint64 bytes)
{
    data().size = bytes;
}

void QUrlInfo::setWritable(bool isWritable)
{
    data().isWritable = isWritable;
}

void QUrlInfo::setReadable(bool isReadable)
{
    data().isReadable = isReadable;
}

void QUrlInfo::setPermissions(int permissions)
{
    data().permissions = permissions;
}

void QUrlInfo::setLastModified(const QDateTime& time)
{
    data().lastModified = time;
}

QString QUrlInfo::name() const
{
    return read().name;
}

int QUrlInfo::permissions() const
{
    return read().permissions;
}

QString QUrlInfo::owner() const
{
    return read().owner;
}

QString QUrlInfo::group() const
{
    return read().group;
}

qint64 QUrlInfo::size() const
{
    return read().size;
}

QDateTime QUrlInfo::lastModified() const
{
    return read().lastModified;
}

QDateTime QUrlInfo::lastRead() const
{
    return read().lastRead;
}

bool QUrlInfo::isDir() const
{
    return read().isDir;
}

bool QUrlInfo::isFile() const
{
    return read().isFile;
}

bool QUrlInfo::isSymLink() const
{
    return read().isSymLink;
}

bool QUrlInfo::isWritable() const
{
    return read().isWritable;
}

bool QUrlInfo::isReadable() const
{
    return read().isReadable;
}

bool QUrlInfo::isExecutable() const
{
    return read().permissions & (ExeOwner | ExeGroup | ExeOther);
}

bool QUrlInfo::equal(const QUrlInfo& a, const QUrlInfo& b, int sortBy)
{
    return compared(a, b, sortBy) == 0;
}

bool QUrlInfo::lessThan(const QUrlInfo& a, const QUrlInfo& b, int sortBy)
{
    return compared(a, b, sortBy) < 0;
}

bool QUrlInfo::greaterThan(const QUrlInfo& a, const QUrlInfo& b, int sortBy)
{
    return compared(a, b, sortBy) > 0;
}

bool QUrlInfo::operator==(const QUrlInfo& other) const
{
    return isValid() == other.isValid() && read() == other.read();
}

} // namespace vantrel
