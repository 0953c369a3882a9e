#pragma once

#include <QPixmap>
#include <QWidget>

class QScrollArea;

namespace vantrel {

/// A page with every widget of the toolkit in all its states, for whoever checks their look. The text size is
/// switched at the top; it is written to the configuration in force, so give it one of its own. Top-level,
/// owned by the launcher.
class GalleryWindow : public QWidget
{
    Q_OBJECT

public:
    explicit GalleryWindow(QWidget* parent = nullptr);

    /// The whole page at all four text sizes, beside each other.
    QPixmap sheet();

private:
    QWidget* createPage();

    QScrollArea* m_area;
};

} // namespace vantrel
