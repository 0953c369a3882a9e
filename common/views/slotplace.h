#pragma once

#include <QString>

class QUrl;

namespace vantrel {

class MediaLibraryModel;

/// Numbers of a collection, side by side, that hold no media: views show them as one place, where something
/// can be dropped. A value.
struct SlotPlace
{
    int first = -1;
    int last = -1;
    bool isSlot = false; // the library has it, and it is empty
    QString name = {};   // of such a slot

    /// The place that begins at the number, as large as it is; without a first number where there is none:
    /// the number holds media.
    static SlotPlace from(const MediaLibraryModel& library, int collection, int number);

    bool isThere() const { return first >= 0; }
    /// "5 – 20", or the one.
    QString numbers() const;
    /// "free", or "empty" with the name of the slot.
    QString state() const;
    /// "5 – 20 free", "7 · empty".
    QString text() const;
    /// The same for who listens.
    QString spoken() const;
    /// What can be done with it.
    static QString hint();

    friend bool operator==(const SlotPlace&, const SlotPlace&) = default;
};

/// Whether what is searched for, without blanks around it, is part of the slot's name or of its file's, case
/// ignored, or the beginning of its number. An empty text finds all.
bool isSlotFound(const QString& searched, int number, const QString& name, const QUrl& file);

} // namespace vantrel
