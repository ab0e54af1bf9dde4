#include "mmt/msg/MMTMsgAtsc3.h"

#include <algorithm>
#include <climits>

#include "common/Inflate.h"
#include "common/OutOfMemory.h"
#include "common/RSAT.h"
#include "mmt/Elements.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/table/MMTTblSi.h"
#include "platform/FailureKeeping.h"

namespace {

/// A parser that is created with its owner and destroyed with it.
template <class TParser>
struct TCreated : TParser {
    TCreated()
    {
        if (!TParser::Create()) {
            throw std::bad_alloc();
        }
    }
    ~TCreated() override { TParser::Destroy(); }
};

}  // namespace

struct CMMTMsgAtsc3::SState {
    unsigned short serviceId = 0;
    unsigned short contentType = 0;
    unsigned char contentVersion = 0;
    unsigned char contentCompression = 0;
    unsigned int contentLength = 0;
    bool visiting = false;  // a caller has the content
    vyr::CBytes uri;
    vyr::CBytes content;
    TPtrArray<CMMTDesc> audioStreamProperties;
    TPtrArray<CMMTDesc> videoStreamProperties;
    TPtrArray<CMMTDesc> captionAssets;
    TPtrArray<CMMTDesc> securityProperties;
    TPtrArray<CMMTDesc> licenseUrls;
    TCreated<CMMTUsbd> usbd;
    TCreated<CRSAT> rsat;
    CMMTTblSi siTable;

    /// In the order in which descriptors are handed out.
    const TPtrArray<CMMTDesc>* const arrays[5] = {&audioStreamProperties, &videoStreamProperties, &captionAssets,
                                                  &securityProperties, &licenseUrls};
};

CMMTMsgAtsc3::CMMTMsgAtsc3() : CMMTMsg(CLASS_TYPE_ATSC3), m(nullptr)
{
    m_Create();
}

/// Makes the state, once: a constructor cannot say that memory was out, Parse can, and tries again.
bool CMMTMsgAtsc3::m_Create()
try {
    if (m) {
        return true;
    }
    m = new SState;
    return true;
} catch (...) {
    return VYR_CHECK(false, "m = new SState");
}

CMMTMsgAtsc3::~CMMTMsgAtsc3()
{
    delete m;
}

bool CMMTMsgAtsc3::Parse(SItem* item)
try {
    const vyr::CEntry entry;
    if (!m_Create() || !VYR_ASSERT(!m->visiting, "!m_visiting") ||
        !t_ParseHeader(item, 32, "[CMMTMsgAtsc3::Parse] Item size ERROR len[%u], length[%u]")) {
        return false;
    }
    vyr::CBitReader reader(item);
    m->content.Clear();
    reader.Field(16, m->serviceId);
    reader.Field(16, m->contentType);
    reader.Field(8, m->contentVersion);
    reader.Field(8, m->contentCompression);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgAtsc3::Parse] m_content_type[%d], version[%d], m_content_version[%d]",
            m->contentType, Version(), m->contentVersion);
    if (const unsigned int length = reader.Value(8); length > 0) {
        reader.Keep(length, m->uri);
    } else {
        m->uri.Clear();
    }
    reader.Field(32, m->contentLength);
    // Required: a USBD stays compressed, its own parser inflates it.
    if (m->contentCompression == k_gzip && m->contentType >= CONTENT_TYPE_MPD) {
        return m_ParseCompressed(item);
    }
    m_ParseContent(item, true);
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CMMTMsgAtsc3::m_ParseCompressed(SItem* item)
{
    if (m->contentLength < 2 || m->contentLength > k_maxContent) {
        return VYR_FAIL(FAILURE_SIZE, "Prepare uncompress Fail length[%d]", static_cast<int>(m->contentLength));
    }
    const unsigned int size = std::min(m->contentLength, vyr::BytesLeft(*item));
    const unsigned char* compressed = item->buffer + item->bitpos / 8;
    vyr::SInflated inflated;
    if (item->valid && vyr::HasGzipMagic(compressed, size)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "uncompress length[%d] bitPos[%d]", static_cast<int>(m->contentLength),
                static_cast<int>(item->bitpos / 8));
        vyr::Inflate(compressed, size, k_maxContent, inflated);
    }
    if (!inflated.data) {
        m_ParseContent(item, true);
        return true;
    }
    item->bitpos += size * 8;
    m->contentLength = static_cast<unsigned int>(inflated.size);
    SItem content = {reinterpret_cast<const unsigned char*>(inflated.data.get()), m->contentLength,
                     m->contentLength * 8, 0, true};
    m_ParseContent(&content, false);
    return true;
}

void CMMTMsgAtsc3::m_ParseContent(SItem* item, bool asItStands)
{
    switch (m->contentType) {
        case CONTENT_TYPE_USBD:
            if (m_CopyContent(item, false)) {
                m->usbd.Parse(m->content.Text(), m->contentLength, m->contentCompression == k_gzip);
            }
            break;
        case CONTENT_TYPE_MPD:
            m_CopyContent(item, false);
            break;
        case CONTENT_TYPE_RSAT:
            if (m_CopyContent(item, asItStands)) {
                m->rsat.Parse(m->content.Text(), m->contentLength);
            }
            break;
        case CONTENT_TYPE_ASP:
            m_ParseDescriptors(item, m->audioStreamProperties);
            break;
        case CONTENT_TYPE_VSP:
            m_ParseDescriptors(item, m->videoStreamProperties);
            break;
        case CONTENT_TYPE_CAPTION:
            m_ParseDescriptors(item, m->captionAssets);
            break;
        case CONTENT_TYPE_SP:
            m_ParseDescriptors(item, m->securityProperties);
            break;
        case CONTENT_TYPE_LICENSE_URL:
            m_ParseDescriptors(item, m->licenseUrls);
            break;
        default:
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgAtsc3::Parse] UNKNOWN descriptor [%d]", m->contentType);
            break;
    }
}

bool CMMTMsgAtsc3::m_CopyContent(SItem* item, bool evenEmpty)
{
    if (m->contentLength > 0 || evenEmpty) {
        if (!vyr::CBitReader(item).Keep(m->contentLength, m->content)) {
            VYR_FAIL(FAILURE_SIZE, "[CMMTMsgAtsc3::Parse] content is not whole length[%u]", m->contentLength);
        }
    }
    return static_cast<bool>(m->content);
}

void CMMTMsgAtsc3::m_ParseDescriptors(SItem* item, CCPtrArray& array)
{
    // A budget beyond the item ends where the item does.
    const unsigned int length = std::min<unsigned int>(m->contentLength, INT_MAX);
    CMMTDescFactory::ParseDescriptors(item, static_cast<int>(length), &array);
}

void CMMTMsgAtsc3::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    CMMTMsg::Dump();
    if (!m) {
        return;
    }
    VYR_DUMP("[CMMTMsgAtsc3::Dump] service id[%u] content type[%u] version[%u] compression[%u]", m->serviceId,
             m->contentType, m->contentVersion, m->contentCompression);
    VYR_DUMP("[CMMTMsgAtsc3::Dump] URI[%s] content length[%u]", m->uri ? m->uri.Text() : "", m->contentLength);
    for (const TPtrArray<CMMTDesc>* array : m->arrays) {
        vyr::DumpElements(*array);
    }
}

bool CMMTMsgAtsc3::Process()
{
    return true;
}

bool CMMTMsgAtsc3::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    for (const TPtrArray<CMMTDesc>* array : m->arrays) {
        if (!vyr::VisitDescriptors(*array, callback, user)) {
            return false;
        }
    }
    return true;
}

bool CMMTMsgAtsc3::GetContent(void (*callback)(void* user, unsigned char* data, unsigned int length), void* user) const
{
    if (!VYR_ASSERT(callback, "callback") || !VYR_ASSERT(m, "m")) {
        return false;
    }
    const vyr::CScoped<bool> visiting(m->visiting, true, m->visiting);
    callback(user, const_cast<unsigned char*>(m->content.Data()), m->contentLength);
    return true;
}

unsigned short CMMTMsgAtsc3::ServiceId() const
{
    return m ? m->serviceId : static_cast<unsigned short>(0);
}

unsigned short CMMTMsgAtsc3::ContentType() const
{
    const unsigned short type = m ? m->contentType : static_cast<unsigned short>(0);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgAtsc3::ContentType] type [%d]", type);
    return type;
}

unsigned char CMMTMsgAtsc3::ContentVersion() const
{
    return m ? m->contentVersion : static_cast<unsigned char>(0);
}

unsigned char CMMTMsgAtsc3::ContentCompression() const
{
    return m ? m->contentCompression : static_cast<unsigned char>(0);
}

const char* CMMTMsgAtsc3::Uri() const
{
    return m ? m->uri.Text() : nullptr;
}

unsigned int CMMTMsgAtsc3::ContentLength() const
{
    return m ? m->contentLength : 0;
}

CMMTUsbd* CMMTMsgAtsc3::UserServiceBundleDescription()
{
    return m ? &m->usbd : nullptr;
}

CRSAT* CMMTMsgAtsc3::RSAT()
{
    return m ? &m->rsat : nullptr;
}

CMMTTblSi* CMMTMsgAtsc3::SITable()
{
    return m ? &m->siTable : nullptr;
}

bool CMMTMsgAtsc3::GetServiceInfo(char** globalServiceId, unsigned short& serviceId) const
{
    if (!VYR_ASSERT(globalServiceId, "globalServiceId") || !VYR_ASSERT(m, "m")) {
        return false;
    }
    *globalServiceId = const_cast<char*>(m->usbd.GlobalServiceId());
    serviceId = m->serviceId;
    return true;
}
