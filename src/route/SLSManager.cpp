#include "route/SLSManager.h"

#include <climits>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <map>
#include <memory>

#include "common/ElementHandlers.h"
#include "common/OutOfMemory.h"
#include "common/RSAT.h"
#include "common/State.h"
#include "platform/BaseParser.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"

namespace {

constexpr std::ptrdiff_t k_maxDocument = 0x1FFFF;

/// Null when memory is out, which is told.
std::unique_ptr<char[]> Room(std::size_t size, VYR_CALLER)
try {
    return std::unique_ptr<char[]>(new char[size]);
} catch (...) {
    return vyr::OutOfMemory<std::unique_ptr<char[]>>(here);
}

/// A parser that is kept from one document of its kind to the next.
template <class TParser>
struct SHeld {
    TParser parser;
    bool created = false;

    SHeld() = default;
    SHeld(const SHeld&) = delete;
    SHeld& operator=(const SHeld&) = delete;
    ~SHeld() { Destroy(); }

    void Destroy()
    {
        if (created) {
            parser.Destroy();
            created = false;
        }
    }
};

/// Parses a document on a parser made anew: Create(), `prepare(parser)`, Parse(…). Keeps the parser when
/// that succeeds; else logs the failed step and holds nothing.
template <class TParser, class TPrepare>
bool Reparse(SHeld<TParser>& held, const char* buffer, unsigned int size, const vyr::SChildSteps& steps,
             TPrepare prepare, VYR_CALLER)
{
    held.Destroy();
    if (!held.parser.Create()) {
        return vyr::CheckFailed(here, steps.create);
    }
    held.created = true;
    // The byte behind a document may be the terminating zero, which not every libxml2 takes for white space.
    const unsigned int length = size != 0 && buffer[size - 1] == '\0' ? size - 1 : size;
    XMLBase& parser = held.parser;
    if (prepare(held.parser) && (parser.Parse(buffer, length, false) || vyr::CheckFailed(here, steps.parse))) {
        return true;
    }
    held.Destroy();
    return false;
}

template <class TParser>
bool Reparse(SHeld<TParser>& held, const char* buffer, unsigned int size, const vyr::SChildSteps& steps, VYR_CALLER)
{
    return Reparse(
        held, buffer, size, steps, [](TParser&) { return true; }, here);
}

/// Where a document lies in a buffer.
struct SDocument {
    const char* start;      ///< null: no start tag
    const char* end;        ///< the end tag; null: none
    std::ptrdiff_t length;  ///< through the end tag, and the byte behind it where that belongs to the document

    bool Fits() const { return end && length <= k_maxDocument; }
    unsigned int Size() const { return static_cast<unsigned int>(length); }
};

/// Where each kind of document starts in a text: the first of each start tag, found in one pass.
class CStarts {
  public:
    enum EKind { SMALL_USBD, USBD, STSID, EFDT, MPD, APPLICATION_LIST, HELD, RSAT, KINDS };

    explicit CStarts(const char* text)
    {
        static constexpr const char* k_tags[KINDS] = {"<bundleDescriptionROUTE",
                                                      "<BundleDescriptionROUTE",
                                                      "<S-TSID",
                                                      "<EFDT",
                                                      "<MPD",
                                                      "<ApplicationList",
                                                      "<HELD",
                                                      "<RSAT"};
        for (const char* at = std::strchr(text, '<'); at; at = std::strchr(at + 1, '<')) {
            for (int kind = 0; kind < KINDS; ++kind) {
                const char* tag = k_tags[kind];
                if (at[1] == tag[1] && !m_starts[kind] && std::strncmp(at, tag, std::strlen(tag)) == 0) {
                    m_starts[kind] = at;
                }
            }
        }
    }

    const char* Of(EKind kind) const { return m_starts[kind]; }

  private:
    const char* m_starts[KINDS] = {};
};

/// The document that starts there, if one does: it ends with the first of the end tags that is found.
SDocument Find(const char* start, std::initializer_list<const char*> endTags, bool extraByte)
{
    SDocument found{start, nullptr, 0};
    for (auto tag = endTags.begin(); start && !found.end && tag != endTags.end(); ++tag) {
        found.end = std::strstr(start, *tag);
    }
    if (found.end) {
        found.length = found.end - start + static_cast<std::ptrdiff_t>(std::strlen(*endTags.begin())) + extraByte;
    }
    return found;
}

/// Logs that a document is missing, or where it lies; whether it is to be taken. One without its end tag,
/// or too long, is passed over.
bool Announce(const SDocument& document, const char* missing, const char* format, VYR_CALLER)
{
    if (vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        if (!document.start) {
            vyr::Print(LOG_PRIORITY_DEBUG, here, "%s", missing);
        } else if (document.end) {
            vyr::Print(LOG_PRIORITY_DEBUG, here, format, static_cast<const void*>(document.start),
                       static_cast<const void*>(document.end), document.length);
        }
    }
    return document.Fits();
}

std::string Text(const char* text)
{
    return text ? text : "";
}

}  // namespace

struct CSLSManager::SState {
    SCallback callback{};
    std::map<unsigned int, SEFDTInfo*> efdtMap;
    std::map<unsigned int, SEFDTInfo*> directEfdtMap;
    // Let go of from the last to the first.
    SHeld<CRSAT> rsat;
    SHeld<CEFDT> efdt;
    SHeld<CMPD> mpd;
    SHeld<CROUTEUsbd> usbd;
    SHeld<CSTSID> stsid;
    bool parsing = false;
};

CSLSManager::CSLSManager() : m(nullptr) {}

CSLSManager::~CSLSManager()
{
    VYR_ASSERT(!m, "!m");
}

bool CSLSManager::Create(const SCallback* cb)
{
    if (!vyr::CreateState(m)) {
        return false;
    }
    if (cb) {
        m->callback = *cb;
    }
    return true;
}

void CSLSManager::Destroy()
{
    if (!m || VYR_ASSERT(!m->parsing, "!m->parsing")) {
        vyr::DestroyState(m);
    }
}

const CROUTEUsbd* CSLSManager::Usbd() const
{
    return VYR_ASSERT(m, "m") && m->usbd.created ? &m->usbd.parser : nullptr;
}

const CSTSID* CSLSManager::Stsid() const
{
    return VYR_ASSERT(m, "m") && m->stsid.created ? &m->stsid.parser : nullptr;
}

void CSLSManager::Parse(const unsigned char* buffer, unsigned int length, const SSessionInfo* session,
                        bool skipMpdParse)
{
    const vyr::CEntry entry;
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(!m->parsing, "!m->parsing")) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::Parse] Parse SLS");
    if (!buffer || length == 0) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::Parse] buffer error buffer[0x%p] size[%d]",
                static_cast<const void*>(buffer), static_cast<int>(length));
        return;
    }
    if (length <= INT_MAX) {
        char* text = const_cast<char*>(reinterpret_cast<const char*>(buffer));
        PrintSignalMessage(text, static_cast<int>(length));
        PrintXmlFormat(text, static_cast<int>(length));
    }
    const std::unique_ptr<char[]> copy = Room(std::size_t{length} + 1);
    if (!VYR_CHECK(copy, "copy")) {
        return;
    }
    std::memcpy(copy.get(), buffer, length);
    copy[length] = '\0';
    const vyr::CScoped<bool> parsing(m->parsing, true, false);
    m_Parse(copy.get(), session, skipMpdParse);
}

/// Each kind of document is looked for once.
void CSLSManager::m_Parse(const char* text, const SSessionInfo* session, bool skipMpdParse)
{
    const CStarts starts(text);
    const char* small = starts.Of(CStarts::SMALL_USBD);
    const SDocument usbd = Find(small ? small : starts.Of(CStarts::USBD),
                                {"</bundleDescriptionROUTE>", "</BundleDescriptionROUTE>"}, true);
    if (Announce(usbd, "[CSLSManager::Parse] USBD data not included !!!",
                 "[CSLSManager::Parse] PARSE NEW USBD buf1 = 0x%p,  Pos = 0x%p, length = %td")) {
        const vyr::CDocumentOfPackage document("USBD");
        m_ParseUSBD(usbd.start, usbd.Size());
    }

    const SDocument stsid = Find(starts.Of(CStarts::STSID), {"</S-TSID>"}, true);
    if (Announce(stsid, "[CSLSManager::Parse] STSID data not included start check direct EFDT !!!",
                 "[CSLSManager::Parse] PARSE STSID buf1 = 0x%p, Pos = 0x%p, length = %td")) {
        const vyr::CDocumentOfPackage document("STSID");
        m_ParseSTSID(stsid.start, stsid.Size());
    }
    if (!stsid.start) {
        const SDocument efdt = Find(starts.Of(CStarts::EFDT), {"</EFDT>"}, false);
        if (Announce(efdt, "[CSLSManager::Parse] direct EFDT data not included !!!",
                     "[CSLSManager::Parse] PARSE EFDT buf1 = 0x%p, Pos = 0x%p, length = %td")) {
            const vyr::CDocumentOfPackage document("EFDT");
            m_ParseDirectEFDT(efdt.start, efdt.Size(), session);
        }
    }

    const SDocument mpd = Find(starts.Of(CStarts::MPD), {"</MPD>"}, true);
    if (Announce(mpd, "[CSLSManager::Parse] MPD data not included !!!",
                 "[CSLSManager::Parse] PARSE MPD buf1 = 0x%p, Pos = 0x%p, length = %td")) {
        if (m->callback.cbMPDData && m->usbd.created) {
            m->callback.cbMPDData(m->callback.pUserData, mpd.start, mpd.Size(), m->usbd.parser.ServiceId());
        }
        if (!skipMpdParse) {
            const vyr::CDocumentOfPackage document("MPD");
            m_ParseMPD(mpd.start, mpd.Size());
        }
    }

    const SDocument list = Find(starts.Of(CStarts::APPLICATION_LIST), {"</ApplicationList>"}, true);
    if (!list.start) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::Parse] APP data[%s] not included !!!", "</ApplicationList>");
    } else if (list.Fits()) {
        m_HandAppData(list.start, list.Size(), session);
    }

    const SDocument held = Find(starts.Of(CStarts::HELD), {"</HELD>"}, true);
    if (!held.start) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::Parse] APP data[%s] not included !!!", "</HELD>");
    } else {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::Parse] find held!!!");
        if (held.Fits()) {
            m_HandAppData(held.start, held.Size(), session);
        }
    }

    const SDocument rsat = Find(starts.Of(CStarts::RSAT), {"</RSAT>"}, true);
    if (Announce(rsat, "[CSLSManager::Parse] RSAT data not included !!!",
                 "[CSLSManager::Parse] PARSE RSAT buf1 = 0x%p, Pos = 0x%p, length = %td")) {
        const vyr::CDocumentOfPackage document("RSAT");
        m_ParseRSAT(rsat.start, rsat.Size());
    }
}

void CSLSManager::m_ParseUSBD(const char* buffer, unsigned int size)
try {
    static constexpr vyr::SChildSteps k_steps = {"m->usbd.Create()", "m->usbd.Parse((const char*)buffer, size)"};
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::m_ParseUSBD]");
    if (!Reparse(m->usbd, buffer, size, k_steps)) {
        return;
    }
    const CROUTEUsbd& usbd = m->usbd.parser;
    SUSBDInfo info{};
    for (int i = 0; i < usbd.NumOfDeliveryMethod(); ++i) {
        const auto* method = static_cast<const CDeliveryMethod*>(usbd.State()->deliveryMethods.Data(i));
        for (const CUnicastAppSvc* service : method->State()->unicastAppSvcs) {
            const std::list<std::string>& patterns = service->State()->basePatterns;
            info.basePatterns.insert(info.basePatterns.end(), patterns.begin(), patterns.end());
        }
    }
    info.globalServiceId = Text(usbd.GlobalServiceId());
    info.serviceId = usbd.ServiceId();
    info.linkServiceId = static_cast<unsigned short>(usbd.LinkServiceId());
    info.serviceCategory = usbd.ServiceCategory();
    info.linkageType = usbd.LinkageType();
    info.activationTime = Text(usbd.ActivationTime());
    info.deActivationTime = Text(usbd.DeActivationTime());
    info.serviceStatus = usbd.ServiceStatus();
    VYR_LOG(LOG_PRIORITY_DEBUG,
            "[CSLSManager::m_ParseUSBD] globalServiceId[%s] serviceId[%d], linkServiceId[%d], serviceCategory[%d], "
            "linkageType[%d], activationTime[%s], deActivationTime[%s], serviceStatus[%d]",
            info.globalServiceId.c_str(), info.serviceId, info.linkServiceId, info.serviceCategory, info.linkageType,
            info.activationTime.c_str(), info.deActivationTime.c_str(), info.serviceStatus);
    if (m->callback.cbUSBDInfo) {
        m->callback.cbUSBDInfo(m->callback.pUserData, &info);
    }
} catch (...) {
    vyr::HandleOutOfMemory(VYR_HERE);
}

void CSLSManager::m_ParseSTSID(const char* buffer, unsigned int size)
{
    static constexpr vyr::SChildSteps k_steps = {"m->stsid.Create()", "m->stsid.Parse((const char*)buffer, size)"};
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::m_ParseSTSID]");
    m->efdtMap.clear();
    const CLS::SCallback cb = {this, sm_CbEFDTInfo};
    const bool parsed = Reparse(m->stsid, buffer, size, k_steps, [&cb](CSTSID& stsid) {
        return VYR_CHECK(stsid.SetCallback(&cb), "m->stsid.SetCallback(&cb)");
    });
    if (!parsed) {
        m->efdtMap.clear();
        return;
    }
    const CSTSID& stsid = m->stsid.parser;
    for (int i = 0; i < stsid.NumberOfRouteSessions(); ++i) {
        for (int j = 0; j < stsid.NumberOfLctSessions(i); ++j) {
            SLctSession session{};
            session.bsid = stsid.BsId(i);
            session.sIpAddr = stsid.SIpAddr(i);
            session.dIpAddr = stsid.DIpAddr(i);
            session.dPort = stsid.DPort(i);
            stsid.GetTSI(i, j, &session.tsi);
            stsid.GetContentId(i, j, session.contentId);
            session.efdtInfo = stsid.GetEFDTInfo(i, j);
            session.aeaId = stsid.GetAEAId(i, j);
            session.rt = stsid.GetRT(i, j);
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::m_ParseSTSID] tsi[%d], contentInfo[%s]",
                    static_cast<int>(session.tsi), session.contentId.c_str());
            if (m->callback.cbLctSession) {
                m->callback.cbLctSession(m->callback.pUserData, &session);
            }
        }
    }
    for (const auto& [tsi, info] : m->efdtMap) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::m_ParseSTSID] tsi[%d]", static_cast<int>(tsi));
        if (m->callback.cbEFDTInfo) {
            m->callback.cbEFDTInfo(m->callback.pUserData, tsi, info);
        }
    }
    m->efdtMap.clear();
}

void CSLSManager::m_ParseDirectEFDT(const char* buffer, unsigned int size, const SSessionInfo* session)
{
    static constexpr vyr::SChildSteps k_steps = {"m->efdt.Create()", "m->efdt.Parse((const char*)buffer, size)"};
    if (!session) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::m_ParseDirectEFDT]");
    m->directEfdtMap.clear();
    const SEFDTInfoCallback cb = {this, sm_CbDirectEFDTInfo};
    const bool parsed = Reparse(m->efdt, buffer, size, k_steps, [&cb](CEFDT& efdt) {
        return VYR_CHECK(efdt.SetCallback(&cb), "m->efdt.SetCallback(&cb)");
    });
    if (parsed) {
        for (const auto& [tsi, info] : m->directEfdtMap) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::m_ParseDirectEFDT] tsi = %d", static_cast<int>(tsi));
            if (m->callback.cbDirectEFDTInfo) {
                m->callback.cbDirectEFDTInfo(m->callback.pUserData, session->sessionId, info, session);
            }
        }
    }
    m->directEfdtMap.clear();
}

void CSLSManager::m_ParseMPD(const char* buffer, unsigned int size)
{
    static constexpr vyr::SChildSteps k_steps = {"m->mpd.Create()", "m->mpd.Parse((const char*)buffer, size)"};
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::m_ParseMPD]");
    const CMPD::SCallback cb = {this, sm_CbMPDInfo, sm_CbRatingInfo};
    Reparse(m->mpd, buffer, size, k_steps,
            [&cb](CMPD& mpd) { return VYR_CHECK(mpd.SetCallback(&cb), "m->mpd.SetCallback(&cb)"); });
}

void CSLSManager::m_ParseRSAT(const char* buffer, unsigned int size)
{
    static constexpr vyr::SChildSteps k_steps = {"m->rsat.Create()", "m->rsat.Parse((const char*)buffer, size)"};
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::m_ParseRSAT]");
    if (Reparse(m->rsat, buffer, size, k_steps) && m->callback.cbRSAT) {
        m->callback.cbRSAT(m->callback.pUserData, &m->rsat.parser);
    }
}

/// Required: the callback has a copy of its own, of exactly the document's bytes.
void CSLSManager::m_HandAppData(const char* buffer, unsigned int size, const SSessionInfo* session) const
{
    const std::unique_ptr<char[]> copy = Room(size);
    if (!VYR_CHECK(copy, "copy")) {
        return;
    }
    std::memcpy(copy.get(), buffer, size);
    if (m->callback.cbAppData) {
        m->callback.cbAppData(m->callback.pUserData, copy.get(), size, session);
    }
}

void CSLSManager::sm_CbEFDTInfo(void* context, unsigned int tsi, SEFDTInfo* info)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::sm_CbEFDTInfo] tsi[%d]", static_cast<int>(tsi));
    if (context) {
        static_cast<CSLSManager*>(context)->m_OnEFDTInfo(tsi, info);
    }
}

void CSLSManager::sm_CbDirectEFDTInfo(void* context, SEFDTInfo* info)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::sm_CbDirectEFDTInfo] tsi[%d]", static_cast<int>(info->tsi));
    if (context) {
        static_cast<CSLSManager*>(context)->m_OnDirectEFDTInfo(info);
    }
}

void CSLSManager::sm_CbMPDInfo(void* context, SMPDInfo* info)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::sm_CbMPDInfo]");
    if (context) {
        static_cast<CSLSManager*>(context)->m_OnMPDInfo(info);
    }
}

void CSLSManager::sm_CbRatingInfo(void* context, const std::set<std::pair<std::string, std::string>>& ratings)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSLSManager::sm_CbRatingInfo]");
    if (context) {
        static_cast<CSLSManager*>(context)->m_OnRatingInfo(ratings);
    }
}

void CSLSManager::m_OnEFDTInfo(unsigned int tsi, SEFDTInfo* info)
{
    m->efdtMap.emplace(tsi, info);
}

void CSLSManager::m_OnDirectEFDTInfo(SEFDTInfo* info)
{
    m->directEfdtMap.emplace(info->tsi, info);
}

void CSLSManager::m_OnMPDInfo(SMPDInfo* info)
{
    if (m->callback.cbMPDInfo) {
        m->callback.cbMPDInfo(m->callback.pUserData, info);
    }
}

void CSLSManager::m_OnRatingInfo(const std::set<std::pair<std::string, std::string>>& ratings)
{
    if (!m->callback.cbRatingInfo) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "ratingListSize[%zu]", ratings.size());
    if (!ratings.empty()) {
        m->callback.cbRatingInfo(m->callback.pUserData, TRatings(ratings.begin(), ratings.end()));
    }
}
