#pragma once

#include "common/session/settings/fontsize.h"

#include <QObject>

namespace vantrel {

/// The lengths of the text size in force as declarative views see them ("fontSizes"), in pixels: those of the
/// style sheet, the side of an icon, and how finely they are drawn. Main thread only.
class FontSizes : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int caption READ caption NOTIFY changed)
    Q_PROPERTY(int body READ body NOTIFY changed)
    Q_PROPERTY(int title READ title NOTIFY changed)
    Q_PROPERTY(int pad READ pad NOTIFY changed)
    Q_PROPERTY(int padY READ padY NOTIFY changed)
    Q_PROPERTY(int pad2 READ pad2 NOTIFY changed)
    Q_PROPERTY(int check READ check NOTIFY changed)
    Q_PROPERTY(int bar READ bar NOTIFY changed)
    Q_PROPERTY(int icon READ icon NOTIFY changed)
    /// The pixels of the sharpest screen for each of these. Asked of its screen, each picture would follow
    /// that one by itself, which costs a table that is scrolled more than what is drawn.
    Q_PROPERTY(double ratio READ ratio NOTIFY changed)
    /// 0 to 3, from Small to Huge.
    Q_PROPERTY(int index READ index NOTIFY changed)

public:
    explicit FontSizes(QObject* parent = nullptr);

    int caption() const { return length("caption"); }
    int body() const { return length("body"); }
    int title() const { return length("title"); }
    int pad() const { return length("pad"); }
    int padY() const { return length("pady"); }
    int pad2() const { return length("pad2"); }
    int check() const { return length("check"); }
    int bar() const { return length("bar"); }
    int icon() const;
    double ratio() const { return m_ratio; }
    int index() const { return static_cast<int>(m_size); }
    /// A length of the Medium layout at the size in force.
    Q_INVOKABLE int scaled(int pixels) const;

Q_SIGNALS:
    void changed();

private:
    int length(const char* token) const;

    void readRatio();

    FontSize m_size = FontSize::Medium;
    double m_ratio = 1;
};

} // namespace vantrel
