#include <algorithm>

#include "base/Text.h"
#include "judge/Lists.h"
#include "judge/Read.h"
#include "judge/Rules.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_alertTable = 4;
constexpr std::uint64_t k_public = 1;  // of audience
constexpr std::uint64_t k_alert = 1;   // of aeaType
constexpr std::uint64_t k_update = 2;
constexpr std::uint64_t k_cancel = 3;

/// An alert, as it was sent last.
struct SAlert {
    std::uint64_t type = 0;
    std::string refersTo;
    bool isPublic = false;
    bool urgent = false;  ///< of the highest priority
    bool wakeup = false;
    std::string expiresText;
    std::optional<std::int64_t> expires;
    std::vector<std::string> media;
    SSource source;
    std::optional<SSource> late;  ///< the first table that sent it when it was over
};

/// The alerts of a table that holds.
struct STableAlerts {
    SLlsHeader header;
    std::vector<std::string> ids;
};

SAlert ReadAlert(const TJson& json, const SSource& source)
{
    constexpr std::uint64_t k_highest = 4;
    constexpr std::size_t k_mostMedia = 16;
    SAlert alert;
    alert.type = Unsigned(json, "aeaType").value_or(0);
    alert.refersTo = Text(json, "retAEAId");
    alert.isPublic = Unsigned(json, "audience") == k_public;
    alert.urgent = Unsigned(json, "priority") == k_highest;
    alert.wakeup = Flag(json, "wakeup").value_or(false);
    alert.expiresText = Text(json, "expires");
    alert.expires = ReadInstant(alert.expiresText);
    Each(json, "Media", [&](const TJson& media) {
        if (alert.media.size() < k_mostMedia) {
            alert.media.push_back(Text(media, "url"));
        }
    });
    alert.source = source;
    return alert;
}

/// The same file, where one of them may say more of its path.
bool SameFile(const std::string& a, const std::string& b)
{
    const auto plain = [](const std::string& name) {
        return name.substr(std::min(name.find_first_not_of("./"), name.size()));
    };
    const std::string one = plain(a);
    const std::string other = plain(b);
    const auto endsWith = [](const std::string& whole, const std::string& end) {
        return whole.size() > end.size() && whole[whole.size() - end.size() - 1] == '/' &&
               whole.compare(whole.size() - end.size(), end.size(), end) == 0;
    };
    return one == other || endsWith(one, other) || endsWith(other, one);
}

/// What alerts say of their time, their urgency, other alerts, and their files.
class CAlertRules : public CRules {
  public:
    using CRules::CRules;

    void Table(const STable& table) override;
    void Finish(const SDelivery* delivery) override;

  private:
    static constexpr std::size_t k_mostAlerts = 1024;
    static constexpr std::size_t k_mostTables = 256;

    using TKey = std::pair<std::string, std::string>;  ///< stream and aeaId

    void m_Hold(const STable& table, STableAlerts& held);
    bool m_FilesKnown() const;
    bool m_Carried(const std::string& url) const;
    void m_Media();
    void m_Tell(ERule rule, const SSource& source, const std::string& message)
    {
        t_findings.Tell({rule, message, source});
    }

    std::map<TKey, SAlert> m_alerts;
    std::map<TListKey, STableAlerts> m_tables;
    bool m_whole = true;  ///< no alert was left out
};

void CAlertRules::m_Hold(const STable& table, STableAlerts& held)
{
    held = {table.header, {}};
    if (!table.content) {
        m_whole = false;
        return;
    }
    const bool all = Each(table.content->json, "AEA", [&](const TJson& json) {
        const std::string id = Text(json, "aeaId");
        const TKey key = {table.stream, id};
        if (m_alerts.size() == k_mostAlerts && m_alerts.count(key) == 0) {
            m_whole = false;
            return;
        }
        SAlert alert = ReadAlert(json, table.source);
        SAlert& known = m_alerts[key];
        alert.late = alert.expires == known.expires ? known.late : std::nullopt;
        known = std::move(alert);
        held.ids.push_back(id);
    });
    m_whole = m_whole && all;
}

void CAlertRules::Table(const STable& table)
{
    constexpr std::int64_t k_grace = 60;  // clocks are not the same, and tables are changed by people
    for (const TListKey& gone : table.listsGone) {
        m_tables.erase(gone);
    }
    const TListKey key = {table.stream, table.header.groupId};
    if (table.header.tableId != k_alertTable || (m_tables.size() == k_mostTables && m_tables.count(key) == 0)) {
        return;
    }
    STableAlerts& held = m_tables[key];
    if (table.status != EStatus::REPEATED) {
        m_Hold(table, held);
    }
    for (const std::string& id : held.ids) {
        SAlert& alert = m_alerts[{table.stream, id}];
        const bool goesOn = alert.type == k_alert || alert.type == k_update;
        if (goesOn && table.source.time && alert.expires && !alert.late &&
            table.source.time->seconds - *alert.expires > k_grace) {
            alert.late = table.source;
        }
    }
}

/// Whether the files of all services are known by what their signalling says.
bool CAlertRules::m_FilesKnown() const
{
    constexpr int k_route = 1;
    if (!t_evidence.sessionsCaptured || !ListsWhole(t_evidence)) {
        return false;
    }
    const auto known = [](const SPackageFacts* package) {
        const auto named = [](const SLctFacts& lct) {
            return !lct.sourceFlow || !lct.files.empty() || !lct.fileTemplate.empty();
        };
        return package->stsid && package->stsid->whole &&
               std::all_of(package->stsid->sessions.begin(), package->stsid->sessions.end(), named);
    };
    for (const auto& [key, list] : t_evidence.lists) {
        for (const SSltService& service : list.services) {
            const std::vector<const SPackageFacts*> packages = t_evidence.Of(service);
            if (service.hasBroadcastSvcSignaling && (service.slsProtocol != k_route || packages.empty() ||
                                                     !std::all_of(packages.begin(), packages.end(), known))) {
                return false;
            }
        }
    }
    return true;
}

bool CAlertRules::m_Carried(const std::string& url) const
{
    for (const auto& [key, package] : t_evidence.packages) {
        if (!package.stsid) {
            continue;
        }
        for (const SLctFacts& lct : package.stsid->sessions) {
            const auto same = [&](const SFileFacts& file) { return SameFile(file.name, url); };
            // A template gives the name of any object: what begins like it may be one.
            const std::string begin = lct.fileTemplate.substr(0, lct.fileTemplate.find('$'));
            if (std::any_of(lct.files.begin(), lct.files.end(), same) ||
                (!lct.fileTemplate.empty() && (begin.empty() || url.find(begin) != std::string::npos))) {
                return true;
            }
        }
    }
    return false;
}

/// Of the alerts that hold at the end, as the signalling does.
void CAlertRules::m_Media()
{
    for (const auto& [key, table] : m_tables) {
        for (const std::string& id : table.ids) {
            for (const std::string& url : m_alerts[{key.first, id}].media) {
                if (!url.empty() && url.find(':') == std::string::npos && !m_Carried(url)) {
                    m_Tell(ERule::ALERT_MEDIA_MISSING, m_alerts[{key.first, id}].source,
                           "alert " + Quoted(id) + " names the file " + Quoted(url) + ", which no session carries");
                }
            }
        }
    }
}

void CAlertRules::Finish(const SDelivery* delivery)
{
    for (const auto& [key, alert] : m_alerts) {
        const std::string title = "alert " + Quoted(key.second);
        if (alert.late && delivery != nullptr && delivery->clockSet == 0) {
            m_Tell(ERule::ALERT_EXPIRED, *alert.late,
                   title + " expired at " + Quoted(alert.expiresText) + ", and is still sent");
        }
        if (alert.type != k_cancel && alert.urgent && alert.isPublic && !alert.wakeup) {
            m_Tell(ERule::ALERT_WITHOUT_WAKEUP, alert.source,
                   title + " is of priority 4, the highest, and does not wake receivers");
        }
        if (m_whole && delivery != nullptr && (alert.type == k_update || alert.type == k_cancel) &&
            !alert.refersTo.empty() && m_alerts.count({key.first, alert.refersTo}) == 0) {
            m_Tell(ERule::ALERT_REFERENCE_UNKNOWN, alert.source,
                   title + (alert.type == k_update ? " updates " : " cancels ") + Quoted(alert.refersTo) +
                       ", which did not come in this capture; it may have come before");
        }
    }
    if (m_FilesKnown()) {
        m_Media();
    }
}

}  // namespace

std::unique_ptr<CRules> AlertRules(const SEvidence& evidence, CFindings& findings)
{
    return std::make_unique<CAlertRules>(evidence, findings);
}

}  // namespace vyr::inspect
