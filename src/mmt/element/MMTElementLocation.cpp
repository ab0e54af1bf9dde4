#include "mmt/element/MMTElementLocation.h"

#include <iterator>

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "platform/Log.h"

namespace {

/// Locations of type 7 are a byte each, and there can be 255 in every asset.
CLocationUnitBase* Unit7()
{
    static CLocationUnit7 s_unit;
    return &s_unit;
}

/// By location_type.
constexpr CLocationUnitBase* (*k_units[])() = {
    vyr::New<CLocationUnitBase, CLocationUnit0>, vyr::New<CLocationUnitBase, CLocationUnit1>,
    vyr::New<CLocationUnitBase, CLocationUnit2>, vyr::New<CLocationUnitBase, CLocationUnit3>,
    vyr::New<CLocationUnitBase, CLocationUnit4>, vyr::New<CLocationUnitBase, CLocationUnit5>,
    vyr::New<CLocationUnitBase, CLocationUnit6>, Unit7,
    vyr::New<CLocationUnitBase, CLocationUnit8>, vyr::New<CLocationUnitBase, CLocationUnit9>,
    vyr::New<CLocationUnitBase, CLocationUnitA>, vyr::New<CLocationUnitBase, CLocationUnitB>,
    vyr::New<CLocationUnitBase, CLocationUnitC>};

}  // namespace

void CMMTElementLocation::SRelease::operator()(CLocationUnitBase* unit) const
{
    if (unit != Unit7()) {
        delete unit;
    }
}

CMMTElementLocation::~CMMTElementLocation() = default;

bool CMMTElementLocation::Parse(SItem* item)
try {
    vyr::CBitReader reader(item);
    reader.Field(8, m_locationType);
    VYR_ASSERT_AT(23, !m_pLocation, "!m_pLocation");
    m_pLocation.reset();
    if (!reader.Valid() || m_locationType >= std::size(k_units)) {
        return false;
    }
    m_pLocation.reset(k_units[m_locationType]());
    if (!m_pLocation->Parse(item)) {
        m_pLocation.reset();
    }
    return m_pLocation != nullptr;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTElementLocation::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "location type [%u]", m_locationType);
    if (m_pLocation) {
        m_pLocation->Dump();
    }
}
