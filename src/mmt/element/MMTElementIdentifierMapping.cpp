#include "mmt/element/MMTElementIdentifierMapping.h"

#include <iterator>

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "mmt/IdentifierUnit/IdentifierUnit0.h"
#include "mmt/IdentifierUnit/IdentifierUnit1.h"
#include "mmt/IdentifierUnit/IdentifierUnit2.h"
#include "mmt/IdentifierUnit/IdentifierUnit3.h"
#include "mmt/IdentifierUnit/IdentifierUnitPriv.h"
#include "platform/Log.h"

namespace {

/// By identifier_type.
constexpr CIdentifierUnitBase* (*k_units[])() = {
    vyr::New<CIdentifierUnitBase, CIdentifierUnit0>, vyr::New<CIdentifierUnitBase, CIdentifierUnit1>,
    vyr::New<CIdentifierUnitBase, CIdentifierUnit2>, vyr::New<CIdentifierUnitBase, CIdentifierUnit3>};

}  // namespace

bool CMMTElementIdentifierMapping::Parse(SItem* item)
try {
    m_identifier.reset();
    vyr::CBitReader reader(item);
    reader.Field(8, m_identifierType);
    if (!reader.Valid()) {
        return false;
    }
    m_identifier.reset(m_identifierType < std::size(k_units) ? k_units[m_identifierType]() : new CIdentifierUnitPriv);
    if (!VYR_CHECK_AT(43, m_identifier->Parse(item), "m_identifier->Parse(item)")) {
        m_identifier.reset();
    }
    return m_identifier != nullptr;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTElementIdentifierMapping::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "identifier type [%u]", m_identifierType);
    if (m_identifier) {
        m_identifier->Dump();
    }
}
