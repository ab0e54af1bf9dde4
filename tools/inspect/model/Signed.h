#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vyr::inspect {

/// A certificate, as rules look at it.
struct SCertificateFacts {
    std::string subject;
    std::string keyId;           ///< base64 of the subject key identifier; empty: it has none
    std::int64_t notBefore = 0;  ///< seconds since 1970
    std::int64_t notAfter = 0;
    std::shared_ptr<void> parsed;  ///< for who verifies
};
using TCertificates = std::vector<std::shared_ptr<const SCertificateFacts>>;

/// A signature, and what it is over.
struct SSigned {
    std::vector<std::vector<unsigned char>> forms;  ///< of the bytes: one of them was signed
    std::vector<unsigned char> signature;           ///< CMS SignedData, DER

    std::size_t Bytes() const
    {
        std::size_t bytes = sizeof *this + signature.size();
        for (const std::vector<unsigned char>& form : forms) {
            bytes += form.size();
        }
        return bytes;
    }
};

enum class ESigned {
    UNKNOWN,   ///< a certificate of a signer is missing, or it cannot be verified here
    VERIFIED,  ///< by every signer, over one of the forms
    WRONG
};

/// Verifies signatures.
class IVerifier {
  public:
    virtual ~IVerifier() = default;
    /// The certificates that come in the signature, the first ones.
    virtual TCertificates Within(const SSigned& item) const = 0;
    /// With those that come in it, and those given.
    virtual ESigned Verify(const SSigned& item, const TCertificates& certificates) const = 0;
    /// Those of the certificates that are of its signers.
    virtual TCertificates Signers(const SSigned& item, const TCertificates& certificates) const = 0;
    /// Whether one of the certificates can be what issued the other, by their names and key identifiers.
    virtual bool Issued(const SCertificateFacts& issuer, const SCertificateFacts& certificate) const = 0;
    /// Whether it has roots to trust.
    virtual bool HasRoots() const = 0;
    /// Whether a chain leads from the certificate to a root, through others, whatever the time.
    virtual bool Trusted(const SCertificateFacts& certificate, const TCertificates& others) const = 0;
};

}  // namespace vyr::inspect
