#include "common/filesystem/local/incomingfile.h"

namespace vantrel {

namespace {
constexpr QIODeviceBase::OpenMode mode =
    QIODeviceBase::WriteOnly | QIODeviceBase::NewOnly | QIODeviceBase::Unbuffered;
} // namespace

IncomingFile::IncomingFile(const QString& path)
    : QFile(path)
{
    setOpenMode(mode);
}

IncomingFile::~IncomingFile()
{
    close();
}

bool IncomingFile::make()
{
    if (m_isMade)
        return true;
    if (m_isDropped)
        return false;
    setOpenMode(NotOpen);
    m_isMade = open(mode);
    if (!m_isMade) {
        setOpenMode(mode); // who writes hears the reason
    } else if (m_isDropped) {
        remove(); // meanwhile; whoever takes it away may have been here before
        m_isMade = false;
    }
    return m_isMade;
}

bool IncomingFile::resize(qint64 bytes)
{
    return make() && QFile::resize(bytes);
}

bool IncomingFile::seek(qint64 position)
{
    return make() && QFile::seek(position);
}

qint64 IncomingFile::size() const
{
    return m_isMade ? QFile::size() : 0;
}

void IncomingFile::close()
{
    if (m_isMade)
        return QFile::close();
    if (!isOpen())
        return;
    Q_EMIT aboutToClose();
    setOpenMode(NotOpen);
}

qint64 IncomingFile::writeData(const char* data, qint64 size)
{
    return make() ? QFile::writeData(data, size) : -1;
}

} // namespace vantrel
