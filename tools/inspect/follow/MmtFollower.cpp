#include "follow/MmtFollower.h"

#include "base/Text.h"
#include "follow/MessageFollower.h"
#include "wire/MessageAssembler.h"
#include "wire/Mmtp.h"

namespace vyr::inspect {

namespace {

class CMmtSession : public CSession {
  public:
    CMmtSession(const SServiceSession& session, std::shared_ptr<CAssemblyMemory> memory, CReport& report)
        : CSession(session),
          m_memory(std::move(memory)),
          m_follower(followed, report),
          m_assembler(*m_memory,
                      [this](std::uint16_t packetId, SView message) { m_follower.Take(packetId, message, *m_source); })
    {
        m_counts.sessions = 1;
    }

    void Take(SView payload, const SSource& source) override;
    bool Signals() const override { return m_follower.Signals(); }
    std::string Missing(unsigned serviceId) const override { return m_follower.Missing(serviceId); }
    std::string Missing() const override;
    const SSessionCounts& Counts() const override { return m_counts; }
    void Count(SSummary& summary) const override;

  private:
    std::shared_ptr<CAssemblyMemory> m_memory;
    CMessageFollower m_follower;
    CMessageAssembler m_assembler;
    SMmtpCounts m_counts;
    const SSource* m_source = nullptr;
};

void CMmtSession::Take(SView payload, const SSource& source)
{
    SMmtpPacket packet;
    m_source = &source;
    ++m_counts.packets;
    switch (ReadMmtp(payload, packet)) {
        case EMmtp::OTHER_VERSION:
            ++m_counts.otherVersions;
            break;
        case EMmtp::MALFORMED:
            ++m_counts.malformed;
            break;
        case EMmtp::FINE:
            if (packet.type != SMmtpPacket::k_signalling || packet.fec > SMmtpPacket::k_fecSource) {
                ++m_counts.otherTypes;
            } else if (m_assembler.Take(packet)) {
                ++m_counts.signalling;
            } else {
                ++m_counts.malformed;
            }
    }
}

void CMmtSession::Count(SSummary& summary) const
{
    SMmtpCounts counts = m_counts;
    counts.messages = m_assembler.Counts();
    AddCounts(summary.mmtp, counts);
}

std::string CMmtSession::Missing() const
{
    const SMessageCounts messages = m_assembler.Counts();
    if (messages.complete != 0) {
        return m_follower.LastFinding();
    }
    if (m_counts.signalling != 0) {
        return messages.lost != 0 ? Counted(messages.lost, "message") + " incomplete, and none whole"
                                  : "its messages are larger than the tool takes";
    }
    return "none of " + Counted(m_counts.packets, "packet") + " to " + followed.name + " carries signalling";
}

}  // namespace

std::unique_ptr<CSessionFollower> FollowMmtp(const std::set<CSessionFollower::TEndpoint>& endpoints, CReport& report)
{
    const SProtocol protocol = {2, ERule::MMTP_MALFORMED, "an MMTP packet", "MMTP packets", &SSummary::mmtpServices};
    const auto memory = std::make_shared<CAssemblyMemory>();
    return std::make_unique<CSessionFollower>(
        protocol, endpoints,
        [memory, &report](const SServiceSession& session) {
            return std::make_unique<CMmtSession>(session, memory, report);
        },
        report);
}

}  // namespace vyr::inspect
