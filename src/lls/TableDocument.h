#pragma once

#include <climits>

#include "common/ElementHandlers.h"
#include "common/Parse.h"
#include "common/XML.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

namespace vyr {

/// What the state of every XML table parser begins with; deleting the state lets go of it all.
struct STable : SHandlers {
    CXML xml;  ///< document of a table, while it is parsed

    ~STable()
    {
        if (xml.FlagCreate()) {
            xml.Destroy();
        }
    }
};

/// The steps that every XML table's t_Parse shares: lets go of the last table's document, builds one
/// from the item's bytes behind its cursor, moves to the root and calls `process(root)`, whose name in
/// the log is `step`, and lets go of the document. A failed step is logged.
template <class TProcess>
bool ParseTableDocument(CXML& xml, IParse::SItem* item, bool compressed, const char* step, const SHere& here,
                        TProcess process)
{
    if (xml.FlagCreate()) {
        xml.Destroy();
    }
    /// Lets go of the document. What was read of it is copied: the tree, tens of bytes for a byte of text, is not
    /// held until the next table.
    struct SHolder {
        CXML& document;

        ~SHolder()
        {
            if (document.FlagCreate()) {
                document.Destroy();
            }
        }
    };
    const SHolder holder{xml};
    const unsigned int start = item->bitpos / 8;
    const unsigned int length = start <= item->size ? item->size - start : 0;
    // A length that no document has becomes one that the document refuses.
    const int size = length <= INT_MAX ? static_cast<int>(length) : -1;
    if (!xml.Create(reinterpret_cast<const char*>(item->buffer) + (size > 0 ? start : 0), size, compressed)) {
        return CheckFailed(here, "m->xml.Create((const char*)buffer, size, t_DecompressLLS())");
    }
    void* root = nullptr;
    const char* failed = nullptr;
    if (!xml.MoveRoot(&root)) {
        failed = "m->xml.MoveRoot(&root)";
    } else if (!process(root)) {
        KeepFailure(FAILURE_KIND);
        failed = step;
    }
    return !failed || CheckFailed(here, failed);
}

}  // namespace vyr
