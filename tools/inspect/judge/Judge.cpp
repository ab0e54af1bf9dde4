#include "judge/Judge.h"

#include <algorithm>

#include "base/Text.h"
#include "judge/Names.h"
#include "judge/Read.h"
#include "judge/Verdicts.h"
#include "model/Content.h"
#include "model/Guide.h"

namespace vyr::inspect {

namespace {

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

std::tuple<ERule, unsigned, std::string> HeardKey(const SFinding& finding)
{
    constexpr unsigned k_none = 0x10000;
    return {finding.rule, finding.serviceId.value_or(k_none), finding.session};
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

void CJudge::Table(const STable& table)
{
    for (const auto& rules : m_rules) {
        rules->Table(table);
    }
    if (!table.slt) {
        return;
    }
    ++m_changes;
    const TListKey key = {table.stream, table.header.groupId};
    const auto known = m_evidence.lists.find(key);
    m_services -= known != m_evidence.lists.end() ? known->second.services.size() : 0;
    const std::size_t count = std::min({table.slt->services.size(), k_mostJudged, k_mostServices - m_services});
    if (known == m_evidence.lists.end() && m_evidence.lists.size() == k_mostLists) {
        return;
    }
    SListFacts& list = m_evidence.lists[key];
    list = {table.source,
            table.header,
            table.slt->bsid,
            !table.slt->inetUrls.empty(),
            {},
            table.slt->leftOut == 0 && count == table.slt->services.size()};
    list.services.assign(table.slt->services.begin(), table.slt->services.begin() + static_cast<std::ptrdiff_t>(count));
    m_services += count;
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
        KeepEarlier(package);
        m_Index(package, false);
        hold(package.stsid, StsidFacts(json));
        m_Index(package, true);
    } else if (document.kind == ESlsDocument::MPD) {
        hold(package.mpd, MpdFacts(json));
    }
    m_bytes += package.Bytes();
}

void CJudge::Message(const SMessage& message)
{
    for (const auto& rules : m_rules) {
        rules->Message(message);
    }
    HoldMessage(m_evidence.mmt, message);
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
    if (ofService && finding.severity != ESeverity::NOTE && m_heard.size() < k_mostHeard &&
        m_heardOf.insert(HeardKey(finding)).second) {
        m_heard.push_back(finding);
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
    if (delivery != nullptr) {
        NameDelivery(m_evidence, *delivery);
    }
    for (const auto& rules : m_rules) {
        rules->Finish(delivery);
    }
    if (delivery == nullptr) {
        return;
    }
    if (delivery->traffic.packets != 0) {
        m_report.Delivery(*delivery);
    }
    if (!m_evidence.lists.empty()) {
        m_report.Verdicts(Verdicts(m_evidence, *delivery, m_heard));
    }
}

}  // namespace vyr::inspect
