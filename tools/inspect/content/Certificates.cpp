#include "content/Certificates.h"

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>

#include "base/Json.h"
#include "base/Text.h"

namespace vyr::inspect {

namespace {

template <auto Free>
struct SFree {
    template <class T>
    void operator()(T* object) const
    {
        Free(object);
    }
};
using TX509 = std::unique_ptr<X509, SFree<X509_free>>;
using TCms = std::unique_ptr<CMS_ContentInfo, SFree<CMS_ContentInfo_free>>;
using TBio = std::unique_ptr<BIO, SFree<BIO_free>>;
using TEncode = std::unique_ptr<EVP_ENCODE_CTX, SFree<EVP_ENCODE_CTX_free>>;

std::optional<std::vector<unsigned char>> Decode(const std::string& base64)
{
    const TEncode context(EVP_ENCODE_CTX_new());
    std::vector<unsigned char> bytes(base64.size() + 3);
    int length = 0;
    int tail = 0;
    EVP_DecodeInit(context.get());
    if (base64.size() > 1u << 20 ||
        EVP_DecodeUpdate(context.get(), bytes.data(), &length, reinterpret_cast<const unsigned char*>(base64.data()),
                         static_cast<int>(base64.size())) < 0 ||
        EVP_DecodeFinal(context.get(), bytes.data() + length, &tail) < 0) {
        ERR_clear_error();
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(length + tail));
    return bytes;
}

std::string NameText(const X509_NAME* name)
{
    const TBio bio(BIO_new(BIO_s_mem()));
    X509_NAME_print_ex(bio.get(), name, 0, XN_FLAG_RFC2253 & ~static_cast<unsigned long>(ASN1_STRFLGS_ESC_MSB));
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &data);
    return std::string(data, static_cast<std::size_t>(size));
}

std::string TimeText(const ASN1_TIME* time)
{
    std::tm calendar{};
    if (ASN1_TIME_to_tm(time, &calendar) != 1) {
        return "?";
    }
    char text[80];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", calendar.tm_year + 1900, calendar.tm_mon + 1,
                  calendar.tm_mday, calendar.tm_hour, calendar.tm_min, calendar.tm_sec);
    return text;
}

}  // namespace

SCertificate ReadCertificate(const std::string& base64)
{
    SCertificate certificate;
    const auto der = Decode(base64);
    if (!der || der->empty()) {
        certificate.error = "not base64";
        return certificate;
    }
    const unsigned char* p = der->data();
    const TX509 x509(d2i_X509(nullptr, &p, static_cast<long>(der->size())));
    if (!x509) {
        ERR_clear_error();
        certificate.error = "not an X.509 certificate";
        return certificate;
    }
    certificate.subject = NameText(X509_get_subject_name(x509.get()));
    certificate.issuer = NameText(X509_get_issuer_name(x509.get()));
    certificate.notBefore = TimeText(X509_get0_notBefore(x509.get()));
    certificate.notAfter = TimeText(X509_get0_notAfter(x509.get()));
    return certificate;
}

SSignature ReadSignature(const std::vector<unsigned char>& der)
{
    SSignature signature;
    const unsigned char* p = der.data();
    const TCms cms(der.empty() ? nullptr : d2i_CMS_ContentInfo(nullptr, &p, static_cast<long>(der.size())));
    if (!cms || OBJ_obj2nid(CMS_get0_type(cms.get())) != NID_pkcs7_signed) {
        ERR_clear_error();
        signature.error = der.empty() ? "empty" : "not CMS SignedData";
        return signature;
    }
    const STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(cms.get());
    signature.signers = signers ? sk_CMS_SignerInfo_num(signers) : 0;
    ASN1_OCTET_STRING** content = CMS_get0_content(cms.get());
    signature.detached = !content || !*content;
    if (signature.signers <= 0) {
        signature.error = "CMS SignedData without a signer";
        return signature;
    }
    X509_ALGOR* digest = nullptr;
    CMS_SignerInfo_get0_algs(sk_CMS_SignerInfo_value(signers, 0), nullptr, nullptr, &digest, nullptr);
    const int nid = digest ? OBJ_obj2nid(digest->algorithm) : NID_undef;
    signature.digest = nid != NID_undef ? OBJ_nid2sn(nid) : "unknown digest";
    return signature;
}

SSignature ReadSignature(const std::string& base64)
{
    const auto der = Decode(base64);
    if (!der) {
        SSignature signature;
        signature.error = "not base64";
        return signature;
    }
    return ReadSignature(*der);
}

std::string SignatureText(const SSignature& signature)
{
    if (!signature.error.empty()) {
        return signature.error;
    }
    return std::string("CMS SignedData, ") + (signature.detached ? "detached, " : "") +
           Counted(static_cast<std::uint64_t>(signature.signers), "signer") + ", " + signature.digest;
}

TJson SignatureJson(const SSignature& signature)
{
    if (!signature.error.empty()) {
        return {{"wellFormed", false}, {"error", signature.error}};
    }
    return {{"wellFormed", true},
            {"signers", signature.signers},
            {"detached", signature.detached},
            {"digest", signature.digest}};
}

}  // namespace vyr::inspect
