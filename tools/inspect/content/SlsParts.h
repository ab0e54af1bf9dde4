#pragma once

#include <string>
#include <vector>

#include "content/SlsPackage.h"
#include "model/Items.h"

namespace vyr::inspect {

/// The parts of a package, and what they say of it as a whole.
struct SPackage {
    std::vector<SPackagePart> parts;  ///< the first k_mostParts
    std::uint64_t moreParts = 0;
    bool ended = false;  ///< the last boundary came
    bool hasEnvelope = false;
    COptionalContent signature;                  ///< of S/MIME: its form
    std::shared_ptr<const SSigned> signedBytes;  ///< null: it has no signature that is verified
    std::string signatureFault;                  ///< empty: nothing is wrong with it, or the package is not signed
    bool hasUnread = false;
    std::uint64_t unreadHash = 0;  ///< tells the contents of the parts that are not read apart
};

constexpr std::size_t k_mostParts = 64;

/// Splits a package at its MIME boundaries, those of packages within it too; what is none has no parts. The documents
/// are those that FindSlsDocuments found in the text.
SPackage ReadPackage(SView text, const std::vector<SSlsText>& documents);
/// Items of the envelope that name no part, and parts that no item names, each as a text for people; empty: none, or
/// not all parts are known.
std::string ItemsWithoutPart(const SPackage& package, const std::vector<SEnvelopeItem>& items);
std::string PartsWithoutItem(const SPackage& package, const std::vector<SEnvelopeItem>& items);

}  // namespace vyr::inspect
