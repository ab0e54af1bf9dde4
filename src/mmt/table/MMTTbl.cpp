#include "mmt/table/MMTTbl.h"

#include <algorithm>
#include <iterator>

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "mmt/IdentifierUnit/IdentifierUnit0.h"
#include "mmt/element/MMTElementIdentifierMapping.h"
#include "mmt/element/MMTElementLocation.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

CMMTTbl::CMMTTbl(unsigned int classType) : m_classType(classType) {}

bool CMMTTbl::Parse(SItem* item)
{
    const vyr::CEntry entry;  // what a class reads behind the header adds to the record that begins here
    if (!VYR_ASSERT(item, "item") || !VYR_ASSERT(item->buffer, "item->buffer")) {
        return false;
    }
    vyr::CBitReader reader(item);
    reader.Field(8, m_tableId);
    reader.Field(8, m_version);
    reader.Field(16, m_length);
    VYR_LOG(LOG_PRIORITY_DEBUG, "CMMTTbl table id [%u]", m_tableId);
    VYR_LOG(LOG_PRIORITY_DEBUG, "CMMTTbl version  [%u]", m_version);
    VYR_LOG(LOG_PRIORITY_DEBUG, "CMMTTbl length   [%u]", m_length);
    return item->valid;
}

bool CMMTTbl::t_ParseHeader(SItem* item, const char* error)
{
    if (!CMMTTbl::Parse(item)) {
        return false;
    }
    if (vyr::BytesLeft(*item) < m_length) {
        return VYR_FAIL(FAILURE_SIZE, "%s", error);
    }
    return true;
}

void CMMTTbl::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "table id [%u]", m_tableId);
    VYR_LOG(LOG_PRIORITY_DEBUG, "version  [%u]", m_version);
    VYR_LOG(LOG_PRIORITY_DEBUG, "length   [%u]", m_length);
}

bool CMMTTbl::Process()
{
    return false;
}

const char* CMMTTbl::ClassString() const
{
    static constexpr const char* k_names[] = {"CLASS_TYPE_PA",  "CLASS_TYPE_MPI", "CLASS_TYPE_MP",
                                              "CLASS_TYPE_CRI", "CLASS_TYPE_DCI", "CLASS_TYPE_SI"};
    return m_classType < std::size(k_names) ? k_names[m_classType] : "UNKONWN CLASS TYPE";
}

bool CMMTTbl::t_GetMMTGeneralLocationInfo(SLocationInfo* out, const CMMTElementLocation* location)
{
    if (!VYR_ASSERT(out, "out") || !VYR_ASSERT(location, "location") || !location->Location()) {
        return false;
    }
    *out = {};
    out->locationType = location->LocationType();
    if (out->locationType <= 1) {
        return location->Location()->GetPacketId(&out->info.packetId);
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "location type 0x%2x", out->locationType);
    return false;
}

bool CMMTTbl::t_GetIdentifier(SIdentifier* out, const CMMTElementIdentifierMapping* mapping)
{
    if (!VYR_ASSERT(out, "out") || !VYR_ASSERT(mapping, "mapping")) {
        return false;
    }
    *out = {};
    out->identifierType = mapping->IdentifierType();
    if (out->identifierType == 0) {
        return m_AssetId(mapping->Identifier(), &out->identifier);
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "SIdentifier type 0x%2x", out->identifierType);
    return false;
}

bool CMMTTbl::m_AssetId(const CIdentifierUnitBase* unit, UInternalIdentifier* out)
try {
    if (!VYR_ASSERT(unit, "unit")) {
        return false;
    }
    const CMMTElementAssetId& id = *static_cast<const CIdentifierUnit0*>(unit)->AssetId();
    const unsigned int length = id.AssetIdTextLength();
    out->assetId = new char[std::size_t{length} + 1]();
    std::copy(id.AssetIdScheme(), id.AssetIdScheme() + 4, out->assetIdScheme);
    std::copy_n(id.AssetId(), length, out->assetId);
    VYR_LOG(LOG_PRIORITY_DEBUG, "asset id %s", out->assetId);
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}
