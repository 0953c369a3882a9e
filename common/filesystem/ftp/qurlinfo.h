#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QSharedDataPointer>
#include <QString>

namespace vantrel {

class QUrlInfoPrivate;

/// One entry of a server's directory, a value that shares its data. Invalid until something is set.
class QUrlInfo
{
public:
    enum PermissionSpec {
        ReadOwner = 0400,
        WriteOwner = 0200,
        ExeOwner = 0100,
        ReadGroup = 0040,
        WriteGroup = 0020,
        ExeGroup = 0010,
        ReadOther = 0004,
        WriteOther = 0002,
        ExeOther = 0001,
    };
    /// What is compared.
    enum SortBy { ByName, ByTime, BySize };

    QUrlInfo();
    QUrlInfo(const QUrlInfo& other);
    QUrlInfo& operator=(const QUrlInfo& other);
    virtual ~QUrlInfo();

    virtual void setName(const QString& name);
    virtual void setDir(bool isDir);
    virtual void setFile(bool isFile);
    virtual void setSymLink(bool isSymLink);
    virtual void setOwner(const QString& owner);
    virtual void setGroup(const QString& group);
    virtual void setSize(qint64 bytes);
    virtual void setWritable(bool isWritable);
    virtual void setReadable(bool isReadable);
    virtual void setPermissions(int permissions);
    virtual void setLastModified(const QDateTime& time);

    bool isValid() const { return m_data; }
    QString name() const;
    int permissions() const;
    QString owner() const;
    QString group() const;
    qint64 size() const;
    QDateTime lastModified() const;
    QDateTime lastRead() const;
    bool isDir() const;
    bool isFile() const;
    bool isSymLink() const;
    bool isWritable() const;
    bool isReadable() const;
    bool isExecutable() const;

    static bool equal(const QUrlInfo& a, const QUrlInfo& b, int sortBy);
    static bool lessThan(const QUrlInfo& a, const QUrlInfo& b, int sortBy);
    static bool greaterThan(const QUrlInfo& a, const QUrlInfo& b, int sortBy);
    bool operator==(const QUrlInfo& other) const;

private:
    QUrlInfoPrivate& data();
    const QUrlInfoPrivate& read() const;

    QSharedDataPointer<QUrlInfoPrivate> m_data;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::QUrlInfo)
