#pragma once

#include "common/ui/toolkit/ztframe.h"

#include <QList>

class QVBoxLayout;

namespace vantrel {

class Collapse;

/// A column of folding panels. Of its sections at most one is open: opening one folds the others; its panels
/// fold each for itself.
class Accordion : public ZTFrame
{
    Q_OBJECT

public:
    explicit Accordion(QWidget* parent = nullptr);

    /// Appends a panel, folded unless it is the first; the accordion owns it and its content.
    Collapse* addSection(const QString& title, QWidget* content);
    /// Appends a panel of its own making below all others; the accordion owns it.
    void addPanel(Collapse* panel);
    /// Of sections, as in all that follows.
    int count() const { return static_cast<int>(m_sections.size()); }
    /// Null for an index that is none.
    Collapse* section(int index) const;
    /// -1 while all are folded.
    int openIndex() const;
    /// Opens that one; -1 folds all.
    void setOpenIndex(int index);
    /// Panels are named base + "-" + their index.
    void setObjectNames(const QString& base) override;

Q_SIGNALS:
    void openIndexChanged(int index);

private:
    void onToggled(Collapse* section, bool open);

    QVBoxLayout* m_layout;
    QList<Collapse*> m_sections;
    bool m_folding = false;
};

} // namespace vantrel
