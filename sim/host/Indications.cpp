// Messages that only a scenario's event brings about, and requests that come from elsewhere than
// the client.
#include "DeviceRecords.h"
#include "host/HostSubsystems.h"
#include "modem/Modem.h"

namespace {

class Indications : public Subsystem {
  public:
    explicit Indications(Modem &stModem);
};

std::vector<uint8_t> MessageIn(const Section &stSection) {
    std::vector<uint8_t> aucMessage = stSection.Bytes("bytes", WIMAX_MESSAGE_SIZE);
    if (aucMessage.size() < MessageHeader::Size) {
        stSection.Refuse("bytes", "must hold at least the four bytes of type and subtype");
    }
    return aucMessage;
}

Indications::Indications(Modem &stModem) {
    stModem.OnEvent("device-unload",
                    [&stModem](const Section &) { return [&stModem] { stModem.Unload(); }; });
    stModem.OnEvent("ip-filter-status", [&stModem](const Section &stSection) {
        const auto u32Status = static_cast<uint32_t>(stSection.Integer("status", 0, UINT32_MAX, 1));
        return [&stModem, u32Status] {
            Record<IPFilterStatus::Size> stIndication;
            Put(stIndication.Span(), IPFilterStatus::u32Status, u32Status);
            stModem.Tell(TYPE_DEVICE_CONFIG, SUBTYPE_IP_FILTER_STATUS_IND, stIndication.View());
        };
    });
    stModem.OnEvent("request", [&stModem](const Section &stSection) {
        const std::vector<uint8_t> aucRequest = MessageIn(stSection);
        return [&stModem, aucRequest] { stModem.SendByItself(aucRequest); };
    });
    stModem.OnEvent("message", [&stModem](const Section &stSection) {
        const std::vector<uint8_t> aucMessage = MessageIn(stSection);
        return [&stModem, aucMessage] { stModem.TellBytes(aucMessage); };
    });
}

} // namespace

std::unique_ptr<Subsystem> MakeIndications(Modem &stModem) {
    return std::make_unique<Indications>(stModem);
}
