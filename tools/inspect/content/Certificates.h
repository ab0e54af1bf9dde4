#pragma once

#include <string>
#include <vector>

#include "base/JsonFwd.h"

namespace vyr::inspect {

/// What a certificate says of itself.
struct SCertificate {
    std::string error;  ///< empty: it could be read
    std::string subject;
    std::string issuer;
    std::string notBefore;  ///< "2027-05-01T00:00:00Z"
    std::string notAfter;
};

/// The form of a signature; that it verifies is not looked at.
struct SSignature {
    std::string error;  ///< empty: it is CMS SignedData (RFC 5652) with a signer
    int signers = 0;
    bool detached = false;
    std::string digest;  ///< of the first signer, such as "SHA512"
};

/// Reads a certificate from the base64 of its DER form, white space allowed.
SCertificate ReadCertificate(const std::string& base64);
/// Reads a signature in DER form, and from the base64 of it.
SSignature ReadSignature(const std::vector<unsigned char>& der);
SSignature ReadSignature(const std::string& base64);
/// "CMS SignedData, detached, 1 signer, SHA512", or what is wrong with it.
std::string SignatureText(const SSignature& signature);
TJson SignatureJson(const SSignature& signature);

}  // namespace vyr::inspect
