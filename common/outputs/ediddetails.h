#pragma once

#include "common/ui/toolkit/ztframe.h"

class QGridLayout;

namespace vantrel {

class ElidedLabel;
class ZTLabel;

/// What an EDID says of its display, in two columns. Owned by the dialog that shows it; main thread.
class EdidDetails : public ZTFrame
{
    Q_OBJECT

public:
    explicit EdidDetails(QWidget* parent = nullptr);

    /// edid: hexadecimal digits; an empty text shows nothing.
    void setEdid(const QString& edid, bool isFromFile);
    void setObjectNames(const QString& base) override;

private:
    void showFacts();

    QString m_edid;
    ZTLabel* m_heading;
    QGridLayout* m_facts;
    QString m_base;
};

} // namespace vantrel
