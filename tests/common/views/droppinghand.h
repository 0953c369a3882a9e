#pragma once

#include "common/notification/notificationmanagerimpl.h"
#include "common/qml/dropdialog.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/views/slotdrops.h"
#include "tests/support/livesession.h"
#include "tests/support/patience.h"

#include <QApplication>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QWidget>

#include <algorithm>
#include <memory>

namespace vantrel::test {

/// A live server with an empty collection, a folder of this computer, and a hand that drops out of it.
class DroppingHand
{
public:
    bool isReady() { return server.start() && live.open(server) && takeSlots(); }

    /// As the desktop's file manager does.
    bool drop(const QStringList& names, int slot)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& name : names)
            urls.append(QUrl::fromLocalFile(local.filePath(name)));
        data.setUrls(urls);
        return drop(data, slot);
    }
    bool drop(const QMimeData& data, int slot)
    {
        if (!drops->begin(&data))
            return false;
        drops->aim(slot);
        drops->drop(slot);
        drops->end();
        return true;
    }
    static DropDialog* reviewed()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* dialog = qobject_cast<DropDialog*>(widget);
            if (dialog && dialog->isVisible())
                return dialog;
        }
        return nullptr;
    }
    static bool approve()
    {
        const auto isAsking = [] { return reviewed() && reviewed()->acceptButton()->isEnabled(); };
        if (!QTest::qWaitFor(isAsking, longestWait))
            return false;
        reviewed()->acceptButton()->click();
        return QTest::qWaitFor([] { return !reviewed(); }, longestWait);
    }
    void makePicture(const QString& name) const
    {
        const QString path = local.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QImage picture(64, 36, QImage::Format_RGB32);
        picture.fill(Qt::red);
        picture.save(path, "PNG");
    }
    /// A tenth of a second of silence.
    void makeSound(const QString& name) const
    {
        const QString path = local.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return;
        QDataStream out(&file);
        out.setByteOrder(QDataStream::LittleEndian);
        const QByteArray samples(9600, '\0');
        file.write("RIFF");
        out << quint32(36 + samples.size());
        file.write("WAVEfmt ");
        out << quint32(16) << quint16(1) << quint16(1) << quint32(48000) << quint32(96000) << quint16(2)
            << quint16(16);
        file.write("data");
        out << quint32(samples.size());
        file.write(samples);
    }
    std::shared_ptr<const GuiMediaSlot> slot(int number) const
    {
        return live.library()->slot({LiveSession::collection, number});
    }
    /// What the operator was told last.
    static QString told()
    {
        const auto all = NotificationManagerImpl::instance()->notifications();
        return all.isEmpty() ? QString() : all.last()->details();
    }

    static bool wasTold(const QString& text)
    {
        const auto all = NotificationManagerImpl::instance()->notifications();
        return std::ranges::any_of(all, [&](const auto& one) { return one->details().contains(text); });
    }
    bool isListed(const QString& path) const
    {
        FileSystem* const files = live.session->serverFilesModel()->fileSystem();
        QList<FileSystemFile> content;
        files->getFiles(QStringLiteral("/"), content); // asks for it
        return files->getType(path) == FileSystem::File;
    }

    OmbraProcess server;
    LiveSession live;
    QTemporaryDir local;
    QWidget window;
    std::unique_ptr<SlotDrops> drops;

private:
    bool takeSlots()
    {
        drops = std::make_unique<SlotDrops>(live.session.get(), &live.manager, &window);
        drops->setCollection(LiveSession::collection);
        return true;
    }
};

} // namespace vantrel::test
