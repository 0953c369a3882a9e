// What a drag brings to a slot: whatever it says it is, what is believed means something, and what is not
// says why.
#include "common/import/slotpayload.h"
#include "common/media/items/mimedata.h"
#include "tarn/media/mediacollection.h"

#include <QMimeData>

#include <array>
#include <cstdint>
#include <cstdlib>

using namespace vantrel;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void quiet(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static constexpr std::array types{"slot", "media", "playlist", "2"};
    static const QtMessageHandler before = qInstallMessageHandler(quiet);
    Q_UNUSED(before);
    if (size == 0)
        return 0;
    QMimeData mime;
    mime.setData(mimeformat::type, types[data[0] % types.size()]);
    mime.setData(mimeformat::json, QByteArray(reinterpret_cast<const char*>(data) + 1, qsizetype(size) - 1));
    const SlotPayload payload = SlotPayload::of(&mime);
    using Kind = SlotPayload::Kind;
    require(payload.isSound() || !payload.fault().isEmpty());
    require(payload.addresses().isEmpty() == (payload.kind() != Kind::Slots));
    for (const MediaAddress& address : payload.addresses())
        require(address.slot >= 0 && address.slot <= MediaCollection::getMediaSlotIndexMax());
    for (const MediaEntry& entry : payload.entries())
        require(entry.path.startsWith(u'/') && !entry.path.contains(QStringLiteral("/../")) &&
                entry.durationSeconds >= 0);
    return 0;
}
