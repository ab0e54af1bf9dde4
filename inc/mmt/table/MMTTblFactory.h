#pragma once

#include "MMTTbl.h"

/// Makes MMT signalling tables from their table_id.
class VYR_API CMMTTblFactory {
  public:
    /// A new, unparsed table of the class of the table_id at the cursor, which stays where it is. The caller
    /// deletes it. Null: a table_id of 0x24 or above (logged), or no byte is left. A null item is asserted.
    static CMMTTbl* GenerateTbl(IParse::SItem* item);
};
