#pragma once

#include <QModelIndex>
#include <QObject>

namespace vantrel {

/// A hub for requests that any view may make and another serves: play an item at once, show a tab. Owned by
/// the session.
class SignalRelay : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

public Q_SLOTS:
    void handleDirectPlay(QModelIndex index) { Q_EMIT directPlay(index); }
    void handleSetNavBar(uint navBarIndex) { Q_EMIT setNavBar(navBarIndex); }

Q_SIGNALS:
    void directPlay(QModelIndex index);
    void setNavBar(uint navBarIndex);
};

} // namespace vantrel
