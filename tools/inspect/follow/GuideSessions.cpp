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
    CStream(CGuideSessions& sessions, const SServiceSession& session, std::uint64_t tsi, const SOwner& owner,
            bool carriesGuide)
        : ofGuide(carriesGuide),
          m_session(session),
          m_tsi(tsi),
          m_sessions(sessions),
          m_owner(owner),
          m_assembler(carriesGuide ? sessions.m_memory : sessions.m_fileMemory,
                      [this](const TToi& toi, SView object) { m_Object(toi, object); })
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
        return ofGuide == other.ofGuide && m_tsi == other.m_tsi && !(m_session < other.m_session) &&
               !(other.m_session < m_session);
    }

    const SServiceSession& Session() const { return m_session; }
    TEndpoint Endpoint() const { return {m_session.destination, m_session.port}; }
    std::uint64_t Tsi() const { return m_tsi; }
    const std::string& Name() const { return m_name; }
    bool Guides() const { return m_guides; }
    /// Packets of files that are too large to be put together.
    std::uint64_t TooLarge() const { return ofGuide ? 0 : m_assembler.Counts().tooLarge; }
    std::size_t Open() const { return m_assembler.Open().size(); }
    void Count(SGuideCounts& counts) const
    {
        SGuideCounts own;
        if (!ofGuide) {
            return;
        }
        own.sessions = followed ? 1 : 0;
        own.packets = m_packets;
        own.objects = m_assembler.Counts();
        AddCounts(counts, own);
    }

    /// Whether what did not come will not come: objects are sent for another time, or it is too long ago that the
    /// session was announced.
    bool Settled(const std::optional<STime>& last) const
    {
        return (!m_objects.empty() && m_again.size() == m_objects.size()) ||
               (since && last && Seconds(*last) - Seconds(*since) >= k_longestRound);
    }

    const bool ofGuide;  ///< not of files alone
    SFiles files;
    bool followed = false;
    std::optional<STime> since;  ///< when it was announced

  private:
    static constexpr std::size_t k_mostObjects = 256;

    /// Notes which objects came again since the last that was new.
    void m_Again(const TToi& toi)
    {
        if (m_objects.count(toi) != 0) {
            m_again.insert(toi);
            return;
        }
        m_again.clear();
        if (m_objects.size() < k_mostObjects) {
            m_objects.insert(toi);
        }
    }
    void m_Object(const TToi& toi, SView object)
    {
        SGuidePlace place = {m_name, m_tsi, toi, {}, {}, m_owner.services};
        const auto file = toi.first == 0 ? files.byToi.find(toi.second) : files.byToi.end();
        const bool named = file != files.byToi.end();
        if (named) {
            place.contentLocation = file->second.contentLocation;
            place.contentType = file->second.contentType;
        }
        if (ofGuide && !m_guides) {
            m_Again(toi);
        }
        if (ofGuide && m_sessions.m_guide.Take(place, object, *m_source)) {
            m_guides = true;
        } else if (m_sessions.m_files) {
            m_sessions.m_report.File({*m_source, m_name, m_owner.all, m_tsi, toi,
                                      named ? place.contentLocation : NameByTemplate(files.fileTemplate, toi),
                                      place.contentType, named ? file->second.contentEncoding : "", object,
                                      EntityBody(object)});
        }
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
    std::set<TToi> m_objects;  ///< the first of those that came before anything of the guide did
    std::set<TToi> m_again;    ///< of these
};

CGuideSessions::CGuideSessions(CGuideFollower& guide, CReport& report, bool files)
    : m_guide(guide), m_report(report), m_files(files)
{
}

CGuideSessions::~CGuideSessions() = default;

void CGuideSessions::Signal(const SFollowed& followed, const CSTSID& stsid, const SSource& source)
{
    SOwner& owner = m_owners[followed.session];
    owner.name = followed.name;
    owner.services = {followed.guides.begin(), followed.guides.end()};
    owner.all = followed.Shown();
    std::vector<std::unique_ptr<CStream>> streams = m_Streams(followed, stsid, owner);
    m_Unlist(owner);
    // What goes on keeps the objects that are under way.
    for (std::unique_ptr<CStream>& stream : streams) {
        stream->since = source.time;
        for (std::unique_ptr<CStream>& old : owner.streams) {
            if (old->Is(*stream)) {
                std::swap(old->files, stream->files);
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

CGuideSessions::SFiles CGuideSessions::m_Files(const SEFDTInfo* efdt)
{
    SFiles files;
    if (efdt == nullptr) {
        return files;
    }
    files.fileTemplate = efdt->fileTemplate != nullptr ? efdt->fileTemplate : "";
    if (efdt->fdtGlobal == nullptr) {
        return files;
    }
    const SFDTGlobal& instance = *efdt->fdtGlobal;
    const auto either = [](const std::string& own, const char* common) {
        return own.empty() && common != nullptr ? common : own;
    };
    files.fileTemplate = instance.fileTemplate.empty() ? files.fileTemplate : instance.fileTemplate;
    ForEach<SFDTFile>(instance.files, [&](const SFDTFile& file) {
        if (files.byToi.size() < k_maxFiles) {
            files.byToi[file.toi] = {file.contentLocation, either(file.contentType, instance.contentType),
                                     either(file.contentEncoding, instance.contentEncoding)};
        }
    });
    return files;
}

/// The LCT sessions of the S-TSID that may carry the guide, and of files those that have any.
std::vector<std::unique_ptr<CGuideSessions::CStream>> CGuideSessions::m_Streams(const SFollowed& followed,
                                                                                const CSTSID& stsid,
                                                                                const SOwner& owner)
{
    std::vector<std::unique_ptr<CStream>> streams;
    std::map<std::pair<SServiceSession, std::uint64_t>, CStream*> ofFiles;  // an S-TSID can describe one twice
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
            SFiles files;
            bool streaming = false;
            bool flows = false;
            bool guides = !owner.services.empty();
            ForEach<CSrcFlow>(lct.srcFlows, [&](const CSrcFlow& flow) {
                flows = true;
                streaming = flow.State()->rt;
                files = m_Files(flow.GetEFDTInfo());
            });
            for (const auto& [toi, file] : files.byToi) {
                guides = guides || IsGuideType(file.contentType);
            }
            if (streaming || !(guides || (m_files && flows))) {
                return;
            }
            CStream*& known = ofFiles[{session, lct.tsi}];
            if (!guides && known != nullptr) {
                known->files.byToi.insert(files.byToi.begin(), files.byToi.end());
                known->files.fileTemplate += known->files.fileTemplate.empty() ? files.fileTemplate : "";
                return;
            }
            streams.push_back(std::make_unique<CStream>(*this, session, lct.tsi, owner, guides));
            streams.back()->files = std::move(files);
            known = guides ? known : streams.back().get();
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
        --m_followed[stream->ofGuide ? 1 : 0];
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
    const std::size_t kind = stream->ofGuide ? 1 : 0;
    if (m_followed[kind] < (stream->ofGuide ? k_maxStreams : k_maxFileStreams)) {
        ++m_followed[kind];
        stream->followed = true;
        m_streams.emplace(stream->Endpoint(), stream.get());
        owner.streams.push_back(std::move(stream));
    } else {
        ++m_notFollowed[kind];
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
            taken = taken || stream->second->ofGuide;
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
        if (stream->ofGuide) {
            visit(stream->Session(), stream->Tsi());
        }
    }
}

void CGuideSessions::Finish(const SInputTimes& times, bool whole) const
{
    const std::string& file = times.file;
    for (const auto& [session, owner] : m_owners) {
        const std::string reason = m_Missing(owner, times.last);
        if (!reason.empty() && whole) {
            SFinding finding = {ERule::GUIDE_INCOMPLETE, "no guide on " + owner.name + ": " + reason, {file, 0, {}}};
            finding.about = owner.name;
            if (owner.services.size() == 1) {
                finding.serviceId = *owner.services.begin();
            }
            m_report.Finding(finding);
        }
        for (const std::unique_ptr<CStream>& stream : owner.streams) {
            stream->Count(m_report.Summary().guide);
            if (stream->TooLarge() != 0) {
                SFinding finding = {ERule::EXTRACT_LIMIT,
                                    "of TSI " + std::to_string(stream->Tsi()) + " of " + stream->Name() +
                                        ", files of more than " + std::to_string(CObjectAssembler::k_maxObject) +
                                        " bytes are not written",
                                    {file, 0, {}}};
                finding.about = stream->Name();
                m_report.Finding(finding);
            }
        }
    }
    if (m_notFollowed[0] != 0) {
        m_report.Finding({ERule::EXTRACT_LIMIT,
                          "files come in more than " + std::to_string(k_maxFileStreams) +
                              " LCT sessions: " + std::to_string(m_notFollowed[0]) + " were not followed",
                          {file, 0, {}}});
    }
    if (m_notFollowed[1] != 0) {
        m_report.Finding({ERule::GUIDE_TOO_LARGE,
                          "the guide has more than " + std::to_string(k_maxStreams) +
                              " LCT sessions: " + std::to_string(m_notFollowed[1]) + " were not followed",
                          {file, 0, {}}});
    }
}

void CGuideSessions::Close()
{
    m_streams.clear();
    m_owners.clear();
}

/// Why nothing of the guide came in the owner's sessions; empty: something did, or it may still come.
std::string CGuideSessions::m_Missing(const SOwner& owner, const std::optional<STime>& last) const
{
    const bool any = std::any_of(owner.streams.begin(), owner.streams.end(), [](const auto& s) { return s->ofGuide; });
    if (!any && owner.services.empty()) {
        return {};  // it has files alone
    }
    if (!any) {
        return "its S-TSID names no LCT session with files";
    }
    SGuideCounts counts;
    std::size_t open = 0;
    for (const std::unique_ptr<CStream>& stream : owner.streams) {
        if (stream->Guides() || (stream->ofGuide && !stream->Settled(last))) {
            return {};
        }
        stream->Count(counts);
        open += stream->ofGuide ? stream->Open() : 0;
    }
    const std::string sessions = Counted(counts.sessions, "LCT session");
    if (counts.packets == 0) {
        return "no packets of the " + sessions + " that its S-TSID names";
    }
    return Counted(counts.objects.complete, "object") + " of " + sessions + " hold nothing of it" +
           (open != 0 ? ", " + std::to_string(open) + " incomplete" : "");
}

}  // namespace vyr::inspect
