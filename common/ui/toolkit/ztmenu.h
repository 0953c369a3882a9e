#pragma once

#include <QMenu>

namespace vantrel {

/// A menu of the application, with tooltips shown and icons tinted. It closes when it, or what it belongs to,
/// is disabled.
class ZTMenu : public QMenu
{
    Q_OBJECT

public:
    explicit ZTMenu(QWidget* parent = nullptr);
    explicit ZTMenu(const QString& title, QWidget* parent = nullptr);

    void setObjectNames(const QString& base);
    /// An entry with an icon of ours, by path or name.
    QAction* addEntry(const QString& icon, const QString& text);

protected:
    void changeEvent(QEvent* event) override;
};

} // namespace vantrel
