#pragma once

#include "../../common/CoreOS/PtrArray.h"
#include "MMTDesc.h"

/// Makes MMT descriptors from their tags.
class VYR_API CMMTDescFactory {
  public:
    /// A new, unparsed descriptor of the class of the tag at the cursor, which stays where it is. The caller
    /// deletes it. Null: the tag has no class, or fewer than two bytes are left. A null item is asserted.
    static CMMTDesc* GenerateDesc(IParse::SItem* item);

    /// Parses `length` bytes of descriptors from the cursor into `array`, which owns them: its release
    /// callback deletes CMMTDesc objects. False: a descriptor without a class, or one that does not parse;
    /// those before it are in the array.
    static bool ParseDescriptors(IParse::SItem* item, int length, CCPtrArray* array);
};

/// Logs the bytes of the descriptor at the cursor, at debug priority: tag, length and what the length names, as
/// far as the item has them and no more than 1,024. The cursor stays where it is.
VYR_API void PrintDescriptorRawData(IParse::SItem* item);
