#pragma once

#include "common/ui/toolkit/ztframe.h"

class QVBoxLayout;

namespace vantrel {

class PushButton;

/// A panel under a title row that folds it away; open at first. The title row takes the keyboard: Space
/// toggles.
class Collapse : public ZTFrame
{
    Q_OBJECT
    Q_PROPERTY(bool open READ isOpen WRITE setOpen NOTIFY openChanged)

public:
    explicit Collapse(const QString& title, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    QString title() const;
    bool isOpen() const;
    void setOpen(bool open);
    /// The panel's content, replaced by each call; the collapse owns it.
    void setContent(QWidget* content);
    /// The title row, for further widgets at its right end.
    QWidget* titleRow() const { return m_titleRow; }
    void addTitleWidget(QWidget* widget);
    void setObjectNames(const QString& base) override;

Q_SIGNALS:
    void openChanged(bool open);

private:
    void updateIcon();

    QWidget* m_titleRow;
    PushButton* m_titleButton;
    QVBoxLayout* m_layout;
    QWidget* m_content = nullptr;
};

} // namespace vantrel
