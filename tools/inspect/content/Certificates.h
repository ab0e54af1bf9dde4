#pragma once

#include <string>
#include <vector>

#include "base/Bytes.h"
#include "base/JsonFwd.h"
#include "model/Signed.h"

namespace vyr::inspect {

/// What a certificate says of itself.
struct SCertificate {
    std::string error;  ///< empty: it could be read
    std::string subject;
    std::string issuer;
    std::string notBefore;  ///< "2027-05-01T00:00:00Z"
    std::string notAfter;
    std::shared_ptr<const SCertificateFacts> facts;  ///< null: it could not be read
    std::vector<unsigned char> der;
};

/// The form of a signature.
struct SSignature {
    std::string error;  ///< empty: it is CMS SignedData (RFC 5652) with a signer
    int signers = 0;
    bool detached = false;
    std::string digest;  ///< of the first signer, such as "SHA512"
    std::vector<unsigned char> der;
};

/// Reads a certificate from the base64 of its DER form, white space allowed.
SCertificate ReadCertificate(const std::string& base64);
/// Reads a signature in DER form, and from the base64 of it.
SSignature ReadSignature(const std::vector<unsigned char>& der);
SSignature ReadSignature(const std::string& base64);
/// "CMS SignedData, detached, 1 signer, SHA512", or what is wrong with it.
std::string SignatureText(const SSignature& signature);
TJson SignatureJson(const SSignature& signature);

/// What the signature is over, ready to be verified, in the forms in which it may have been signed; null: it has a
/// wrong form, or what it signs within it.
std::shared_ptr<const SSigned> Signed(const SSignature& signature, const std::vector<SView>& forms);
/// The same of a text of MIME, which may have been signed as it stands or with CR and LF at the end of each line.
std::shared_ptr<const SSigned> SignedText(const SSignature& signature, SView text);

/// Verifies with the roots of a file, if there are any.
class CVerifier : public IVerifier {
  public:
    CVerifier();
    ~CVerifier() override;
    CVerifier(const CVerifier&) = delete;
    CVerifier& operator=(const CVerifier&) = delete;

    /// Reads certificates in PEM form; what is wrong with the file, empty: nothing.
    std::string ReadRoots(const std::string& file);

    TCertificates Within(const SSigned& item) const override;
    ESigned Verify(const SSigned& item, const TCertificates& certificates) const override;
    TCertificates Signers(const SSigned& item, const TCertificates& certificates) const override;
    bool Issued(const SCertificateFacts& issuer, const SCertificateFacts& certificate) const override;
    bool HasRoots() const override;
    bool Trusted(const SCertificateFacts& certificate, const TCertificates& others) const override;

  private:
    struct SRoots;

    std::unique_ptr<SRoots> m_roots;
};

}  // namespace vyr::inspect
