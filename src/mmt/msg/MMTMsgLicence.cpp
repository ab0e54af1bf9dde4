#include "mmt/msg/MMTMsgLicence.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

CMMTMsgLicence::CMMTMsgLicence(EClassType classType) : CMMTMsgPayload(classType) {}

bool CMMTMsgLicence::t_ParseLicences(SItem* item, const char* format)
try {
    SItem payload;
    if (!t_ParsePayload(item, 32, format, payload)) {
        return false;
    }
    vyr::CBitReader reader(&payload);
    const unsigned int count = reader.Value(8);
    for (unsigned int i = 0; i < count; ++i) {
        auto licence = std::make_unique<SLicence>();
        if (!licence->assetId.Parse(&payload)) {
            break;
        }
        reader.Keep(reader.Value(16), licence->data);
        m_arrayLicence.Append(std::move(licence));
    }
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTMsgLicence::Dump() const
{
    CMMTMsg::Dump();
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    for (int i = 0; i < LicenceCount(); ++i) {
        Licence(i)->assetId.Dump();
        VYR_DUMP("licence of %u bytes", Licence(i)->data.Length());
    }
}
