#pragma once

#include <QImage>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

class QPainter;
class QPagedPaintDevice;

namespace vantrel {

class GuiPlaylistEntry;
class PlaylistModel;

/// A playlist on paper, to call a show from: number, picture, name, duration, transition and end action, with
/// the running time at which each entry begins. Made and given its pictures on the main thread; a copy may be
/// printed on any other.
class CueSheet
{
public:
    /// The model's list in its order, however its rows are sorted, without pictures.
    CueSheet(const PlaylistModel& model, const QString& title);

    /// Takes over the pictures that are known by now. ask: has the others fetched. How many are missing.
    qsizetype takePictures(const PlaylistModel& model, bool ask);
    /// How many different ones there are to be.
    qsizetype pictureCount() const { return m_media.size(); }

    /// Hears of each page before it is drawn; false ends the printing.
    using Progress = std::function<bool(int page, int pages)>;
    /// False when the device cannot be painted on, or progress has ended it.
    bool print(QPagedPaintDevice* device, const Progress& progress = {}) const;
    /// The same as a PDF file of A4 pages, which is there as a whole or not at all. Why it is not; empty when
    /// it is.
    QString savePdf(const QString& fileName, const Progress& progress = {}) const;

private:
    using Entry = std::shared_ptr<const GuiPlaylistEntry>;
    struct Medium
    {
        Entry entry; // one that plays it
        QString name;
        double seconds; // infinity where it has no end
        QImage picture;
    };
    struct Row
    {
        Entry entry;
        qsizetype medium;
    };
    struct Page;
    void printHead(const Page& page, int number) const;
    void printRow(const Page& page, const Row& row, qreal y) const;

    QList<Row> m_rows;
    QList<Medium> m_media;
    QString m_title;
};

} // namespace vantrel
