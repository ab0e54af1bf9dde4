#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "measure/CaptureClock.h"
#include "measure/Meter.h"
#include "measure/Objects.h"
#include "measure/PacketLoss.h"
#include "model/Delivery.h"
#include "model/ServiceSession.h"
#include "wire/Ipv4Decoder.h"
#include "wire/Mmtp.h"

namespace vyr::inspect {

/// Counts what is on the air of one capture: every session, whether signalling names it or not, from the first packet
/// on, and of those of ROUTE and MMTP every LCT session and packet_id.
class CTraffic {
  public:
    static constexpr std::size_t k_maxSessions = 1024;
    static constexpr std::size_t k_maxForeign = 768;  ///< of these, for what nothing announces
    static constexpr std::size_t k_maxFlows = 64;     ///< of a session
    static constexpr std::size_t k_maxAllFlows = 4096;
    static constexpr std::size_t k_maxForeignFlows = 2048;
    static constexpr std::size_t k_maxAnnounced = 4096;
    static constexpr std::size_t k_maxServices = 64;  ///< of a session

    /// How long an object of an LCT session is, if signalling knows it: asked when one begins whose packets do not say.
    using TLength = std::function<std::optional<std::uint64_t>(const SServiceSession&, std::uint64_t tsi, const TToi&)>;

    explicit CTraffic(TLength length = {}) : m_length(std::move(length)) {}
    CTraffic(const CTraffic&) = delete;
    CTraffic& operator=(const CTraffic&) = delete;

    void Take(const SDatagram& datagram, const std::optional<STime>& time);
    /// What signalling says of a session, without a source of one from any: its protocol, unless UNKNOWN, and the
    /// service that names it, if one does. What was announced once stays so.
    void Announce(const SServiceSession& session, EDeliveryProtocol protocol, std::optional<unsigned> serviceId = {});
    /// What signalling says that a flow of a session carries; the last word holds.
    void Name(const SServiceSession& session, std::uint64_t flow, const std::string& carries);
    /// When the last datagram came.
    const SMoment& Now() const { return m_now; }
    /// What came until now.
    SDelivery Result(const SSource& source) const;

  private:
    struct SAnnounced {
        std::array<bool, 4> protocols{};  ///< by EDeliveryProtocol
        std::set<unsigned> services;
        std::map<std::uint64_t, std::string> names;  ///< of flows
    };
    struct SFlow {
        SFlow(std::uint64_t number, SObjectsKept& kept) : id(number), objects(kept) {}

        std::uint64_t id;
        CMeter meter;
        std::uint64_t repairPackets = 0;
        CObjects objects;
        CPacketLoss loss;
        std::uint64_t types = 0;  ///< bit n: a packet of payload type n came
        CObjects::TLength length;
    };
    struct SSession {
        SServiceSession key;
        CMeter meter;
        EDeliveryProtocol announced = EDeliveryProtocol::UNKNOWN;
        bool foreign = true;                                  ///< nothing announces it
        EDeliveryProtocol read = EDeliveryProtocol::UNKNOWN;  ///< what its packets are read as
        std::uint64_t lct = 0;                                ///< packets that look like it
        std::uint64_t mmtp = 0;
        std::uint64_t otherPackets = 0;
        std::uint64_t otherVersions = 0;
        std::uint64_t packetsNoFlow = 0;
        std::vector<std::uint64_t> ids;  ///< of the flows
        std::vector<std::unique_ptr<SFlow>> flows;
        std::size_t last = 0;  ///< the flow of the last packet
    };

    SAnnounced* m_Entry(const SServiceSession& session);
    template <class TVisit>
    void m_EachAnnounced(const SServiceSession& key, TVisit visit) const;
    SSession* m_Session(const SServiceSession& key);
    void m_Learn(SSession& session);
    void m_Read(SSession& session, EDeliveryProtocol protocol);
    void m_Guess(SSession& session, SView payload);
    SFlow* m_Flow(SSession& session, std::uint64_t id);
    bool m_TakeLct(SSession& session, SView payload, const SMoment& moment);
    bool m_TakeMmtp(SSession& session, SView payload, const SMoment& moment);
    SSessionDelivery m_Result(const SSession& session) const;
    void m_AddMissing(std::vector<SSessionDelivery>& sessions) const;
    SFlowDelivery m_Result(const SSession& session, const SFlow& flow) const;

    const TLength m_length;
    CCaptureClock m_clock;
    SMoment m_now;
    CMeter m_meter;
    CMeter m_others;
    std::map<SServiceSession, std::unique_ptr<SSession>> m_sessions;
    SSession* m_last = nullptr;  ///< that of the last datagram
    std::size_t m_foreign = 0;
    std::size_t m_flows = 0;
    std::size_t m_foreignFlows = 0;
    std::map<SServiceSession, SAnnounced> m_announced;
    SObjectsKept m_kept;
};

}  // namespace vyr::inspect
