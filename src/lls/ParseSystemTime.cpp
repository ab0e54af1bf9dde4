#include "lls/ParseSystemTime.h"

#include "common/ATSC3TimeUtility.h"
#include "common/XmlRead.h"
#include "common/XsTime.h"
#include "lls/TableDocument.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

void ReadGiven(CParseSystemTime::SGiven& given, void* root)
{
    vyr::ReadAttribute(root, "currentUtcOffset", given.currentUtcOffset);
    vyr::ReadAttribute(root, "ptpPrepend", given.ptpPrepend);
    vyr::ReadAttribute(root, "leap59", given.leap59);
    vyr::ReadAttribute(root, "leap61", given.leap61);
    given.utcLocalOffset = vyr::GivenTime(CNodeText::Attribute(root, "utcLocalOffset"), vyr::ReadDuration);
    vyr::ReadAttribute(root, "dsStatus", given.dsStatus);
    vyr::ReadAttribute(root, "dsDayOfMonth", given.dsDayOfMonth);
    vyr::ReadAttribute(root, "dsHour", given.dsHour);
}

bool m_ProcessParseSystemTime(CParseSystemTime::SSystemTime& time, CParseSystemTime::SGiven& given, const CXML& xml,
                              void* root)
{
    if (!xml.Compare(root, "SystemTime")) {
        return false;
    }
    ReadGiven(given, root);
    vyr::ReadAttribute(root, "currentUtcOffset", time.currentUtcOffset);
    vyr::ReadAttribute(root, "ptpPrepend", time.ptpPrepend);
    // Required: these only ever become true.
    time.leap59 = CNodeText::Attribute(root, "leap59").Bool() || time.leap59;
    time.leap61 = CNodeText::Attribute(root, "leap61").Bool() || time.leap61;
    time.dsStatus = CNodeText::Attribute(root, "dsStatus").Bool() || time.dsStatus;
    const CNodeText utcLocalOffset = CNodeText::Attribute(root, "utcLocalOffset");
    if (utcLocalOffset.Found()) {
        time.utcLocalOffset = TimeUtility::DurationToSec(utcLocalOffset.Text());
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSystemTime::Parse] utcLocalOffset.String():%s", utcLocalOffset.Text());
    }
    const int day = CNodeText::Attribute(root, "dsDayOfMonth").Int(0);
    if (day >= 1 && day <= 31) {
        time.dsDayOfMonth = day;
    }
    const int hour = CNodeText::Attribute(root, "dsHour").Int(0);
    if (hour >= 0 && hour <= 24) {
        time.dsHour = hour;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSystemTime::Parse] CurrentUtcOffset:%d utcLocalOffset:%d",
            time.currentUtcOffset, time.utcLocalOffset);
    return true;
}

}  // namespace

struct CParseSystemTime::SState {
    SSystemTime time{};
    SGiven given;
    void* channel = nullptr;
};

CParseSystemTime::CParseSystemTime() : m(nullptr) {}

CParseSystemTime::~CParseSystemTime()
{
    VYR_ASSERT(!m, "!m");
}

bool CParseSystemTime::Create(unsigned char groupId)
{
    if (!vyr::CreateState(m, "[CParseSystemTime::Create]")) {
        return false;
    }
    m->time.groupId = groupId;
    return true;
}

void CParseSystemTime::Destroy()
{
    vyr::DestroyState(m);
}

bool CParseSystemTime::Start(void* channel)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    m->channel = channel;
    return true;
}

bool CParseSystemTime::Stop()
{
    return VYR_ASSERT(m, "m");
}

int CParseSystemTime::CurrUtcOffset() const
{
    return VYR_ASSERT(m, "m") ? m->time.currentUtcOffset : 0;
}

int CParseSystemTime::UtcLocalOffset() const
{
    return VYR_ASSERT(m, "m") ? m->time.utcLocalOffset : 0;
}

bool CParseSystemTime::DsStatus() const
{
    return VYR_ASSERT(m, "m") && m->time.dsStatus;
}

const CParseSystemTime::SSystemTime* CParseSystemTime::State() const
{
    return m ? &m->time : nullptr;
}

const CParseSystemTime::SGiven* CParseSystemTime::Given() const
{
    return m ? &m->given : nullptr;
}

bool CParseSystemTime::t_Parse(IParse::SItem* item)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSystemTime::t_Parse]");
    return vyr::ParseTableDocument(
        item, t_DecompressLLS(), "m_ProcessParseSystemTime(root)",
        [this](const CXML& xml, void* root) { return m_ProcessParseSystemTime(m->time, m->given, xml, root); });
}
