#include "Inspector.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "base/Gunzip.h"
#include "base/Text.h"
#include "content/Genres.h"
#include "content/LibraryPort.h"
#include "content/LlsTables.h"
#include "content/MessageHead.h"
#include "content/Roots.h"
#include "follow/GuideSessions.h"
#include "follow/MessageFollower.h"
#include "follow/MmtFollower.h"
#include "follow/RouteFollower.h"
#include "follow/SlsFollower.h"
#include "judge/Judge.h"
#include "measure/Arrivals.h"
#include "measure/Traffic.h"
#include "wire/LinkLayer.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_busiest = 3;

std::string Busiest(const std::map<std::pair<std::uint32_t, std::uint16_t>, std::uint64_t>& destinations)
{
    std::vector<std::pair<std::uint64_t, std::string>> sorted;
    for (const auto& [endpoint, count] : destinations) {
        sorted.emplace_back(count, EndpointText(endpoint.first, endpoint.second));
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    std::string text;
    for (std::size_t i = 0; i < sorted.size() && i < k_busiest; ++i) {
        text += (i == 0 ? "" : ", ") + sorted[i].second + " (" + std::to_string(sorted[i].first) + ')';
    }
    return text;
}

/// What the user of the tool says of the sessions of a capture.
void AnnounceOptions(const SOptions& options, CTraffic& traffic)
{
    const auto announce = [&traffic](const auto& endpoints, EDeliveryProtocol protocol) {
        for (const auto& [destination, port] : endpoints) {
            traffic.Announce({destination, port, 0}, protocol);
        }
    };
    announce(options.llsStreams, EDeliveryProtocol::LLS);
    announce(options.routeSessions, EDeliveryProtocol::ROUTE);
    announce(options.mmtpSessions, EDeliveryProtocol::MMTP);
}

void AnnounceServices(const std::vector<SListedService>& services, CTraffic& traffic)
{
    for (const SListedService& service : services) {
        const EDeliveryProtocol protocol = service.slsProtocol == 1   ? EDeliveryProtocol::ROUTE
                                           : service.slsProtocol == 2 ? EDeliveryProtocol::MMTP
                                                                      : EDeliveryProtocol::UNKNOWN;
        traffic.Announce(service.session, protocol, service.serviceId);
    }
}

/// Of what begins like an LLS table of id 2 (RRT): whether it is a message that fits the file, and no table
/// that parses.
bool IsMessageAndNoTable(SView bytes)
{
    if (!IsMessageFile(bytes)) {
        return false;
    }
    const bool table = ParseTable({bytes[0], bytes[1], bytes[2], bytes[3]}, bytes).content.has_value();
    TakeAssertions();
    return !table;
}

/// Of a text that is nothing which is read by itself.
std::string WhatItIs(SView bytes)
{
    std::vector<unsigned char> inflated;
    if (Gunzip(bytes, CSlsFollower::k_maxPackage, inflated)) {
        bytes = {inflated.data(), inflated.size()};
    }
    const std::string known = KnownDocument(bytes).text;
    const std::string root = RootElement(bytes);
    return !known.empty() ? known : k_unknown + (root.empty() ? "" : ": its root element is " + Quoted(root));
}

}  // namespace

CInspector::CInspector(const SOptions& options, CReport& report, const COutput& output, CProgress& progress)
    : m_options(options), m_report(report), m_output(output), m_progress(progress)
{
    InstallPlatform(options.log, options.settings);
    TCParseLLS::SetDecompressLLS(true);
    m_rules = m_options.rules;
    m_rules.verifier = &m_verifier;
    if (const std::string wrong = options.trust.empty() ? std::string() : m_verifier.ReadRoots(options.trust);
        !wrong.empty()) {
        throw std::runtime_error(Printable(options.trust) + ": " + wrong);
    }
    m_channelMap.Create();
    if (const std::string wrong = options.genres.empty() ? std::string() : ReadGenres(options.genres); !wrong.empty()) {
        m_channelMap.Destroy();
        throw std::runtime_error(Printable(options.genres) + ": " + wrong);
    }
}

CInspector::~CInspector()
{
    m_channelMap.Destroy();
}

EExitStatus CInspector::Run()
{
    for (const std::string& name : m_options.inputs) {
        ++m_report.Summary().inputs;
        try {
            m_Inspect(name);
        } catch (const CInputError& error) {
            m_progress.Clear();
            if (IsInputRule(error.Code())) {
                std::fprintf(stderr, "vyr-atsc30-inspect: %s: %s\n", Printable(name).c_str(), error.what());
            }
            m_failed = m_failed || error.Code() <= ERule::INPUT_DIRECTORY;
            m_report.Finding({error.Code(), error.what(), {name, 0, {}}});
        }
        if (m_output.Ended() || CInput::Stopped()) {
            break;
        }
    }
    m_report.Finish();
    m_progress.Clear();
    return m_failed ? EXIT_FAILED : m_report.Summary().From(m_options.failOn) != 0 ? EXIT_FINDINGS : EXIT_FINE;
}

void CInspector::m_Inspect(const std::string& name)
{
    CInput input(name);
    m_report.Received(input.Bytes().size);  // none of a capture
    CJudge judge(m_report, name, input.IsCapture(), m_rules);
    if (input.IsCapture()) {
        ++m_report.Summary().captures;
        m_Capture(input, name, judge);
        return;
    }
    if (input.IsText()) {
        if (!m_GuideFile(input.Bytes(), name)) {
            m_SlsFile(input.Bytes(), name);
        }
    } else if (input.IsBinary() || IsMessageAndNoTable(input.Bytes())) {
        if (!m_GuideFile(input.Bytes(), name)) {
            m_MessageFile(input.Bytes(), name);
        }
    } else {
        ++m_report.Summary().rawTables;
        m_RawTable(input.Bytes(), name);
    }
    judge.Finish({}, false, nullptr);
}

void CInspector::m_Capture(CInput& input, const std::string& name, CJudge& judge)
{
    if (!CPacketDecoder::Knows(input.LinkType())) {
        throw CInputError(ERule::LINK_TYPE, "packets of link type " + input.LinkTypeText() + " cannot be read");
    }
    TFollowers followers;
    for (const TEndpoint& stream : m_options.llsStreams) {
        followers[stream] = std::make_unique<CLlsFollower>(EndpointText(stream.first, stream.second), !m_options.strict,
                                                           m_channelMap, m_report);
    }
    CGuideFollower guide(m_report);
    CGuideSessions guideSessions(guide, m_report);
    const std::unique_ptr<CSessionFollower> sessions[] = {FollowRoute(m_options.routeSessions, guideSessions, m_report),
                                                          FollowMmtp(m_options.mmtpSessions, m_report)};
    CTraffic traffic;
    AnnounceOptions(m_options, traffic);
    const CArrivals arrivals(m_report, traffic);
    for (const auto& [stream, follower] : followers) {
        const TEndpoint& lls = stream;
        follower->SetServiceListener(
            [&sessions, &guide, &traffic, lls](unsigned char groupId, const std::vector<SListedService>& services) {
                AnnounceServices(services, traffic);
                for (const auto& protocol : sessions) {
                    protocol->Announce({lls, groupId}, services);
                }
                guide.Announce({lls, groupId}, services);
            });
    }
    SSource source = {name, 0, {}};
    SInputTimes times = {name, {}, {}};
    TDestinations destinations;
    bool sessionsCaptured = false;
    CPacketDecoder decoder(input.LinkType(), [&](const SDatagram& datagram) {
        const TEndpoint endpoint = {datagram.destination, datagram.destinationPort};
        traffic.Take(datagram, source.time);
        if (const auto follower = followers.find(endpoint); follower != followers.end()) {
            follower->second->Take(datagram.payload, source);
            return;
        }
        sessionsCaptured = true;
        bool taken = guideSessions.Take(datagram, source);
        for (const auto& protocol : sessions) {
            taken = protocol->Take(datagram, source) || taken;
        }
        if (!taken && (destinations.size() < k_maxDestinations || destinations.count(endpoint) != 0)) {
            ++destinations[endpoint];
        }
    });
    const auto finish = [&] {
        if (times.first) {
            m_report.Summary().times.push_back(times);
        }
        decoder.Finish();
        AddCounts(m_report.Summary().packets, decoder.Counts());
        for (const auto& [stream, follower] : followers) {
            m_report.Summary().llsDatagrams += follower->Tables();
            m_Finish(*follower);
        }
        if (!m_output.Ended()) {
            guideSessions.Each([&traffic](const SServiceSession& session, std::uint64_t tsi) {
                traffic.Name(session, tsi, "service guide");
            });
            SDelivery delivery = traffic.Result({name, 0, {}});
            delivery.packetsCut = decoder.Counts().cut;
            delivery.arrivals = arrivals.Result();
            const auto services = [this] { return m_report.Summary().routeServices + m_report.Summary().mmtpServices; };
            const std::uint64_t before = services();
            for (const auto& protocol : sessions) {
                protocol->Finish(name, sessionsCaptured);
            }
            if (!sessionsCaptured && services() != before) {
                m_report.Finding({ERule::NO_SESSIONS,
                                  "no session was captured beside the LLS: nothing can be said of the signalling of " +
                                      Counted(services() - before, "service"),
                                  {name, 0, {}}});
            }
            guideSessions.Finish(name);
            guide.Finish(name, true);
            m_CaptureFindings(name, decoder.Counts(), followers, destinations);
            judge.Finish(times, sessionsCaptured, &delivery);
        }
    };
    SPacket packet;
    try {
        while (!m_output.Ended() && input.Next(packet)) {
            ++source.packet;
            source.time = packet.time;
            times.Add(packet.time);
            m_report.Received(packet.bytes.size);
            decoder.Decode(packet.bytes, packet.cut);
            m_progress.Show(name, source.packet);
        }
    } catch (const CInputError& error) {
        finish();
        throw CInputError(error.Code(), "behind packet " + std::to_string(source.packet) + ": " + error.what());
    }
    finish();
}

/// What is wrong with a capture as a whole, and why what was expected is missing.
void CInspector::m_CaptureFindings(const std::string& name, const SPacketCounts& counts, const TFollowers& followers,
                                   const TDestinations& destinations)
{
    const SSource source = {name, 0, {}};
    if (counts.cut != 0) {
        m_report.Finding({ERule::PACKETS_CUT,
                          std::to_string(counts.cut) + " of " + Counted(counts.packets, "packet") +
                              " cut by the capture: their datagrams are lost",
                          source});
    }
    if (counts.malformed != 0) {
        m_report.Finding({ERule::PACKETS_MALFORMED,
                          std::to_string(counts.malformed) + " of " + Counted(counts.packets, "packet") + " malformed",
                          source});
    }
    for (const auto& [stream, follower] : followers) {
        const std::string streamText = EndpointText(stream.first, stream.second);
        if (follower->Tables() == 0 && m_options.routeSessions.empty() && m_options.mmtpSessions.empty()) {
            const std::string busiest = Busiest(destinations);
            m_report.Finding({ERule::NO_LLS,
                              "no LLS: none of " + Counted(counts.datagrams, "UDP datagram") + " goes to " +
                                  streamText + (busiest.empty() ? "" : "; the busiest destinations are " + busiest),
                              source});
        } else if (follower->Tables() != 0 && !follower->SawSlt()) {
            m_report.Finding({ERule::NO_SLT,
                              "no SLT among " + Counted(follower->Tables(), "LLS table") + " on " + streamText,
                              source});
        }
    }
}

void CInspector::m_RawTable(SView table, const std::string& name)
{
    CLlsFollower follower("", !m_options.strict, m_channelMap, m_report);
    follower.Take(table, {name, 0, {}});
    m_Finish(follower);
}

/// False: it is nothing of the guide.
bool CInspector::m_GuideFile(SView bytes, const std::string& name)
{
    CGuideFollower guide(m_report);
    if (!guide.Take({}, bytes, {name, 0, {}})) {
        return false;
    }
    ++m_report.Summary().guideFiles;
    guide.Finish(name, false);
    return true;
}

void CInspector::m_SlsFile(SView bytes, const std::string& name)
{
    const SFollowed followed;
    CSlsFollower follower(followed, m_report);
    if (!follower.Take({}, bytes, {name, 0, {}})) {
        throw CInputError(ERule::INPUT_UNKNOWN, WhatItIs(bytes));
    }
    ++m_report.Summary().slsFiles;
}

void CInspector::m_MessageFile(SView bytes, const std::string& name)
{
    if (!IsMessageFile(bytes)) {
        throw CInputError(ERule::INPUT_UNKNOWN, k_unknown);
    }
    const SFollowed followed;
    CMessageFollower follower(followed, m_report);
    follower.Take({}, bytes, {name, 0, {}});
    ++m_report.Summary().rawMessages;
}

void CInspector::m_Finish(const CLlsFollower& follower)
{
    m_report.Summary().services += follower.Services();
}

}  // namespace vyr::inspect
