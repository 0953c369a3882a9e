#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantList>

namespace vantrel {

/// What the MEDIA tab tells of the slots that are selected. A value.
struct ShownSlots
{
    Q_GADGET
    Q_PROPERTY(int count MEMBER count)
    Q_PROPERTY(int collection MEMBER collection)
    Q_PROPERTY(int slot MEMBER slot)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString picture MEMBER picture)
    Q_PROPERTY(int kind MEMBER kind)
    Q_PROPERTY(QUrl file MEMBER file)
    Q_PROPERTY(QString path MEMBER path)
    Q_PROPERTY(bool isPlayable MEMBER isPlayable)
    Q_PROPERTY(QString faults MEMBER faults)
    Q_PROPERTY(QVariantList facts MEMBER facts)
    Q_PROPERTY(QStringList uses MEMBER uses)
    Q_PROPERTY(QStringList twins MEMBER twins)

public:
    int count = 0;
    int collection = -1;
    QVariantList facts; // maps with "label" and "value"
    QUrl file;          // that all of them play; empty for several
    int slot = -1;      // this and what follows is of a single one
    QString name;
    QString picture; // where a view finds it
    int kind = 0;
    QString path; // of the file, as a text
    bool isPlayable = true;
    QString faults;
    QStringList uses;  // the entries of playlists that play it
    QStringList twins; // other slots with the same file
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::ShownSlots)
