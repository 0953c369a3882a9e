#pragma once

#include "common/session/settings/fontsize.h"

#include <QImage>
#include <QPixmap>
#include <QQuickItem>

class QPainter;

namespace vantrel {

/// What a slot of the MEDIA tab shows, as a picture with its number and name below or as a row of a table.
/// One drawing, made when something in it changes: each text and box by itself would be drawn anew, and its
/// place worked out, for each picture of a scroll. What is done with the slot is its owner's. Main thread
/// only.
class SlotFace : public QQuickItem
{
    Q_OBJECT
    Q_PROPERTY(bool isTable MEMBER m_isTable NOTIFY changed)
    /// From Small to Huge.
    Q_PROPERTY(int textSize MEMBER m_textSize NOTIFY changed)
    Q_PROPERTY(int slot MEMBER m_slot NOTIFY changed)
    Q_PROPERTY(QString name MEMBER m_name NOTIFY changed)
    /// Whether the name stands there.
    Q_PROPERTY(bool isNamed MEMBER m_isNamed NOTIFY changed)
    /// What stands in the place of the running time.
    Q_PROPERTY(QString length MEMBER m_length NOTIFY changed)
    Q_PROPERTY(QString file MEMBER m_file NOTIFY changed)
    /// A QPixmap; nothing for the drawing of the kind.
    Q_PROPERTY(QVariant thumbnail MEMBER m_thumbnail NOTIFY changed)
    /// A MediaType.
    Q_PROPERTY(int kind MEMBER m_kind NOTIFY changed)
    Q_PROPERTY(bool isPlayable MEMBER m_isPlayable NOTIFY changed)
    Q_PROPERTY(bool hasFaults MEMBER m_hasFaults NOTIFY changed)
    Q_PROPERTY(bool isOnProgram MEMBER m_isOnProgram NOTIFY changed)
    Q_PROPERTY(bool isOnPreview MEMBER m_isOnPreview NOTIFY changed)
    /// How much of the file has arrived, from 0 to 1; below 0 for one that is not on its way.
    Q_PROPERTY(double arrived MEMBER m_arrived NOTIFY changed)
    /// The numbers of a place, which holds no media and whose name says so; empty for a slot.
    Q_PROPERTY(QString place MEMBER m_place NOTIFY changed)
    Q_PROPERTY(bool isAimed MEMBER m_isAimed NOTIFY changed)
    Q_PROPERTY(bool isSelected MEMBER m_isSelected NOTIFY changed)
    Q_PROPERTY(bool isCurrent MEMBER m_isCurrent NOTIFY changed)
    Q_PROPERTY(bool isHovered MEMBER m_isHovered NOTIFY changed)
    /// Whether the view of the slots has the keys.
    Q_PROPERTY(bool hasKeys MEMBER m_hasKeys NOTIFY changed)

public:
    explicit SlotFace(QQuickItem* parent = nullptr);

    /// Where the name stands.
    Q_INVOKABLE QRectF namePlace() const;
    /// Whether the name is longer than its place.
    Q_INVOKABLE bool isNameCut() const;

Q_SIGNALS:
    void changed();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    struct Layout
    {
        QRect screen;
        QRect number;
        QRect name;
        QRect file; // empty where there is no room for it
        QRect length;
        QRect mark;
    };

    Layout layout() const;
    int scaled(int pixels) const;
    int textLength(const char* token) const;
    QFont font(const char* token, bool isBold = false) const;
    void drawAnew();
    QImage drawing();
    void paint(QPainter* painter);
    void paintBox(QPainter* painter) const;
    void paintPlace(QPainter* painter, const Layout& at) const;
    void paintScreen(QPainter* painter, const QRect& screen);
    void paintArrival(QPainter* painter, const QRect& screen) const;
    void paintTexts(QPainter* painter, const Layout& at) const;

    bool m_isDrawn = false;
    QImage m_image; // what was drawn last
    bool m_isTable = false;
    int m_textSize = static_cast<int>(FontSize::Medium);
    int m_slot = 0;
    QString m_name;
    bool m_isNamed = true;
    QString m_length;
    QString m_file;
    QVariant m_thumbnail;
    int m_kind = 0;
    bool m_isPlayable = true;
    bool m_hasFaults = false;
    bool m_isOnProgram = false;
    bool m_isOnPreview = false;
    double m_arrived = -1;
    QString m_place;
    bool m_isAimed = false;
    bool m_isSelected = false;
    bool m_isCurrent = false;
    bool m_isHovered = false;
    bool m_hasKeys = false;
    QPixmap m_scaled; // the thumbnail at the size of its place
    qint64 m_scaledFrom = 0;
};

} // namespace vantrel
