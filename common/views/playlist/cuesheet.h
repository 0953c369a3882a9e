#pragma once

#include <QString>

class QPainter;
class QPagedPaintDevice;

namespace vantrel {

class PlaylistModel;

/// A playlist on paper, to call a show from: number, picture, name, duration, transition and end action, with
/// the running time at which each entry begins.
class CueSheet
{
public:
    /// The model's rows as they stand on the screen; it must live while the sheet is printed.
    CueSheet(const PlaylistModel* model, const QString& title);

    /// False when the device cannot be painted on. Asks for no picture that is not known.
    bool print(QPagedPaintDevice* device) const;
    /// The same as a PDF file of A4 pages; false when it cannot be written.
    bool savePdf(const QString& fileName) const;

private:
    struct Page;
    void printHead(const Page& page, int number) const;
    void printRow(const Page& page, int row, qreal y) const;

    const PlaylistModel* m_model;
    QString m_title;
};

} // namespace vantrel
