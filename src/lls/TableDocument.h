#pragma once

#include "common/ElementHandlers.h"
#include "common/Parse.h"
#include "common/State.h"
#include "common/XmlDocument.h"
#include "platform/Log.h"

namespace vyr {

/// The steps that every XML table's t_Parse shares: builds the document from the item's bytes behind its cursor,
/// moves to the root, calls `process(document, root)`, whose name in the log is `step`, and lets go of the document:
/// what was read of it is copied, and the tree takes tens of bytes for a byte of text. A failed step is logged.
template <class TProcess>
bool ParseTableDocument(IParse::SItem* item, bool compressed, const char* step, TProcess process, VYR_CALLER)
{
    CXML xml;
    const SDocumentEnd end{xml};
    const unsigned int start = item->bitpos / 8;
    const int size = DocumentSize(start <= item->size ? item->size - start : 0);
    const bool created =
        xml.Create(reinterpret_cast<const char*>(item->buffer) + (size > 0 ? start : 0), size, compressed);
    static constexpr char k_create[] = "m->xml.Create((const char*)buffer, size, t_DecompressLLS())";
    return ProcessRoot(xml, created, {k_create, "m->xml.MoveRoot(&root)", step}, process, here);
}

}  // namespace vyr
