#include "lls/ParseCDT.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <vector>

#include "common/EpochTime.h"
#include "common/Give.h"
#include "common/XmlRead.h"
#include "common/XsTime.h"
#include "lls/Replace.h"
#include "lls/TableDocument.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

/// Texts of an element that a table may have any number of.
struct STexts {
    std::vector<vyr::THeld<std::string>> list;
    std::size_t held = 0;  // those that are older than the table

    void Clear()
    {
        list.clear();
        held = 0;
    }
    explicit operator std::list<std::string>() const { return {list.begin(), list.end()}; }
};

struct SCertificates {
    std::string currentCert;
    std::string nextCert;
    long long nextCertFrom = 0;
    long long currentCertUntil = 0;
    int ocspRefresh = 0;
    CParseCDT::SGiven given;
    std::string toBeSigned;
    std::string cmsSignedData;
    STexts certificates;
    STexts ocspResponses;
    vyr::CReplace replace;
    const CXML* xml = nullptr;  // the document, while it is parsed
    bool inToBeSigned = false;  // set while the children of a ToBeSignedData are read
};

void sm_CbToBeSignedData(SCertificates* m, void* node);

/// Keeps the element's text, if the table may bring one more: the text, else null.
const char* Add(STexts& texts, vyr::CReplace& replace, void* node)
{
    if (!replace.Take()) {
        return nullptr;
    }
    vyr::THeld<std::string> text;
    text.group = replace.Group();
    vyr::Read(CNodeText::Content(node), static_cast<std::string&>(text));
    texts.list.push_back(std::move(text));
    return texts.list.back().c_str();
}

void sm_CbCertificates(SCertificates* m, void* node)
{
    if (const char* certificate = Add(m->certificates, m->replace, node)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbCertificates] Certificate[%s]", certificate);
    }
}

void sm_CbOCSPResponse(SCertificates* m, void* node)
{
    if (const char* response = Add(m->ocspResponses, m->replace, node)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbOCSPResponse] Response[%s]", response);
    }
}

void sm_CbCurrentCert(SCertificates* m, void* node)
{
    vyr::Read(CNodeText::Content(node), m->currentCert);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbCurrentCert] CurrentCert[%s]", m->currentCert.c_str());
}

void sm_CbCMSSignedData(SCertificates* m, void* node)
{
    vyr::Read(CNodeText::Content(node), m->cmsSignedData);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbCMSSignedData] Signed Data[%s]", m->cmsSignedData.c_str());
}

void sm_CbCertReplacement(SCertificates* m, void* node)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbCertReplacement]");
    vyr::ReadAttribute(node, "NextCert", m->nextCert);
    const CNodeText from = CNodeText::Attribute(node, "NextCertFrom");
    if (from.Found()) {
        m->nextCertFrom = vyr::LocalEpoch(from.Text(), g_EpochTime);
        m->given.nextCertFrom = vyr::GivenTime(from, vyr::ReadDateTime);
    }
    const CNodeText until = CNodeText::Attribute(node, "CurrentCertUntil");
    if (until.Found()) {
        m->currentCertUntil = vyr::LocalEpoch(until.Text(), g_EpochTime);
        m->given.currentCertUntil = vyr::GivenTime(until, vyr::ReadDateTime);
    }
}

void sm_CbOCSPRefresh(SCertificates* m, void* node)
{
    int& refresh = m->ocspRefresh;
    const CNodeText text = CNodeText::Attribute(node, "OCSPRefresh");
    if (!text.Found()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbOCSPRefresh] spec violation no OCSP Refresh time !!!");
    }
    refresh = text.Int(refresh);
    if (text.Found()) {
        m->given.ocspRefresh = vyr::GivenTime(text, vyr::ReadDuration);
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::sm_CbOCSPRefresh] Refresh Time[%d]", refresh);
}

constexpr vyr::SElementHandler<SCertificates> k_handlers[] = {
    {"ToBeSignedData", sm_CbToBeSignedData}, {"Certificates", sm_CbCertificates},
    {"CurrentCert", sm_CbCurrentCert},       {"CertReplacement", sm_CbCertReplacement},
    {"OCSPRefresh", sm_CbOCSPRefresh},       {"CMSSignedData", sm_CbCMSSignedData},
    {"OCSPResponse", sm_CbOCSPResponse},
};

void m_OnToBeSigendData(SCertificates* m, void* node)
{
    const CNodeText refresh = CNodeText::Attribute(node, "OCSPRefresh");
    if (refresh.Found()) {
        m->ocspRefresh = TimeUtility::DurationToSec(refresh.Text());
        m->given.ocspRefresh = vyr::GivenTime(refresh, vyr::ReadDuration);
    }
    vyr::DispatchChildren(m, k_handlers, node, "[CParseCDT::sm_CbToBeSignedData] Name[%s]");
}

/// Keeps the element's exact text.
void m_DumpToBeSigendData(SCertificates* m, void* node)
{
    if (!m->xml->Compare(node, "ToBeSignedData")) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpToBeSigendData] Error: Tag Name[%s]", m->xml->Name(node));
        return;
    }
    int size = 0;
    const std::unique_ptr<char[]> text(m->xml->NodeDump(node, &size));
    if (!text) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpToBeSigendData] nodeDump does not exist !!!");
        return;
    }
    m->toBeSigned.assign(text.get(), static_cast<std::size_t>(size));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::m_DumpToBeSigendData] Size[%zu]", m->toBeSigned.size());
}

void sm_CbToBeSignedData(SCertificates* m, void* node)
{
    m->certificates.Clear();  // required, whatever the group of what is held
    m->ocspResponses.Clear();
    m->replace.Forget();
    const bool outermost = !m->inToBeSigned;
    m->inToBeSigned = true;
    m_OnToBeSigendData(m, node);
    m->inToBeSigned = !outermost;
    // The text of one inside another is overwritten by that of the outer one: it is made only where its size
    // is logged.
    if (outermost || vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        m_DumpToBeSigendData(m, node);
    }
}

bool m_ProcessParseCDT(SCertificates& m, const CXML& xml, void* root)
{
    if (!xml.Compare(root, "CertificationData")) {
        return false;
    }
    m.xml = &xml;
    m.inToBeSigned = false;
    vyr::DispatchChildren(&m, k_handlers, root, "[CParseCDT::m_ProcessParseCDT] Name[%s]");
    return true;
}

}  // namespace

struct CParseCDT::SState : SCertificates {};

CParseCDT::CParseCDT() : m(nullptr) {}

CParseCDT::~CParseCDT()
{
    VYR_ASSERT(!m, "!m && \"call Destroy() before deleting the parser\"");
}

bool CParseCDT::Create()
{
    return vyr::CreateState(m, "[CParseCDT::Create]");
}

void CParseCDT::Destroy()
{
    vyr::DestroyState(m, "[CParseCDT::Destroy]");
}

void CParseCDT::SetReplace(bool replace)
{
    if (VYR_ASSERT(m, "m")) {
        m->replace.Set(replace);
    }
}

bool CParseCDT::t_Parse(IParse::SItem* item)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseCDT::t_Parse]");
    STexts* const all[] = {&m->certificates, &m->ocspResponses};
    for (STexts* texts : all) {
        texts->held = texts->list.size();
    }
    m->replace.Begin({nullptr, t_GroupId(), 0});
    if (!vyr::ParseTableDocument(item, t_DecompressLLS(), "m_ProcessParseCDT(root)",
                                 [this](const CXML& xml, void* root) { return m_ProcessParseCDT(*m, xml, root); })) {
        return false;
    }
    for (STexts* texts : all) {
        m->replace.Drop(texts->list, texts->held);
    }
    m->replace.End("CParseCDT");
    m_DumpCDT();
    return true;
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

const CParseCDT::SGiven* CParseCDT::Given() const
{
    return VYR_ASSERT(m, "m") ? &m->given : nullptr;
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
    VYR_DUMP("[CParseCDT::m_DumpCDT] Start Dump !!!");
    VYR_DUMP("[CParseCDT::m_DumpCDT] CurrentCert[%s], NextCert[%s]", m->currentCert.c_str(), m->nextCert.c_str());
    VYR_DUMP("[CParseCDT::m_DumpCDT] NextCertFrom[%lld], CurrentCertUntil[%lld], OCSPRefresh[%d]", m->nextCertFrom,
             m->currentCertUntil, m->ocspRefresh);
    VYR_DUMP("[CParseCDT::m_DumpCDT] Certificates[%zu], OCSPResponses[%zu]", m->certificates.list.size(),
             m->ocspResponses.list.size());
    VYR_DUMP("[CParseCDT::m_DumpCDT] End Dump !!!");
}
