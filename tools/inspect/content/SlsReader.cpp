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

/// Notes that a document parsed, and its content if it is wanted.
template <class TMake>
void CSlsReader::m_Read(ESlsDocument kind, TMake make)
{
    for (const SSlsText& document : *m_documents) {
        // The USBD is parsed first. One that is not parsed leaves its predecessor with the manager.
        if (document.kind == ESlsDocument::USBD && document.parsed && m_manager->Usbd() != nullptr) {
            m_usbdService = m_manager->Usbd()->ServiceId();
        }
        if (document.kind == kind) {
            SRead& read = m_read[static_cast<std::size_t>(kind)];
            const SWanted wanted = (*m_wants)(document, m_usbdService);
            read.parsed = true;
            if (wanted.content) {
                read.content = make(wanted.text);
            }
        }
    }
}

std::vector<SSlsDocument> CSlsReader::Read(SView text, const std::vector<SSlsText>& documents, const TWants& wants)
{
    if (!m_manager) {
        CSLSManager::SCallback callback{};
        callback.pUserData = this;
        callback.cbDirectEFDTInfo = [](void* self, unsigned, SEFDTInfo* info, const CSLSManager::SSessionInfo*) {
            static_cast<CSlsReader*>(self)->m_Read(ESlsDocument::EFDT, [&](bool) { return EfdtContent(*info); });
        };
        callback.cbMPDInfo = [](void* self, SMPDInfo* info) {
            static_cast<CSlsReader*>(self)->m_Read(ESlsDocument::MPD,
                                                   [&](bool withText) { return MpdContent(*info, withText); });
        };
        callback.cbAppData = [](void* self, const char* data, unsigned length, const CSLSManager::SSessionInfo*) {
            // The byte behind the end tag comes along.
            const std::string document(data, length - 1);
            const bool held = document.rfind("<HELD", 0) == 0;
            static_cast<CSlsReader*>(self)->m_Read(held ? ESlsDocument::HELD : ESlsDocument::APPLICATION_LIST,
                                                   [&](bool) { return AppDataContent(document); });
        };
        callback.cbRSAT = [](void* self, CRSAT* rsat) {
            static_cast<CSlsReader*>(self)->m_Read(ESlsDocument::RSAT, [&](bool) { return RsatContent(*rsat); });
        };
        callback.cbRatingInfo = [](void* self, const CSLSManager::TRatings& ratings) {
            SRead& mpd = static_cast<CSlsReader*>(self)->m_read[static_cast<std::size_t>(ESlsDocument::MPD)];
            if (mpd.content) {
                AddRatings(ratings, *mpd.content);
            }
        };
        m_manager = std::make_unique<CSLSManager>();
        m_manager->Create(&callback);
    }
    m_read = {};
    m_documents = &documents;
    m_wants = &wants;
    m_usbdService.reset();
    m_manager->Parse(text.data, static_cast<unsigned>(text.size), &m_session, false);
    std::vector<SSlsDocument> found;
    for (const SSlsText& document : documents) {
        // One that is not parsed leaves its predecessor with the manager.
        if (document.parsed && document.kind == ESlsDocument::USBD && m_manager->Usbd() != nullptr) {
            m_Read(document.kind, [&](bool) { return UsbdContent(*m_manager->Usbd()); });
        }
        if (document.parsed && document.kind == ESlsDocument::STSID && m_manager->Stsid() != nullptr) {
            m_Read(document.kind, [&](bool) { return StsidContent(*m_manager->Stsid()); });
            if (m_stsidListener) {
                m_stsidListener(*m_manager->Stsid());
            }
        }
        SRead& read = m_read[static_cast<std::size_t>(document.kind)];
        SSlsDocument& entry = found.emplace_back();
        entry.kind = document.kind;
        entry.size = document.bytes.size;
        entry.bytes = document.bytes;
        entry.parsed = read.parsed;
        entry.content = std::move(read.content);
        if (!entry.parsed) {
            entry.reason = RefusalReason(document);
        }
    }
    m_documents = nullptr;
    m_wants = nullptr;
    return found;
}

}  // namespace vyr::inspect
