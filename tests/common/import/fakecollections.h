#pragma once

#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/items/guimediaslot.h"
#include "tests/support/patience.h"

#include <QMap>
#include <QStringList>

namespace vantrel::test {

/// One collection in memory, and what was asked of it, as text.
class FakeCollections : public MediaCollectionManager
{
public:
    QMap<int, GuiMediaSlot> content;
    QStringList done;
    int last = 9999;
    int goneCollection = -1;

    void put(int slot, const QString& name)
    {
        content[slot].setName(name);
        content[slot].setContentUrl(QUrl::fromLocalFile(QStringLiteral("/") + name));
    }
    /// "4 b, 5 c"
    QString shown() const
    {
        QStringList texts;
        for (auto it = content.cbegin(); it != content.cend(); ++it)
            texts += QStringLiteral("%1 %2").arg(QString::number(it.key()), it->name());
        return texts.join(QStringLiteral(", "));
    }

    bool removeCollection(int) override { return false; }
    bool appendCollection(const QString&) override { return false; }
    bool insertCollection(int, const QString&) override { return false; }
    bool copyCollection(int, int) override { return false; }
    bool holdsCollection(int collection) const override { return collection != goneCollection; }
    bool isSlotOccupied(int, int slot) const override { return content.contains(slot); }
    bool holdsMedia(int, int slot) const override { return !content.value(slot).contentUrl().isEmpty(); }
    bool findMediaSlot(int, int slot, GuiMediaSlot& result) const override
    {
        result = content.value(slot);
        return content.contains(slot);
    }
    int lastSlotInCollection(int) const override { return last; }
    void addMedia(int, int, const QList<QString>&) override {}
    void clearSlot(int, int slot) override
    {
        done += QStringLiteral("clear %1").arg(slot);
        content.remove(slot);
    }
    void moveSlot(int, int from, int to) override
    {
        done += QStringLiteral("move %1 %2").arg(from).arg(to);
        if (!content.contains(to)) // as the library: never onto what is taken
            content[to] = content.take(from);
    }
    void addMedia(int collection, int slot, const GuiMediaSlot& media) override
    {
        addMedias(collection, slot, {media});
    }
    void addMedias(int, int slot, const QList<GuiMediaSlot>& medias) override
    {
        done += QStringLiteral("add %1 x%2").arg(slot).arg(medias.size());
        for (const GuiMediaSlot& media : medias)
            content[slot++] = media;
    }
    void renameCollection(int, const QString&) override {}
    bool updateMediaDuration(int, int, double, bool) override { return false; }
    bool updateMedia(int, int, const GuiMediaSlot&) override { return false; }
    bool beginStep(const QString&) override
    {
        done += QStringLiteral("begin");
        return true;
    }
    void endStep() override { done += QStringLiteral("end"); }
};

} // namespace vantrel::test
