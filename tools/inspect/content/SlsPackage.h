#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "model/Items.h"

namespace vyr::inspect {

/// A document as it stands in the text of a package.
struct SSlsText {
    ESlsDocument kind = ESlsDocument::USBD;
    SView bytes;          ///< from its start tag through its end tag, or to the end of the text
    bool ended = false;   ///< whether there is an end tag
    bool parsed = false;  ///< whether the library parses it: not one that is too long
    std::uint64_t hash = 0;
};

/// Finds the documents in the text where the library finds them: the first of each kind, in the order
/// in which it parses them.
std::vector<SSlsText> FindSlsDocuments(SView text);
/// The metadataEnvelope element, whatever its prefix; no bytes: there is none.
SView FindEnvelope(SView text);
/// Media type of the package, from its first header field Content-Type; empty: none.
std::string PackageType(SView text);
/// Items of the metadata envelope; empty when there is none, or with `reason` when it does not parse.
std::vector<SEnvelopeItem> ReadEnvelope(SView text, std::string& reason);

}  // namespace vyr::inspect
