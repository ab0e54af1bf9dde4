#include "judge/Judge.h"

#include <algorithm>

#include "base/Text.h"
#include "judge/Names.h"
#include "judge/OnAir.h"
#include "judge/Read.h"
#include "judge/Verdicts.h"
#include "model/Content.h"
#include "model/Guide.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_slt = 1;
const std::vector<SLctFacts> k_noSessions;

/// Remembers the LCT sessions of an S-TSID that another one replaces.
void KeepEarlier(SPackageFacts& package)
{
    constexpr std::size_t k_most = 64;
    for (const SLctFacts& lct : package.stsid ? package.stsid->sessions : k_noSessions) {
        const TLctKey key = KeyOf(package, lct);
        const bool fits = package.earlier.size() < k_most || package.earlier.count(key) != 0;
        package.allEarlier = package.allEarlier && fits && package.stsid->whole;
        if (fits) {
            package.earlier.insert(key);
        }
    }
}

/// Says of what an S-TSID announces since when it has been announced like this.
void Date(const SPackageFacts& package, SStsidFacts& stsid, const std::optional<STime>& now)
{
    std::map<TLctKey, const SLctFacts*> before;
    for (const SLctFacts& lct : package.stsid ? package.stsid->sessions : k_noSessions) {
        before.emplace(KeyOf(package, lct), &lct);
    }
    for (SLctFacts& lct : stsid.sessions) {
        const auto known = before.find(KeyOf(package, lct));
        const SLctFacts* last = known != before.end() ? known->second : nullptr;
        const auto since = [&](bool same, const std::optional<STime> SLctFacts::*of) {
            return !package.stsid ? std::nullopt : last != nullptr && same ? last->*of : now;
        };
        lct.rateSince = since(last != nullptr && last->bandwidth == lct.bandwidth && last->repId == lct.repId,
                              &SLctFacts::rateSince);
        lct.windowSince = since(last != nullptr && last->startTime == lct.startTime && last->endTime == lct.endTime,
                                &SLctFacts::windowSince);
    }
}

/// The same of the bandwidths of an MPD.
void Date(const SPackageFacts& package, SMpdFacts& mpd, const std::optional<STime>& now)
{
    std::map<std::pair<std::string, std::uint64_t>, std::optional<STime>> before;
    for (std::size_t i = 0; package.mpd && i < package.mpd->representations.size(); ++i) {
        const SRepresentationFacts& each = package.mpd->representations[i];
        before.emplace(std::pair(each.id, each.bandwidth), each.bandwidthSince);
    }
    for (SRepresentationFacts& each : mpd.representations) {
        const auto known = before.find({each.id, each.bandwidth});
        each.bandwidthSince = !package.mpd ? std::nullopt : known != before.end() ? known->second : now;
    }
}

/// Whether it is wrong with a message, or an object of signalling, until another one takes its place.
bool IsOfMessage(const SFinding& finding)
{
    return finding.rule == ERule::MESSAGE_NOT_PARSED || finding.rule == ERule::DOCUMENT_NOT_PARSED ||
           finding.rule == ERule::OBJECT_NOT_READ || finding.rule == ERule::CHANGED_WITHOUT_VERSION;
}

std::tuple<ERule, unsigned, std::string, std::string> HeardKey(const SFinding& finding)
{
    constexpr unsigned k_none = 0x10000;
    return {finding.rule, finding.serviceId.value_or(k_none), finding.session, finding.serviceList};
}

/// What tells the documents of one service from those of others: the key without the kind.
std::string PackageKey(const std::string& documentKey)
{
    return documentKey.substr(0, documentKey.rfind(' '));
}

}  // namespace

std::vector<const SPackageFacts*> SEvidence::Of(const SSltService& service) const
{
    std::vector<const SPackageFacts*> own;
    std::vector<const SPackageFacts*> others;
    const std::string session = SessionOf(service);
    for (const auto& [key, package] : packages) {
        if (session.empty() || package.session != session) {
            continue;
        }
        const bool its = package.usbd && package.usbd->serviceId == unsigned{service.serviceId};
        (its ? own : others).push_back(&package);
    }
    return own.empty() ? others : own;
}

CJudge::CJudge(CReport& report, const std::string& file, bool capture, const SRuleSettings& settings)
    : m_report(report), m_findings(report, file)
{
    m_evidence.file = file;
    m_evidence.capture = capture;
    m_rules.push_back(ListRules(m_evidence, m_findings, settings));
    m_rules.push_back(TimeRules(m_evidence, m_findings));
    m_rules.push_back(SignallingRules(m_evidence, m_findings, settings));
    m_rules.push_back(DeliveryRules(m_evidence, m_findings, settings));
    m_rules.push_back(MmtRules(m_evidence, m_findings, settings));
    m_rules.push_back(AlertRules(m_evidence, m_findings));
    m_rules.push_back(RatingRules(m_evidence, m_findings));
    m_rules.push_back(SignatureRules(m_evidence, m_findings, settings));
    m_rules.push_back(GuideRules(m_evidence, m_findings));
    m_report.AddWitness(*this);
}

CJudge::~CJudge()
{
    m_report.RemoveWitness(*this);
}

/// Does not hold against a service any more what successors have mended.
template <class TWhich>
void CJudge::m_Forget(TWhich which)
{
    const auto end = std::remove_if(m_heard.begin(), m_heard.end(), [&](const SFinding& finding) {
        return which(finding) && m_heardOf.erase(HeardKey(finding)) != 0;
    });
    m_heard.erase(end, m_heard.end());
}

/// What was wrong with the documents that the object has in its package is over when all of the package parse.
void CJudge::m_ForgetMended(const SSignalling& signalling)
{
    const bool broken =
        std::any_of(signalling.documents.begin(), signalling.documents.end(), [this](const SSlsDocument& document) {
            const auto package = m_evidence.packages.find(PackageKey(document.key));
            return package == m_evidence.packages.end() ||
                   std::any_of(package->second.broken.begin(), package->second.broken.end(),
                               [](const auto& kind) { return kind.second; });
        });
    if (!broken && !signalling.documents.empty()) {
        m_Forget(
            [&](const SFinding& finding) { return finding.session == signalling.session && IsOfMessage(finding); });
    }
}

/// The same of messages: what is wrong with this one is told behind it.
void CJudge::m_ForgetMended(const SMessage& message)
{
    m_message = {message.session, message.key};
    m_faulty.erase(m_message);
    const auto other = m_faulty.lower_bound({message.session, {}});
    if (other == m_faulty.end() || other->first != message.session) {
        m_Forget([&](const SFinding& finding) { return finding.session == message.session && IsOfMessage(finding); });
    }
}

void CJudge::Table(const STable& table)
{
    if (table.slt) {
        m_stream = table.stream;
        const std::string list = ServiceListName(table.stream, table.header.groupId);
        m_Forget([&](const SFinding& finding) { return finding.header && finding.serviceList == list; });
    }
    for (const auto& rules : m_rules) {
        rules->Table(table);
    }
    for (const TListKey& gone : table.listsGone) {
        m_Drop(gone, table.source);
    }
    if (table.slt) {
        m_HoldList(table);
    }
}

/// Takes the list in place of the last one of its group.
void CJudge::m_HoldList(const STable& table)
{
    ++m_changes;
    const TListKey key = {table.stream, table.header.groupId};
    const auto known = m_evidence.lists.find(key);
    if (known == m_evidence.lists.end() && m_evidence.lists.size() == k_mostLists) {
        return;
    }
    m_services -= known != m_evidence.lists.end() ? known->second.services.size() : 0;
    const std::size_t count = std::min({table.slt->services.size(), k_mostJudged, k_mostServices - m_services});
    SListFacts list = {table.source,
                       table.header,
                       table.slt->bsid,
                       !table.slt->inetUrls.empty(),
                       {},
                       table.slt->leftOut == 0 && count == table.slt->services.size()};
    list.services.assign(table.slt->services.begin(), table.slt->services.begin() + static_cast<std::ptrdiff_t>(count));
    m_services += count;
    m_CountSessions(list, table.source, true);  // first: a session of both lists stays what it is
    SListFacts& held = m_evidence.lists[key];
    m_CountSessions(held, table.source, false);
    held = std::move(list);
}

/// Enters the sessions that the list gives its services, or takes them out.
void CJudge::m_CountSessions(const SListFacts& list, const SSource& source, bool held)
{
    for (const SSltService& service : list.services) {
        const std::string session = service.notListed.empty() ? SessionOf(service) : std::string();
        if (session.empty()) {
            continue;
        }
        const auto [entry, isNew] = m_evidence.listed.try_emplace(session);
        if (isNew) {
            entry->second.since = source.time;
        }
        entry->second.services += held ? 1 : 0;
        if (!held && --entry->second.services == 0) {
            m_evidence.listed.erase(entry);
        }
    }
}

void CJudge::m_Drop(const TListKey& key, const SSource& source)
{
    const auto known = m_evidence.lists.find(key);
    if (known != m_evidence.lists.end()) {
        ++m_changes;
        m_services -= known->second.services.size();
        m_CountSessions(known->second, source, false);
        m_evidence.lists.erase(known);
    }
}

void CJudge::Signalling(const SSignalling& signalling)
{
    for (const auto& rules : m_rules) {
        rules->Signalling(signalling);
    }
    for (const SSlsDocument& document : signalling.documents) {
        const std::string key = PackageKey(document.key);
        if (m_evidence.packages.size() >= k_mostPackages && m_evidence.packages.count(key) == 0) {
            continue;
        }
        SPackageFacts& package = m_evidence.packages[key];
        package.session = signalling.session;
        package.announced = signalling.services;
        if (document.status == EDocumentStatus::UNCHANGED) {
            continue;
        }
        package.source = signalling.source;
        package.broken[document.kind] = !document.parsed;
        if (!document.parsed || !document.content) {
            continue;
        }
        package.documentSource[document.kind] = signalling.source;
        m_Hold(package, document);
    }
    if (signalling.status != EStatus::REPEATED) {
        m_ForgetMended(signalling);
    }
}

/// Enters the files of an S-TSID, or lets go of them.
void CJudge::m_Index(const SPackageFacts& package, bool held)
{
    for (const SLctFacts& lct : package.stsid ? package.stsid->sessions : k_noSessions) {
        const TLctKey key = KeyOf(package, lct);
        const std::pair place(std::get<0>(key), std::get<2>(key));
        if (held && !lct.files.empty()) {
            m_files[place] = &lct;
        } else if (const auto known = m_files.find(place); !held && known != m_files.end() && known->second == &lct) {
            m_files.erase(known);
        }
    }
}

std::optional<std::uint64_t> CJudge::FileLength(const SServiceSession& session, std::uint64_t tsi,
                                                const TToi& toi) const
{
    const auto lct = m_files.find({EndpointText(session.destination, session.port), tsi});
    if (lct == m_files.end() || (!lct->second->source.empty() && lct->second->source != Ipv4Text(session.source))) {
        return {};
    }
    const std::vector<SFileFacts>& files = lct->second->files;
    const auto file = std::find_if(files.begin(), files.end(), [&](const SFileFacts& each) { return each.toi == toi; });
    return file != files.end() ? file->length : std::nullopt;
}

/// Takes the facts of a document in place of those of the last of its kind; of one that is too much, that there is one.
void CJudge::m_Hold(SPackageFacts& package, const SSlsDocument& document)
{
    const TJson& json = document.content->json;
    ++m_changes;
    m_bytes -= package.Bytes();
    const auto hold = [&](auto& held, auto facts) {
        held.reset();
        if (m_bytes + package.Bytes() + facts.Bytes() > k_mostBytes) {
            facts = {};
            facts.whole = false;
        }
        held = std::move(facts);
    };
    if (document.kind == ESlsDocument::USBD) {
        hold(package.usbd, UsbdFacts(json));
    } else if (document.kind == ESlsDocument::STSID) {
        SStsidFacts facts = StsidFacts(json);
        Date(package, facts, package.documentSource[document.kind].time);
        KeepEarlier(package);
        m_Index(package, false);
        hold(package.stsid, std::move(facts));
        m_Index(package, true);
    } else if (document.kind == ESlsDocument::MPD) {
        SMpdFacts facts = MpdFacts(json);
        Date(package, facts, package.documentSource[document.kind].time);
        hold(package.mpd, std::move(facts));
    }
    m_bytes += package.Bytes();
}

void CJudge::Message(const SMessage& message)
{
    for (const auto& rules : m_rules) {
        rules->Message(message);
    }
    HoldMessage(m_evidence.mmt, message);
    if (message.status != EStatus::REPEATED) {
        m_ForgetMended(message);
    }
    m_changes += message.status != EStatus::REPEATED ? 1 : 0;
}

void CJudge::GuideObject(const SGuideObject& object)
{
    for (const auto& rules : m_rules) {
        rules->GuideObject(object);
    }
    SGuideFacts& guide = m_evidence.guide;
    if (!object.content) {
        guide.whole = guide.whole && object.status == EStatus::REPEATED;
    } else if (object.kind == EGuideObject::DELIVERY_DESCRIPTOR) {
        guide.Add(object.content->json);
    } else if (object.kind == EGuideObject::RESPONSE) {
        guide.whole = Each(object.content->json, "ServiceGuideDeliveryDescriptor",
                           [&guide](const TJson& descriptor) { guide.Add(descriptor); }) &&
                      guide.whole;
    }
}

void CJudge::Guide(const SGuide& guide)
{
    for (const auto& rules : m_rules) {
        rules->Guide(guide);
    }
}

/// Of findings that are alike, the first is enough.
void CJudge::Finding(const SFinding& finding)
{
    const bool ofService = finding.serviceId || !finding.session.empty();
    if (ofService && finding.session == m_message.first && IsOfMessage(finding) && m_faulty.size() < k_mostHeard) {
        m_faulty.insert(m_message);
    }
    if (!ofService || (finding.severity == ESeverity::NOTE && !Stops(finding.rule)) || m_heard.size() >= k_mostHeard) {
        return;
    }
    SFinding heard = finding;
    if (heard.header && heard.header->tableId == k_slt) {
        heard.serviceList = ServiceListName(m_stream, heard.header->groupId);
    }
    if (m_heardOf.insert(HeardKey(heard)).second) {
        m_heard.push_back(std::move(heard));
    }
}

void CJudge::BeginInterim()
{
    m_evidence.ended = false;
    m_heardBefore = m_heard.size();
}

void CJudge::EndInterim()
{
    m_evidence.ended = true;
    for (; m_heard.size() > m_heardBefore; m_heard.pop_back()) {
        m_heardOf.erase(HeardKey(m_heard.back()));
    }
}

void CJudge::EachSession(const std::set<std::string>& names,
                         const std::function<void(const std::string&, const std::string&)>& visit) const
{
    for (const auto& [key, package] : m_evidence.packages) {
        if (package.stsid && names.count(package.session) != 0) {
            for (const SLctFacts& lct : package.stsid->sessions) {
                const auto& [destination, source, tsi] = KeyOf(package, lct);
                if (destination != package.session || !source.empty()) {
                    visit(destination, source);
                }
            }
        }
    }
    for (const auto& [session, facts] : m_evidence.mmt) {
        if (names.count(session) == 0) {
            continue;
        }
        facts.EachTable([&visit](const SMpTableFacts& table) {
            for (const SAssetFacts& asset : table.assets) {
                for (const auto& [destination, packetId] : asset.places) {
                    if (!destination.empty()) {
                        visit(destination, {});
                    }
                }
            }
        });
    }
}

void CJudge::Finish(const SInputTimes& times, bool sessionsCaptured, SDelivery* delivery)
{
    m_evidence.first = times.first;
    m_evidence.last = times.last;
    m_evidence.sessionsCaptured = sessionsCaptured;
    std::optional<COnAir> onAir;
    if (delivery != nullptr) {
        NameDelivery(m_evidence, *delivery);
        m_evidence.onAir = &onAir.emplace(m_evidence, *delivery);
    }
    for (const auto& rules : m_rules) {
        rules->Finish(delivery);
    }
    if (delivery != nullptr && delivery->traffic.packets != 0) {
        m_report.Delivery(*delivery);
    }
    if (delivery != nullptr && !m_evidence.lists.empty()) {
        m_report.Verdicts(Verdicts(m_evidence, *delivery, m_heard));
    }
    m_evidence.onAir = nullptr;
}

}  // namespace vyr::inspect
