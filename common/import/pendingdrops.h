#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <vector>

namespace vantrel {

/// What was dropped on slots and is not in them yet, since a folder has to arrive or to be read first: what
/// of it the operator is told, and how it is given up. Main thread; owned by MediaArrivals.
class PendingDrops : public QObject
{
    Q_OBJECT

public:
    explicit PendingDrops(QObject* parent = nullptr);

    /// It stands until that object goes or remove() is called. text: plain, asked for whenever it is shown.
    void add(QObject* of, const std::function<QString()>& text, const std::function<void()>& giveUp);
    void remove(const QObject* of);

    /// Of the one that waits longest, with the number of those behind it. Empty for none, and for what is
    /// over in a moment.
    QString text() const;
    /// What text() speaks of; whoever has added it removes it.
    void giveUp();

Q_SIGNALS:
    /// Something has come or gone, or is to be shown by now.
    void changed();

private:
    struct Item
    {
        const QObject* of;
        std::function<QString()> text;
        std::function<void()> giveUp;
    };

    std::vector<Item> m_items; // in the order of the drops
    QTimer m_patience;
    bool m_isTold = false;
};

} // namespace vantrel
