#pragma once

#include <QFile>

#include <atomic>

namespace vantrel {

/// A file that comes in: it is made with its first byte, by the thread that has it then. To make one waits
/// for the disk while that settles what came before. It is open for writing from the start, and is never one
/// that is there already.
class IncomingFile : public QFile
{
    Q_OBJECT

public:
    explicit IncomingFile(const QString& path);
    ~IncomingFile() override;

    /// Nobody wants it any more: it is not made from now on. Any thread.
    void drop() { m_isDropped = true; }
    bool isDropped() const { return m_isDropped; }
    /// Makes it, unless it is there by now. False with a reason in errorString().
    bool make();

    bool resize(qint64 bytes) override;
    bool seek(qint64 position) override;
    qint64 size() const override;
    void close() override;

protected:
    qint64 writeData(const char* data, qint64 size) override;

private:
    std::atomic_bool m_isDropped = false;
    bool m_isMade = false;
};

} // namespace vantrel
