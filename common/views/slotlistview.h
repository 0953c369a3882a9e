#pragma once

#include <QListView>

namespace vantrel {

class SlotDrops;
struct DropForecast;

/// The list of the media panel: one height for all rows, a text in its middle while it is empty, and digits
/// that go to the search field.
class SlotListView : public QListView
{
    Q_OBJECT

public:
    explicit SlotListView(QWidget* parent = nullptr);

    const QString& emptyText() const { return m_emptyText; }
    void setEmpty(const QString& icon, const QString& text);

    /// Takes what is dragged here beside the list's own single rows; null takes nothing else.
    void setDrops(SlotDrops* drops) { m_drops = drops; }

    void keyboardSearch(const QString& text) override;

Q_SIGNALS:
    void textTyped(QString text);
    void deleteRequested();
    void moveSelectedRequested();
    void copyRequested(bool isCut);
    void pasteRequested();
    /// The selected slots are to go into the playlist.
    void insertRequested();
    /// One of our own rows was dropped before this one; the row count for the end.
    void moveRequested(QModelIndex source, int beforeRow);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    bool isOwnRow(const QDropEvent* event) const;
    int gapAt(const QPoint& position) const;
    void showGap(int row);
    int slotAt(int row) const;
    bool isPlace(int row) const;
    int lastOf(int row) const;
    int slotUnder(const QPoint& position) const;
    bool isOwnMove(const QDropEvent* event) const;
    void paintDrop();
    void paintPlaces(QPainter& painter);
    void paintAimedPlace(QPainter& painter, int row, const DropForecast& forecast) const;
    void endDrag();

    /// Does what the key map says of the key for a list; false for any other key.
    bool handleHotkey(const QKeyEvent& event);

    int m_gap = -1; // the row before which a drop would go
    SlotDrops* m_drops = nullptr;
    int m_target = -1; // the slot on which a drop would land
    QString m_emptyIcon;
    QString m_emptyText;
};

} // namespace vantrel
