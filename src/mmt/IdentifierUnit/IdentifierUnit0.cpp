#include "mmt/IdentifierUnit/IdentifierUnit0.h"

CIdentifierUnitBase::~CIdentifierUnitBase() = default;

bool CIdentifierUnit0::Parse(SItem* item)
{
    return m_assetId.Parse(item);
}

void CIdentifierUnit0::Dump() const
{
    m_assetId.Dump();
}
