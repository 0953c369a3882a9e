#pragma once

#include "tarn/media/mediaaddress.h"
#include "tarn/ref.h"

#include <QList>
#include <QMimeData>

#include <memory>

namespace vantrel {

class GuiMediaSlot;
class MediaLibrary;

/// Slots of the library that are dragged or on the clipboard. Those who know it ask which they are; the text
/// of thousands of them is written only for somebody who reads it, and tells of them as they were when the
/// drag began. Whoever takes it (as a rule QDrag) owns it; main thread only.
class SlotMimeData : public QMimeData
{
    Q_OBJECT

public:
    /// addresses: each once, all of them in the library, which is kept as it is now.
    SlotMimeData(const MediaLibrary& library, const QList<MediaAddress>& addresses);
    ~SlotMimeData() override;

    const QList<MediaAddress>& addresses() const { return m_addresses; }
    /// One of them, as it was when the drag began.
    std::shared_ptr<GuiMediaSlot> slot(const MediaAddress& address) const;
    QStringList formats() const override;

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    QByteArray written() const;

    Ref<const MediaLibrary> m_library;
    QList<MediaAddress> m_addresses;
    mutable QByteArray m_written; // empty until somebody reads it
};

} // namespace vantrel
