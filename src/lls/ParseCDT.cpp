#include "lls/ParseCDT.h"

#include <algorithm>
#include <climits>
#include <memory>

#include "common/ATSC3TimeUtility.h"
#include "common/EpochTime.h"
#include "lls/TableDocument.h"
#include "platform/Log.h"

using vyr::CNodeText;

struct CParseCDT::SState : vyr::STable {
    std::string currentCert;
    std::string nextCert;
    long long nextCertFrom = 0;
    long long currentCertUntil = 0;
    int ocspRefresh = 0;
    std::string toBeSigned;
    std::string cmsSignedData;
    std::list<std::string> certificates;
    std::list<std::string> ocspResponses;
    bool inToBeSigned = false;  // set while the children of a ToBeSignedData are read
};

CParseCDT::CParseCDT() : m(nullptr) {}

CParseCDT::~CParseCDT()
{
    VYR_ASSERT(!m, "!m && \"call Destroy() before deleting the parser\"");
}

bool CParseCDT::Create()
{
    if (!m) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::Create]");
    }
    return vyr::CreateState(m, VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CParseCDT::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CParseCDT> k_handlers[] = {
        {"ToBeSignedData", sm_CbToBeSignedData}, {"Certificates", sm_CbCertificates},
        {"CurrentCert", sm_CbCurrentCert},       {"CertReplacement", sm_CbCertReplacement},
        {"OCSPRefresh", sm_CbOCSPRefresh},       {"CMSSignedData", sm_CbCMSSignedData},
        {"OCSPResponse", sm_CbOCSPResponse},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CParseCDT::Destroy()
{
    if (VYR_ASSERT(m, "m")) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::Destroy]");
        delete m;
        m = nullptr;
    }
}

bool CParseCDT::t_Parse(IParse::SItem* item)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::t_Parse]");
    if (!vyr::ParseTableDocument(m->xml, item, t_DecompressLLS(), "m_ProcessParseCDT(root)", VYR_HERE,
                                 [this](void* root) { return m_ProcessParseCDT(root); })) {
        return false;
    }
    m_DumpCDT();
    return true;
}

bool CParseCDT::m_ProcessParseCDT(void* root)
{
    if (!m->xml.Compare(root, "CertificationData")) {
        return false;
    }
    m->inToBeSigned = false;
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN, "[CParseCDT::m_ProcessParseCDT] Name[%s]",
                          VYR_HERE);
    return true;
}

void CParseCDT::sm_CbToBeSignedData(CParseCDT* parser, void* node)
{
    parser->m->certificates.clear();
    parser->m->ocspResponses.clear();
    SState* m = parser->m;
    const bool outermost = !m->inToBeSigned;
    m->inToBeSigned = true;
    parser->m_OnToBeSigendData(node);
    m->inToBeSigned = !outermost;
    // The text of one inside another is overwritten by that of the outer one: it is made only where its size
    // is logged.
    if (outermost || vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        parser->m_DumpToBeSigendData(node);
    }
}

bool CParseCDT::m_OnToBeSigendData(void* node)
{
    const CNodeText refresh = CNodeText::Attribute(node, "OCSPRefresh");
    if (refresh.Found()) {
        m->ocspRefresh = TimeUtility::DurationToSec(refresh.Text());
    }
    vyr::DispatchChildren(this, m->handlers, node, vyr::LOG_HANDLED_CHILDREN,
                          "[CParseCDT::sm_CbToBeSignedData] Name[%s]", VYR_HERE);
    return true;
}

/// Keeps the element's exact text.
bool CParseCDT::m_DumpToBeSigendData(void* node)
{
    if (!m->xml.Compare(node, "ToBeSignedData")) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpToBeSigendData] Error: Tag Name[%s]", m->xml.Name(node));
        return false;
    }
    int size = 0;
    const std::unique_ptr<char[]> text(m->xml.NodeDump(node, &size));
    if (!text) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpToBeSigendData] nodeDump does not exist !!!");
        return false;
    }
    m->toBeSigned.assign(text.get(), static_cast<std::size_t>(size));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpToBeSigendData] Size[%zu]", m->toBeSigned.size());
    return true;
}

void CParseCDT::sm_CbCertificates(CParseCDT* parser, void* node)
{
    std::string& certificate = parser->m->certificates.emplace_back();
    CNodeText::Content(node).CopyTo(certificate);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbCertificates] Certificate[%s]", certificate.c_str());
}

void CParseCDT::sm_CbOCSPResponse(CParseCDT* parser, void* node)
{
    std::string& response = parser->m->ocspResponses.emplace_back();
    CNodeText::Content(node).CopyTo(response);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbOCSPResponse] Response[%s]", response.c_str());
}

void CParseCDT::sm_CbCurrentCert(CParseCDT* parser, void* node)
{
    CNodeText::Content(node).CopyTo(parser->m->currentCert);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbCurrentCert] CurrentCert[%s]", parser->m->currentCert.c_str());
}

void CParseCDT::sm_CbCMSSignedData(CParseCDT* parser, void* node)
{
    CNodeText::Content(node).CopyTo(parser->m->cmsSignedData);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbCMSSignedData] Signed Data[%s]", parser->m->cmsSignedData.c_str());
}

void CParseCDT::sm_CbCertReplacement(CParseCDT* parser, void* node)
{
    SState* m = parser->m;
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbCertReplacement]");
    CNodeText::Attribute(node, "NextCert").CopyTo(m->nextCert);
    const CNodeText from = CNodeText::Attribute(node, "NextCertFrom");
    if (from.Found()) {
        m->nextCertFrom = g_EpochTime(from.Text());
    }
    const CNodeText until = CNodeText::Attribute(node, "CurrentCertUntil");
    if (until.Found()) {
        m->currentCertUntil = g_EpochTime(until.Text());
    }
}

void CParseCDT::sm_CbOCSPRefresh(CParseCDT* parser, void* node)
{
    int& refresh = parser->m->ocspRefresh;
    const CNodeText text = CNodeText::Attribute(node, "OCSPRefresh");
    if (!text.Found()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbOCSPRefresh] spec violation no OCSP Refresh time !!!");
    }
    refresh = text.Int(refresh);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbOCSPRefresh] Refresh Time[%d]", refresh);
}

bool CParseCDT::GetCurrentCert(std::string& cert) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->currentCert, cert);
}

bool CParseCDT::GetCertReplacement(std::string& nextCert, long long& nextCertFrom, long long& currentCertUntil) const
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    if (!vyr::Give(m->nextCert, nextCert)) {
        return false;
    }
    nextCertFrom = m->nextCertFrom;
    currentCertUntil = m->currentCertUntil;
    return true;
}

bool CParseCDT::GetCertReplacement(std::string& nextCert, long& nextCertFrom, long& currentCertUntil) const
{
    long long from = 0;
    long long until = 0;
    if (!GetCertReplacement(nextCert, from, until)) {
        return false;
    }
    nextCertFrom = static_cast<long>(std::clamp<long long>(from, LONG_MIN, LONG_MAX));
    currentCertUntil = static_cast<long>(std::clamp<long long>(until, LONG_MIN, LONG_MAX));
    return true;
}

bool CParseCDT::GetOCSPRefresh(int& seconds) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->ocspRefresh, seconds);
}

bool CParseCDT::GetCMSSignedData(std::string& data) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->cmsSignedData, data);
}

bool CParseCDT::GetToBeSignedData(std::string& text) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->toBeSigned, text);
}

bool CParseCDT::GetCertificates(std::list<std::string>& certs) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->certificates, certs);
}

bool CParseCDT::GetOCSPResponse(std::list<std::string>& responses) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->ocspResponses, responses);
}

void CParseCDT::m_DumpCDT() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpCDT] Start Dump !!!");
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpCDT] CurrentCert[%s], NextCert[%s]", m->currentCert.c_str(),
            m->nextCert.c_str());
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpCDT] NextCertFrom[%lld], CurrentCertUntil[%lld], OCSPRefresh[%d]",
            m->nextCertFrom, m->currentCertUntil, m->ocspRefresh);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpCDT] Certificates[%zu], OCSPResponses[%zu]", m->certificates.size(),
            m->ocspResponses.size());
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpCDT] End Dump !!!");
}
