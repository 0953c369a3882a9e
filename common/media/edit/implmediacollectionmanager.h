#pragma once

#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/items/guimediaslot.h"
#include "tarn/ref.h"

#include <QObject>

#include <memory>

namespace vantrel {

class AbstractSessionCommand;
class MediaLibrary;

/// MediaCollectionManager on the session's library and undo stack; also what declarative views call as
/// "commandCenter". Main thread only.
class ImplMediaCollectionManager : public QObject, public MediaCollectionManager
{
    Q_OBJECT

public:
    explicit ImplMediaCollectionManager(QObject* parent = nullptr);

    Q_INVOKABLE bool removeCollection(int collection) override;
    Q_INVOKABLE bool appendCollection(const QString& name) override;
    Q_INVOKABLE bool insertCollection(int collection, const QString& name) override;
    Q_INVOKABLE bool copyCollection(int fromCollection, int toCollection = -1) override;
    Q_INVOKABLE bool holdsCollection(int collection) const override;
    Q_INVOKABLE bool isSlotOccupied(int collection, int slot) const override;
    Q_INVOKABLE bool holdsMedia(int collection, int slot) const override;
    Q_INVOKABLE bool findMediaSlot(int collection, int slot, vantrel::GuiMediaSlot& result) const override;
    Q_INVOKABLE int lastSlotInCollection(int collection) const override;
    Q_INVOKABLE void addMedia(int collection, int slot, const QList<QString>& medias) override;
    Q_INVOKABLE void clearSlot(int collection, int slot) override;
    Q_INVOKABLE void moveSlot(int collection, int fromSlot, int toSlot) override;
    std::optional<bool> moveSlots(int collection, const QList<int>& fromSlots, int toSlot) override;
    bool moveSlotsFrom(const QList<MediaAddress>& from, int collection, int toSlot) override;
    Q_INVOKABLE void addMedia(int collection, int slot, const vantrel::GuiMediaSlot& mediaSlot) override;
    Q_INVOKABLE void addMedias(int collection, int slot,
                               const QList<vantrel::GuiMediaSlot>& mediaSlots) override;
    Q_INVOKABLE void renameCollection(int collection, const QString& name) override;
    Q_INVOKABLE bool updateMediaDuration(int collection, int slot, double durationSeconds,
                                         bool isInfinite) override;
    Q_INVOKABLE bool updateMedia(int collection, int slot,
                                 const vantrel::GuiMediaSlot& newMediaSlot) override;
    bool beginStep(const QString& text) override;
    void endStep() override;

protected:
    /// The library that commands are made for; null without a session.
    virtual MediaLibrary* library() const;
    virtual bool execute(std::unique_ptr<AbstractSessionCommand> command);

private:
    template <typename Command, typename... Args>
    bool run(Args&&... args);
    Ref<const MediaLibrary> expected() const;
    int firstFreeCollection() const;
};

} // namespace vantrel
