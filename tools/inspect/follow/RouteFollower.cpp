#include "follow/RouteFollower.h"

#include <list>

#include "base/Text.h"
#include "follow/GuideSessions.h"
#include "follow/SlsFollower.h"
#include "wire/Lct.h"
#include "wire/ObjectAssembler.h"

namespace vyr::inspect {

namespace {

/// What the sessions share.
struct SShared {
    CReport& report;
    CGuideSessions& guide;
    CAssemblyMemory memory;
    std::list<CSlsFollower*> recent;  ///< those for which the library holds something, latest first
};

class CRouteSession : public CSession {
  public:
    CRouteSession(const SServiceSession& session, std::shared_ptr<SShared> shared)
        : CSession(session),
          m_shared(std::move(shared)),
          m_follower(followed, m_shared->report, [this](const CSTSID& stsid) { m_Signal(stsid); }),
          m_assembler(m_shared->memory, [this](const TToi& toi, SView object) { m_Object(toi, object); })
    {
        m_counts.sessions = 1;
    }
    ~CRouteSession() override
    {
        m_shared->recent.remove(&m_follower);
        m_shared->guide.Release(followed.session);
    }

    void Announced() override;
    void Take(SView payload, const SSource& source) override
    {
        SLctPacket packet;
        m_source = &source;
        ++m_counts.packets;
        if (!ReadLct(payload, packet)) {
            ++m_counts.malformed;
        } else if (packet.tsi == 0 && packet.source && packet.data.size != 0) {
            ++m_counts.signalling;
            m_assembler.Take(packet);
        }
    }
    bool Signals() const override { return m_follower.Signals(); }
    std::string Missing(unsigned serviceId) const override { return m_follower.Missing(serviceId); }
    std::string MissingGuide() const override;
    std::string Missing() const override;
    const SSessionCounts& Counts() const override { return m_counts; }
    void Count(SSummary& summary) const override;

  private:
    static constexpr std::size_t k_maxManagers = 64;

    void m_Signal(const CSTSID& stsid);
    void m_Object(const TToi& toi, SView object);

    std::shared_ptr<SShared> m_shared;
    CSlsFollower m_follower;
    CObjectAssembler m_assembler;
    SRouteCounts m_counts;
    const SSource* m_source = nullptr;
    std::multiset<unsigned> m_guides;  ///< those that the guide was told of
    bool m_signalled = false;          ///< an S-TSID has come
};

void CRouteSession::m_Signal(const CSTSID& stsid)
{
    m_signalled = true;
    m_guides = followed.guides;
    m_shared->guide.Signal(followed, stsid, *m_source);
}

/// A service that becomes a guide has the sessions of the S-TSID that came before.
void CRouteSession::Announced()
{
    if (!m_signalled || m_guides == followed.guides) {
        return;
    }
    if (const CSTSID* stsid = m_follower.Stsid()) {
        m_Signal(*stsid);
    } else {
        m_follower.ReadAgain();
    }
}

std::string CRouteSession::MissingGuide() const
{
    return m_signalled ? std::string() : "no S-TSID came, which would name its sessions";
}

void CRouteSession::m_Object(const TToi& toi, SView object)
{
    m_follower.Take(toi, object, *m_source);
    std::list<CSlsFollower*>& recent = m_shared->recent;
    recent.remove(&m_follower);
    if (m_follower.Holds()) {
        recent.push_front(&m_follower);
    }
    if (recent.size() > k_maxManagers) {
        recent.back()->Release();
        recent.pop_back();
    }
}

void CRouteSession::Count(SSummary& summary) const
{
    SRouteCounts counts = m_counts;
    counts.objects = m_assembler.Counts();
    for (const CObjectAssembler::SIncomplete& open : m_assembler.Open()) {
        counts.incomplete += m_follower.Has(open.toi, open.length) ? 0 : 1;
    }
    AddCounts(summary.route, counts);
}

std::string CRouteSession::Missing() const
{
    if (m_counts.signalling == 0) {
        return "none of " + Counted(m_counts.packets, "packet") + " to " + followed.name +
               " carries source data of TSI 0";
    }
    if (m_assembler.Counts().complete != 0) {
        return m_follower.LastFinding();
    }
    const std::vector<CObjectAssembler::SIncomplete> open = m_assembler.Open();
    if (open.empty()) {
        return "its objects are larger than the tool takes";
    }
    const CObjectAssembler::SIncomplete& last = open.back();
    return Counted(open.size(), "object") + " incomplete; of the last one, TOI " + ToiText(last.toi) + ", " +
           std::to_string(last.held) + " of " + (last.length ? std::to_string(*last.length) : "an unknown number of") +
           " bytes came";
}

}  // namespace

std::unique_ptr<CSessionFollower> FollowRoute(const std::set<CSessionFollower::TEndpoint>& endpoints,
                                              CGuideSessions& guide, CReport& report)
{
    const SProtocol protocol = {1, ERule::LCT_MALFORMED, "an LCT packet of ROUTE", "LCT packets of ROUTE",
                                &SSummary::routeServices};
    auto shared = std::make_shared<SShared>(SShared{report, guide, {}, {}});
    return std::make_unique<CSessionFollower>(
        protocol, endpoints,
        [shared](const SServiceSession& session) { return std::make_unique<CRouteSession>(session, shared); }, report);
}

}  // namespace vyr::inspect
