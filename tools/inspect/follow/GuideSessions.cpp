#include "follow/GuideSessions.h"

#include <algorithm>

#include "base/Text.h"
#include "content/PtrArrays.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/RS.h"
#include "route/SLS/STSID.h"
#include "route/SLS/SrcFlow.h"
#include "wire/Lct.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_none = 0xFFFFFFFF;
constexpr unsigned short k_noPort = 0xFFFF;

}  // namespace

class CGuideSessions::CStream {
  public:
    CStream(CGuideSessions& sessions, const SServiceSession& session, std::uint64_t tsi, const SOwner& owner)
        : m_session(session),
          m_tsi(tsi),
          m_sessions(sessions),
          m_owner(owner),
          m_assembler(sessions.m_memory, [this](const TToi& toi, SView object) { m_Object(toi, object); })
    {
        m_name = EndpointText(session.destination, session.port);
    }

    void Take(const SLctPacket& packet, const SSource& source)
    {
        m_source = &source;
        ++m_packets;
        m_assembler.Take(packet);
    }
    bool Takes(const SDatagram& datagram) const { return m_session.source == 0 || m_session.source == datagram.source; }
    bool Is(const CStream& other) const
    {
        return m_tsi == other.m_tsi && !(m_session < other.m_session) && !(other.m_session < m_session);
    }

    const SServiceSession& Session() const { return m_session; }
    TEndpoint Endpoint() const { return {m_session.destination, m_session.port}; }
    std::uint64_t Tsi() const { return m_tsi; }
    const std::string& Name() const { return m_name; }
    bool Guides() const { return m_guides; }
    std::size_t Open() const { return m_assembler.Open().size(); }
    void Count(SGuideCounts& counts) const
    {
        SGuideCounts own;
        own.sessions = followed ? 1 : 0;
        own.packets = m_packets;
        own.objects = m_assembler.Counts();
        AddCounts(counts, own);
    }
    void SetFiles(const SEFDTInfo* efdt)
    {
        files.clear();
        if (efdt == nullptr || efdt->fdtGlobal == nullptr) {
            return;
        }
        const char* common = efdt->fdtGlobal->contentType;
        ForEach<SFDTFile>(efdt->fdtGlobal->files, [&](const SFDTFile& file) {
            if (files.size() < k_maxFiles) {
                const bool own = !file.contentType.empty() || common == nullptr;
                files[file.toi] = {file.contentLocation, own ? file.contentType : common};
            }
        });
    }

    std::map<std::uint64_t, SFile> files;  ///< by TOI
    bool followed = false;

  private:
    void m_Object(const TToi& toi, SView object)
    {
        SGuidePlace place = {m_name, m_tsi, toi, {}, {}, m_owner.services};
        const auto file = toi.first == 0 ? files.find(toi.second) : files.end();
        if (file != files.end()) {
            place.contentLocation = file->second.contentLocation;
            place.contentType = file->second.contentType;
        }
        m_guides = m_sessions.m_guide.Take(place, object, *m_source) || m_guides;
    }

    const SServiceSession m_session;
    const std::uint64_t m_tsi;
    std::string m_name;
    CGuideSessions& m_sessions;
    const SOwner& m_owner;
    CObjectAssembler m_assembler;
    const SSource* m_source = nullptr;
    std::uint64_t m_packets = 0;
    bool m_guides = false;
};

CGuideSessions::CGuideSessions(CGuideFollower& guide, CReport& report) : m_guide(guide), m_report(report) {}

CGuideSessions::~CGuideSessions() = default;

void CGuideSessions::Signal(const SFollowed& followed, const CSTSID& stsid)
{
    SOwner& owner = m_owners[followed.session];
    owner.name = followed.name;
    owner.services = {followed.guides.begin(), followed.guides.end()};
    std::vector<std::unique_ptr<CStream>> streams = m_Streams(followed, stsid, owner);
    m_Unlist(owner);
    // What goes on keeps the objects that are under way.
    for (std::unique_ptr<CStream>& stream : streams) {
        for (std::unique_ptr<CStream>& old : owner.streams) {
            if (old->Is(*stream)) {
                old->files.swap(stream->files);
                stream.swap(old);
                break;
            }
        }
    }
    m_Drop(owner);
    for (std::unique_ptr<CStream>& stream : streams) {
        m_Follow(owner, std::move(stream));
    }
    if (owner.streams.empty() && owner.services.empty()) {
        m_owners.erase(followed.session);
    }
}

/// The LCT sessions of the S-TSID that may carry the guide.
std::vector<std::unique_ptr<CGuideSessions::CStream>> CGuideSessions::m_Streams(const SFollowed& followed,
                                                                                const CSTSID& stsid,
                                                                                const SOwner& owner)
{
    std::vector<std::unique_ptr<CStream>> streams;
    ForEach<CRS>(stsid.State()->routeSessions, [&](const CRS& rs) {
        const CRS::SRS& state = *rs.State();
        SServiceSession session = followed.session;
        session.destination = state.dIpAddr != k_none ? state.dIpAddr : session.destination;
        session.port = state.dPort != k_noPort ? state.dPort : session.port;
        session.source = state.sIpAddr != k_none ? state.sIpAddr : session.source;
        ForEach<CLS>(state.ls, [&](const CLS& ls) {
            const CLS::SLS& lct = *ls.State();
            if (lct.tsi == 0 || lct.tsi == k_none) {
                return;
            }
            auto stream = std::make_unique<CStream>(*this, session, lct.tsi, owner);
            bool streaming = false;
            bool guides = !owner.services.empty();
            ForEach<CSrcFlow>(lct.srcFlows, [&](const CSrcFlow& flow) {
                streaming = flow.State()->rt;
                stream->SetFiles(flow.GetEFDTInfo());
            });
            for (const auto& [toi, file] : stream->files) {
                guides = guides || IsGuideType(file.contentType);
            }
            if (guides && !streaming) {
                streams.push_back(std::move(stream));
            }
        });
    });
    return streams;
}

void CGuideSessions::Release(const SServiceSession& session)
{
    const auto owner = m_owners.find(session);
    if (owner != m_owners.end()) {
        m_Unlist(owner->second);
        m_Drop(owner->second);
        m_owners.erase(owner);
    }
}

/// Takes the streams of the owner out of those that are given datagrams.
void CGuideSessions::m_Unlist(const SOwner& owner)
{
    for (const std::unique_ptr<CStream>& stream : owner.streams) {
        const auto [begin, end] = m_streams.equal_range(stream->Endpoint());
        m_streams.erase(std::find_if(begin, end, [&](const auto& entry) { return entry.second == stream.get(); }));
    }
}

void CGuideSessions::m_Drop(SOwner& owner)
{
    for (const std::unique_ptr<CStream>& stream : owner.streams) {
        stream->Count(m_report.Summary().guide);
    }
    owner.streams.clear();
}

void CGuideSessions::m_Follow(SOwner& owner, std::unique_ptr<CStream> stream)
{
    if (m_streams.size() < k_maxStreams) {
        stream->followed = true;
        m_streams.emplace(stream->Endpoint(), stream.get());
        owner.streams.push_back(std::move(stream));
    } else {
        ++m_notFollowed;
    }
}

bool CGuideSessions::Take(const SDatagram& datagram, const SSource& source)
{
    const auto [begin, end] = m_streams.equal_range({datagram.destination, datagram.destinationPort});
    SLctPacket packet;
    if (begin == end || !ReadLct(datagram.payload, packet)) {
        return false;
    }
    bool taken = false;
    for (auto stream = begin; stream != end; ++stream) {
        if (stream->second->Tsi() == packet.tsi && stream->second->Takes(datagram)) {
            taken = true;
            if (packet.source && packet.data.size != 0) {
                stream->second->Take(packet, source);
            }
        }
    }
    return taken;
}

void CGuideSessions::Each(const std::function<void(const SServiceSession&, std::uint64_t)>& visit) const
{
    for (const auto& [endpoint, stream] : m_streams) {
        visit(stream->Session(), stream->Tsi());
    }
}

void CGuideSessions::Finish(const std::string& file, bool whole)
{
    for (auto& [session, owner] : m_owners) {
        const std::string reason = m_Missing(owner);
        if (!reason.empty() && whole) {
            SFinding finding = {ERule::GUIDE_INCOMPLETE, "no guide on " + owner.name + ": " + reason, {file, 0, {}}};
            if (owner.services.size() == 1) {
                finding.serviceId = *owner.services.begin();
            }
            m_report.Finding(finding);
        }
        m_Unlist(owner);
        m_Drop(owner);
    }
    m_owners.clear();
    if (m_notFollowed != 0) {
        m_report.Finding({ERule::GUIDE_TOO_LARGE,
                          "the guide has more than " + std::to_string(k_maxStreams) +
                              " LCT sessions: " + std::to_string(m_notFollowed) + " were not followed",
                          {file, 0, {}}});
    }
}

/// Why nothing of the guide came in the owner's sessions; empty: something did.
std::string CGuideSessions::m_Missing(const SOwner& owner) const
{
    if (owner.streams.empty()) {
        return "its S-TSID names no LCT session with files";
    }
    SGuideCounts counts;
    std::size_t open = 0;
    for (const std::unique_ptr<CStream>& stream : owner.streams) {
        if (stream->Guides()) {
            return {};
        }
        stream->Count(counts);
        open += stream->Open();
    }
    const std::string sessions = Counted(counts.sessions, "LCT session");
    if (counts.packets == 0) {
        return "no packets of the " + sessions + " that its S-TSID names";
    }
    return Counted(counts.objects.complete, "object") + " of " + sessions + " hold nothing of it" +
           (open != 0 ? ", " + std::to_string(open) + " incomplete" : "");
}

}  // namespace vyr::inspect
