#include "mmt/element/MMTElementIdentifierMapping.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "mmt/IdentifierUnit/IdentifierUnit0.h"
#include "mmt/IdentifierUnit/IdentifierUnit1.h"
#include "mmt/IdentifierUnit/IdentifierUnit2.h"
#include "mmt/IdentifierUnit/IdentifierUnit3.h"
#include "mmt/IdentifierUnit/IdentifierUnitPriv.h"
#include "platform/Log.h"

bool CMMTElementIdentifierMapping::Parse(SItem* item)
try {
    m_identifier.reset();
    vyr::CBitReader reader(item);
    reader.Field(8, m_identifierType);
    if (!reader.Valid()) {
        return false;
    }
    switch (m_identifierType) {
        case 0:
            m_identifier = std::make_unique<CIdentifierUnit0>();
            break;
        case 1:
            m_identifier = std::make_unique<CIdentifierUnit1>();
            break;
        case 2:
            m_identifier = std::make_unique<CIdentifierUnit2>();
            break;
        case 3:
            m_identifier = std::make_unique<CIdentifierUnit3>();
            break;
        default:
            m_identifier = std::make_unique<CIdentifierUnitPriv>();
            break;
    }
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
