#include "content/SlsReader.h"

#include "common/RSAT.h"
#include "content/LibraryPort.h"
#include "content/MpdContent.h"
#include "content/SlsContent.h"
#include "model/Content.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"

namespace vyr::inspect {

namespace {

/// What the library calls the document; empty: it is not parsed.
const char* LibraryName(ESlsDocument kind)
{
    constexpr const char* k_names[] = {"USBD", "STSID", "EFDT", "MPD", "", "", "RSAT"};
    return k_names[static_cast<std::size_t>(kind)];
}

std::string RefusalReason(const SSlsText& document)
{
    if (!document.ended) {
        return "its end tag is missing";
    }
    if (!document.parsed) {
        return "longer than 131,071 bytes";
    }
    const char* name = LibraryName(document.kind);
    const SFailure* failure = *name ? LastFailure(name) : nullptr;
    if (failure && failure->cause == FAILURE_KIND && document.kind == ESlsDocument::RSAT) {
        return "its timestamp is missing";
    }
    const std::string reason = failure ? Reason(name) : std::string();
    return reason.empty() ? "the library gave no reason" : reason;
}

}  // namespace

CSlsReader::CSlsReader(const SServiceSession& session, TStsidListener stsidListener)
    : m_stsidListener(std::move(stsidListener))
{
    m_session = {0, session.source, session.destination, session.port};
}

CSlsReader::~CSlsReader()
{
    Release();
}

void CSlsReader::Release()
{
    if (m_manager) {
        m_manager->Destroy();
        m_manager.reset();
    }
}

std::vector<SSlsDocument> CSlsReader::Read(SView text, const std::vector<SSlsText>& documents)
{
    if (!m_manager) {
        CSLSManager::SCallback callback{};
        callback.pUserData = this;
        callback.cbDirectEFDTInfo = [](void* self, unsigned, SEFDTInfo* info, const CSLSManager::SSessionInfo*) {
            static_cast<CSlsReader*>(self)->m_Content(ESlsDocument::EFDT) = EfdtContent(*info);
        };
        callback.cbMPDInfo = [](void* self, SMPDInfo* info) {
            static_cast<CSlsReader*>(self)->m_Content(ESlsDocument::MPD) = MpdContent(*info);
        };
        callback.cbAppData = [](void* self, const char* data, unsigned length, const CSLSManager::SSessionInfo*) {
            // The byte behind the end tag comes along.
            const std::string document(data, length - 1);
            const bool held = document.rfind("<HELD", 0) == 0;
            static_cast<CSlsReader*>(self)->m_Content(held ? ESlsDocument::HELD : ESlsDocument::APPLICATION_LIST) =
                AppDataContent(document);
        };
        callback.cbRSAT = [](void* self, CRSAT* rsat) {
            static_cast<CSlsReader*>(self)->m_Content(ESlsDocument::RSAT) = RsatContent(*rsat);
        };
        callback.cbRatingInfo = [](void* self, const CSLSManager::TRatings& ratings) {
            AddRatings(ratings, *static_cast<CSlsReader*>(self)->m_Content(ESlsDocument::MPD));
        };
        m_manager = std::make_unique<CSLSManager>();
        m_manager->Create(&callback);
    }
    m_contents = {};
    m_usbdService.reset();
    m_manager->Parse(text.data, static_cast<unsigned>(text.size), &m_session, false);
    std::vector<SSlsDocument> read;
    for (const SSlsText& document : documents) {
        // One that is not parsed leaves its predecessor with the manager.
        if (document.parsed && document.kind == ESlsDocument::USBD && m_manager->Usbd() != nullptr) {
            m_Content(ESlsDocument::USBD) = UsbdContent(*m_manager->Usbd());
            m_usbdService = m_manager->Usbd()->ServiceId();
        }
        if (document.parsed && document.kind == ESlsDocument::STSID && m_manager->Stsid() != nullptr) {
            m_Content(ESlsDocument::STSID) = StsidContent(*m_manager->Stsid());
            if (m_stsidListener) {
                m_stsidListener(*m_manager->Stsid());
            }
        }
        SSlsDocument& entry = read.emplace_back();
        entry.kind = document.kind;
        entry.size = document.bytes.size;
        entry.content = std::move(m_Content(document.kind));
        entry.parsed = entry.content.has_value();
        if (!entry.parsed) {
            entry.reason = RefusalReason(document);
        }
    }
    return read;
}

}  // namespace vyr::inspect
