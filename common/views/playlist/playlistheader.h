#pragma once

#include <QHeaderView>

namespace vantrel {

/// The titles of a playlist's columns; a click sorts. A title that its column has no room for is left out,
/// and its tooltip names the column. Owned by PlaylistContainer.
class PlaylistHeader : public QHeaderView
{
    Q_OBJECT

public:
    explicit PlaylistHeader(QWidget* parent = nullptr);

    /// What to call a column in place of the model's text.
    void setTitle(int section, const QString& title);

protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;
    bool viewportEvent(QEvent* event) override;

private:
    QString titleOf(int section) const;
    int markedSection() const;
    bool hasRoom(int section, const QString& title) const;

    QHash<int, QString> m_titles;
};

} // namespace vantrel
