#pragma once

#include "common/filesystem/ftp/ftpplacing.h"
#include "common/filesystem/ftp/qftp.h"

#include <QByteArray>
#include <QStringList>

#include <optional>
#include <variant>

namespace vantrel {

/// One command of the queue: the protocol's lines, and where its data come from or go to. Owned by the queue.
struct QFtpCommand
{
    QFtpCommand(QFtp::Command command, const QStringList& rawCmds, int id = nextId());

    /// A number that no other command of the process has; from 1 on. Any thread.
    static int nextId();

    int id;
    QFtp::Command command;
    QStringList rawCmds; // each with its line end; of ConnectToHost, SetProxy and SetTransferMode: parameters
    std::variant<QIODevice*, QByteArray> data = nullptr; // a device is not owned
    qint64 offset = 0;                                   // bytes, where data begin in the file
    QString fault;                                       // why it is not to be done at all
    bool isStarted = false;
    QString file;                        // of Get and Put
    std::optional<FtpPlacing> placing{}; // of Put
    enum Step { Main, Questions, Renaming } step = Main;

    bool isByteArray() const { return std::holds_alternative<QByteArray>(data); }
    QIODevice* device() const { return isByteArray() ? nullptr : std::get<QIODevice*>(data); }
};

} // namespace vantrel
