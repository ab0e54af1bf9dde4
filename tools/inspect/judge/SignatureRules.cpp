#include <algorithm>
#include <set>
#include <tuple>

#include "base/Names.h"
#include "base/Text.h"
#include "judge/Lists.h"
#include "judge/Read.h"
#include "judge/Rules.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_certificateTable = 6;
constexpr unsigned k_multiTable = 0xFE;

std::string Title(unsigned tableId, unsigned group)
{
    const char* name = TableName(tableId);
    return (name != nullptr ? name : "table " + std::to_string(tableId)) + " of group " + std::to_string(group);
}

/// What carries a signature, and the last one that came.
struct SSigner {
    std::string title;
    SSource source;
    std::string session;
    std::optional<unsigned> service;
    std::shared_ptr<const SSigned> last;  ///< without its bytes once it was verified
    bool pending = false;                 ///< a certificate was missing when it came
    bool wrong = false;
};

/// How often a table came signed and not.
struct SForms {
    std::uint64_t withSignature = 0;
    std::uint64_t without = 0;
    bool cms = false;  ///< the last one that was read has a signature of its own
    SSource source;    ///< of the last without
    SLlsHeader header;
};

/// The certificates of a table that holds.
struct SAnnounced {
    TCertificates certificates;
    std::string current;  ///< key identifier of the one that signs
    bool whole = false;   ///< all of them could be read
};

bool Same(const SCertificateFacts& a, const SCertificateFacts& b)
{
    return std::tie(a.subject, a.keyId, a.notBefore, a.notAfter) ==
           std::tie(b.subject, b.keyId, b.notBefore, b.notAfter);
}

constexpr std::size_t k_mostCertificates = 64;

void AddNew(TCertificates& all, const TCertificates& more)
{
    for (const auto& one : more) {
        const auto same = [&one](const auto& other) { return Same(*one, *other); };
        if (all.size() < k_mostCertificates && std::none_of(all.begin(), all.end(), same)) {
            all.push_back(one);
        }
    }
}

/// Signatures, who made them, and what has none.
class CSignatureRules : public CRules {
  public:
    CSignatureRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
        : CRules(evidence, findings), m_verifier(settings.verifier)
    {
    }

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Finish(const SDelivery* delivery) override;

  private:
    static constexpr std::size_t k_mostPlaces = 4096;      ///< of tables, and of packages
    static constexpr std::size_t k_mostAnnouncers = 16;    ///< tables of certificates
    static constexpr std::size_t k_mostSigners = 256;      ///< places that signatures come in
    static constexpr std::uint64_t k_mostVerified = 1000;  ///< all of them, and then one of
    static constexpr std::uint64_t k_oneOf = 16;
    static constexpr std::size_t k_mostPending = 8388608;  ///< bytes of what waits for certificates

    void m_Announce(const STable& table);
    void m_Take(const std::string& key, SSigner now, const std::shared_ptr<const SSigned>& item);
    void m_Verify(SSigner& signer);
    TCertificates m_Used(const TCertificates& known, const TCertificates& signers) const;
    TCertificates m_Signers() const;
    void m_Validity(const TCertificates& used);
    void m_NotAnnounced();
    void m_UnsignedTables();
    void m_UnsignedPackages();

    const IVerifier* const m_verifier;
    std::map<std::string, SSigner> m_signers;
    std::size_t m_pending = 0;
    std::uint64_t m_taken = 0;
    std::map<TListKey, SAnnounced> m_announced;
    TCertificates m_all;                                                     ///< that are announced
    std::map<std::tuple<std::string, unsigned, unsigned>, SForms> m_tables;  ///< by stream, group and table
    std::map<std::string, SForms> m_packages;                                ///< by session
};

void CSignatureRules::Table(const STable& table)
{
    const unsigned id = table.header.tableId;
    const std::tuple key(table.stream, unsigned{table.header.groupId}, id);
    if (table.parserExists && id != k_certificateTable &&
        (m_tables.size() < k_mostPlaces || m_tables.count(key) != 0)) {
        SForms& forms = m_tables[key];
        forms.cms = table.status == EStatus::REPEATED ? forms.cms : table.cmsSignedData;
        ++(table.insideMultiTable || id == k_multiTable || forms.cms ? forms.withSignature : forms.without);
        forms.source = table.source;
        forms.header = table.header;
    }
    for (const TListKey& gone : table.listsGone) {
        m_announced.erase(gone);
    }
    if (id == k_certificateTable && table.status != EStatus::REPEATED) {
        m_Announce(table);
    }
    if (table.signedBytes) {
        const std::string title = Title(id, table.header.groupId);
        m_Take(table.stream + ' ' + title, {title, table.source, {}, {}, nullptr}, table.signedBytes);
    }
}

void CSignatureRules::m_Announce(const STable& table)
{
    const TListKey key = {table.stream, table.header.groupId};
    if (m_announced.size() == k_mostAnnouncers && m_announced.count(key) == 0) {
        return;
    }
    SAnnounced& announced = m_announced[key];
    announced = {table.certificates, {}, false};
    if (table.content) {
        const TJson& json = table.content->json;
        announced.current = Text(json, "CurrentCert");
        announced.whole = Field(json, "Certificates").size() == table.certificates.size();
    }
    m_all.clear();
    for (const auto& [place, one] : m_announced) {
        AddNew(m_all, one.certificates);
    }
}

void CSignatureRules::Signalling(const SSignalling& signalling)
{
    const std::string& session = signalling.session;
    if (!signalling.parts.empty() && (m_packages.size() < k_mostPlaces || m_packages.count(session) != 0)) {
        SForms& forms = m_packages[session];
        ++(signalling.signature ? forms.withSignature : forms.without);
        forms.source = signalling.source;
    }
    if (signalling.signedBytes) {
        const auto service = signalling.services.size() == 1 ? std::optional(signalling.services[0]) : std::nullopt;
        m_Take(
            session,
            {"the package" + (session.empty() ? "" : " on " + session), signalling.source, session, service, nullptr},
            signalling.signedBytes);
    }
}

void CSignatureRules::m_Take(const std::string& key, SSigner now, const std::shared_ptr<const SSigned>& item)
{
    if (m_verifier == nullptr || (m_signers.size() == k_mostSigners && m_signers.count(key) == 0)) {
        return;
    }
    SSigner& signer = m_signers[key];
    m_pending -= signer.pending ? signer.last->Bytes() : 0;
    now.wrong = signer.wrong;
    now.last = item;
    signer = std::move(now);
    // Verifying is slow; where the time changes with every table, most are passed over.
    if (m_taken++ < k_mostVerified || m_taken % k_oneOf == 0) {
        m_Verify(signer);
    }
    if (signer.pending && m_pending + item->Bytes() <= k_mostPending) {
        m_pending += item->Bytes();
        return;
    }
    signer.pending = false;
    auto without = std::make_shared<SSigned>(*item);
    without->forms.clear();
    signer.last = std::move(without);
}

/// Tells when signatures begin to be wrong.
void CSignatureRules::m_Verify(SSigner& signer)
{
    const ESigned verdict = m_verifier->Verify(*signer.last, m_all);
    signer.pending = verdict == ESigned::UNKNOWN;
    if (verdict == ESigned::WRONG && !signer.wrong) {
        t_findings.Tell(ERule::SIGNATURE_WRONG, "the signature of " + signer.title + " does not verify", signer.source,
                        signer.service, signer.session);
    }
    signer.wrong = verdict == ESigned::UNKNOWN ? signer.wrong : verdict == ESigned::WRONG;
}

/// The certificates that sign.
TCertificates CSignatureRules::m_Signers() const
{
    TCertificates signers;
    for (const auto& [key, signer] : m_signers) {
        AddNew(signers, m_verifier->Signers(*signer.last, m_verifier->Within(*signer.last)));
        AddNew(signers, m_verifier->Signers(*signer.last, m_all));
    }
    for (const auto& [key, one] : m_announced) {
        for (const auto& certificate : one.certificates) {
            if (!certificate->keyId.empty() && certificate->keyId == one.current) {
                AddNew(signers, {certificate});
            }
        }
    }
    return signers;
}

/// Those that sign, and what issued these.
TCertificates CSignatureRules::m_Used(const TCertificates& known, const TCertificates& signers) const
{
    TCertificates used = signers;
    for (std::size_t i = 0; i < used.size(); ++i) {
        const auto certificate = used[i];
        for (const auto& other : known) {
            if (m_verifier->Issued(*other, *certificate)) {
                AddNew(used, {other});
            }
        }
    }
    return used;
}

void CSignatureRules::m_Validity(const TCertificates& used)
{
    constexpr std::int64_t k_soon = 30 * 86400;
    const std::int64_t first = t_evidence.first->seconds;
    const std::int64_t last = t_evidence.last->seconds;
    for (const auto& certificate : used) {
        const std::string title = "the certificate " + Quoted(certificate->subject);
        const std::string end = EpochText(static_cast<double>(certificate->notAfter));
        if (certificate->notAfter < first) {
            t_findings.Tell(ERule::CERTIFICATE_EXPIRED, title + " expired at " + end);
        } else if (certificate->notBefore > last) {
            t_findings.Tell(ERule::CERTIFICATE_NOT_YET_VALID,
                            title + " is valid from " + EpochText(static_cast<double>(certificate->notBefore)) + " on");
        } else if (certificate->notAfter - last <= k_soon) {
            t_findings.Tell(ERule::CERTIFICATE_ENDS_SOON, title + " is valid until " + end);
        }
    }
}

/// Only where all certificates that are announced came, and could be read.
void CSignatureRules::m_NotAnnounced()
{
    const auto whole = [](const auto& entry) { return entry.second.whole; };
    if (m_announced.empty() || m_all.size() == k_mostCertificates || !ListsWhole(t_evidence) ||
        !std::all_of(m_announced.begin(), m_announced.end(), whole)) {
        return;
    }
    for (const auto& [key, signer] : m_signers) {
        if (m_verifier->Signers(*signer.last, m_all).empty()) {
            t_findings.Tell(ERule::SIGNER_NOT_ANNOUNCED,
                            "the certificate of the signer of " + signer.title + " is none of the " +
                                std::to_string(m_all.size()) + " that are announced",
                            signer.source, signer.service, signer.session);
        }
    }
}

/// A table that comes signed as well is there for receivers that do not know signatures.
void CSignatureRules::m_UnsignedTables()
{
    constexpr std::uint64_t k_again = 2;  // what came once may come signed later
    for (const auto& [key, forms] : m_tables) {
        if (forms.withSignature != 0 || forms.without < k_again) {
            continue;
        }
        const auto& [stream, group, id] = key;
        for (auto other = m_tables.lower_bound({stream, group, 0});
             other != m_tables.end() && std::get<0>(other->first) == stream && std::get<1>(other->first) == group;
             ++other) {
            if (other->second.withSignature >= k_again) {
                t_findings.Tell(
                    {ERule::UNSIGNED_SIBLING,
                     Title(id, group) + " is not signed, and " + Title(std::get<2>(other->first), group) + " is",
                     forms.source, forms.header});
                break;
            }
        }
    }
}

void CSignatureRules::m_UnsignedPackages()
{
    std::set<std::string> told;
    for (const auto& [key, list] : t_evidence.lists) {
        std::map<std::string, unsigned> plain;
        const SSltService* withSignature = nullptr;
        for (const SSltService& service : list.services) {
            const std::string session = SessionOf(service);
            const auto forms = m_packages.find(session);
            if (session.empty() || forms == m_packages.end()) {
                continue;
            }
            if (forms->second.withSignature != 0) {
                withSignature = &service;
            } else {
                plain.emplace(session, service.serviceId);
            }
        }
        for (const auto& [session, service] : plain) {
            if (withSignature != nullptr && told.insert(session).second) {
                t_findings.Tell(ERule::UNSIGNED_SIBLING,
                                "the packages on " + session + " are not signed, and those of service " +
                                    std::to_string(withSignature->serviceId) + " of the same list are",
                                m_packages[session].source, service, session);
            }
        }
    }
}

void CSignatureRules::Finish(const SDelivery* delivery)
{
    if (m_verifier == nullptr) {
        return;
    }
    for (auto& [key, signer] : m_signers) {
        if (signer.pending && t_evidence.ended) {
            m_Verify(signer);
        }
    }
    const TCertificates signers = m_Signers();
    TCertificates known = m_all;
    for (const auto& [key, signer] : m_signers) {
        AddNew(known, m_verifier->Within(*signer.last));
    }
    for (const auto& certificate : signers) {
        if (m_verifier->HasRoots() && !m_verifier->Trusted(*certificate, known)) {
            t_findings.Tell(ERule::CERTIFICATE_UNTRUSTED, "no chain leads from the certificate " +
                                                              Quoted(certificate->subject) + " to one that is trusted");
        }
    }
    if (delivery == nullptr) {
        return;
    }
    if (delivery->clockSet == 0 && t_evidence.first && t_evidence.last) {
        m_Validity(m_Used(known, signers));
    }
    if (delivery->received) {
        m_NotAnnounced();
    }
    m_UnsignedTables();
    m_UnsignedPackages();
}

}  // namespace

std::unique_ptr<CRules> SignatureRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
{
    return std::make_unique<CSignatureRules>(evidence, findings, settings);
}

}  // namespace vyr::inspect
