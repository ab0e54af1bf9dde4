#include "content/Certificates.h"

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include <algorithm>
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
using TStore = std::unique_ptr<X509_STORE, SFree<X509_STORE_free>>;
using TStoreContext = std::unique_ptr<X509_STORE_CTX, SFree<X509_STORE_CTX_free>>;
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

constexpr std::size_t k_mostCertificates = 64;
constexpr std::size_t k_longestSignature = 262144;
constexpr int k_mostSigners = 8;

struct SFreeStack {
    void operator()(STACK_OF(X509) * stack) const { sk_X509_pop_free(stack, X509_free); }
};
using TStack = std::unique_ptr<STACK_OF(X509), SFreeStack>;

/// Without the certificates, which others own.
struct SFreeShallow {
    void operator()(STACK_OF(X509) * stack) const { sk_X509_free(stack); }
};
using TShallowStack = std::unique_ptr<STACK_OF(X509), SFreeShallow>;

X509* Parsed(const SCertificateFacts& certificate)
{
    return static_cast<X509*>(certificate.parsed.get());
}

TShallowStack Stack(const TCertificates& certificates)
{
    TShallowStack stack(sk_X509_new_null());
    for (const auto& certificate : certificates) {
        sk_X509_push(stack.get(), Parsed(*certificate));
    }
    return stack;
}

TCms ReadCms(const std::vector<unsigned char>& der)
{
    const unsigned char* p = der.data();
    TCms cms(der.empty() ? nullptr : d2i_CMS_ContentInfo(nullptr, &p, static_cast<long>(der.size())));
    if (!cms || OBJ_obj2nid(CMS_get0_type(cms.get())) != NID_pkcs7_signed) {
        ERR_clear_error();
        return nullptr;
    }
    return cms;
}

/// Seconds since 1970; of what is no time, none.
std::optional<std::int64_t> EpochOf(const ASN1_TIME* time)
{
    // By a text: on machines of 32 bits time_t may be longer here than in libcrypto.
    const std::unique_ptr<ASN1_TIME, SFree<ASN1_STRING_free>> epoch(ASN1_TIME_new());
    ASN1_TIME_set_string(epoch.get(), "19700101000000Z");
    int days = 0;
    int seconds = 0;
    if (ASN1_TIME_diff(&days, &seconds, epoch.get(), time) != 1) {
        ERR_clear_error();
        return std::nullopt;
    }
    return std::int64_t{86400} * days + seconds;
}

/// Takes the certificate over; null: one of its times is none.
std::shared_ptr<const SCertificateFacts> FactsOf(TX509 x509)
{
    auto facts = std::make_shared<SCertificateFacts>();
    const auto notBefore = EpochOf(X509_get0_notBefore(x509.get()));
    const auto notAfter = EpochOf(X509_get0_notAfter(x509.get()));
    if (!notBefore || !notAfter) {
        return nullptr;
    }
    facts->subject = NameText(X509_get_subject_name(x509.get()));
    facts->notBefore = *notBefore;
    facts->notAfter = *notAfter;
    const ASN1_OCTET_STRING* key = X509_get0_subject_key_id(x509.get());
    constexpr int k_longestKeyId = 64;
    if (key != nullptr && ASN1_STRING_length(key) <= k_longestKeyId) {
        unsigned char text[2 * k_longestKeyId];
        const int size = EVP_EncodeBlock(text, ASN1_STRING_get0_data(key), ASN1_STRING_length(key));
        facts->keyId.assign(text, text + size);
    }
    ERR_clear_error();
    facts->parsed = std::shared_ptr<void>(x509.release(), [](void* own) { X509_free(static_cast<X509*>(own)); });
    return facts;
}

/// Whether it takes no more time to verify with the key than with any that is in use.
bool IsUsual(const X509* certificate)
{
    constexpr int k_mostBits = 8192;
    EVP_PKEY* key = X509_get0_pubkey(certificate);
    char curve[64];
    std::size_t length = 0;
    const bool usual =
        key != nullptr && EVP_PKEY_get_bits(key) <= k_mostBits &&
        (EVP_PKEY_get_base_id(key) != EVP_PKEY_EC || EVP_PKEY_get_group_name(key, curve, sizeof curve, &length) == 1);
    ERR_clear_error();
    return usual;
}

/// The certificate of the signer; null: it is none of them.
const std::shared_ptr<const SCertificateFacts>* SignerOf(CMS_SignerInfo* signer, const TCertificates& certificates)
{
    const auto found = std::find_if(certificates.begin(), certificates.end(), [signer](const auto& certificate) {
        return CMS_SignerInfo_cert_cmp(signer, Parsed(*certificate)) == 0;
    });
    return found != certificates.end() ? &*found : nullptr;
}

/// Whether what OpenSSL last failed at is that the signature is of other bytes, or by another key.
bool IsWrong()
{
    bool wrong = false;
    for (unsigned long error = 0; (error = ERR_get_error()) != 0;) {
        wrong = wrong || (ERR_GET_LIB(error) == ERR_LIB_CMS && ERR_GET_REASON(error) == CMS_R_VERIFICATION_FAILURE);
    }
    return wrong;
}

ESigned VerifyForm(const SSigned& item, const std::vector<unsigned char>& form, const TCertificates& signers)
{
    const TCms cms = ReadCms(item.signature);
    const TBio content(BIO_new_mem_buf(form.data(), static_cast<int>(form.size())));
    const TShallowStack stack = Stack(signers);
    const TBio sink(BIO_new(BIO_s_null()));
    ERR_clear_error();
    const unsigned flags = CMS_BINARY | CMS_NO_SIGNER_CERT_VERIFY | CMS_NOINTERN;
    if (CMS_verify(cms.get(), stack.get(), nullptr, content.get(), sink.get(), flags) == 1) {
        return ESigned::VERIFIED;
    }
    return IsWrong() ? ESigned::WRONG : ESigned::UNKNOWN;
}

}  // namespace

SCertificate ReadCertificate(const std::string& base64)
{
    SCertificate certificate;
    auto der = Decode(base64);
    if (!der || der->empty()) {
        certificate.error = "not base64";
        return certificate;
    }
    const unsigned char* p = der->data();
    TX509 x509(d2i_X509(nullptr, &p, static_cast<long>(der->size())));
    if (!x509) {
        ERR_clear_error();
        certificate.error = "not an X.509 certificate";
        return certificate;
    }
    certificate.subject = NameText(X509_get_subject_name(x509.get()));
    certificate.issuer = NameText(X509_get_issuer_name(x509.get()));
    certificate.notBefore = TimeText(X509_get0_notBefore(x509.get()));
    certificate.notAfter = TimeText(X509_get0_notAfter(x509.get()));
    certificate.facts = FactsOf(std::move(x509));
    certificate.der = std::move(*der);
    return certificate;
}

SSignature ReadSignature(const std::vector<unsigned char>& der)
{
    SSignature signature;
    const TCms cms = ReadCms(der);
    if (!cms) {
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
    signature.der = der;
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

std::shared_ptr<const SSigned> Signed(const SSignature& signature, const std::vector<SView>& forms)
{
    if (!signature.error.empty() || !signature.detached || signature.signers > k_mostSigners ||
        signature.der.size() > k_longestSignature) {
        return nullptr;
    }
    auto item = std::make_shared<SSigned>();
    item->signature = signature.der;
    for (const SView& form : forms) {
        item->forms.emplace_back(form.data, form.data + form.size);
    }
    return item;
}

std::shared_ptr<const SSigned> SignedText(const SSignature& signature, SView text)
{
    std::vector<unsigned char> lines;
    for (std::size_t i = 0; i < text.size; ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) {
            lines.push_back('\r');
        }
        lines.push_back(text[i]);
    }
    return Signed(signature, {text, {lines.data(), lines.size()}});
}

struct CVerifier::SRoots {
    TStore store{X509_STORE_new()};
};

CVerifier::CVerifier() = default;

CVerifier::~CVerifier() = default;

std::string CVerifier::ReadRoots(const std::string& file)
{
    constexpr int k_mostRoots = 1024;
    const TBio bio(BIO_new_file(file.c_str(), "r"));
    ERR_clear_error();
    if (!bio) {
        return "cannot be read";
    }
    m_roots = std::make_unique<SRoots>();
    int count = 0;
    const auto noPassword = [](char*, int, int, void*) { return -1; };
    for (; count < k_mostRoots; ++count) {
        const TX509 root(PEM_read_bio_X509(bio.get(), nullptr, noPassword, nullptr));
        if (!root) {
            break;
        }
        X509_STORE_add_cert(m_roots->store.get(), root.get());
    }
    const bool ended = ERR_GET_REASON(ERR_peek_last_error()) == PEM_R_NO_START_LINE;
    ERR_clear_error();
    return count == 0 || !ended ? "not certificates in PEM form" : "";
}

TCertificates CVerifier::Within(const SSigned& item) const
{
    TCertificates certificates;
    const TStack within(CMS_get1_certs(ReadCms(item.signature).get()));
    for (int i = 0; i < sk_X509_num(within.get()) && certificates.size() < k_mostCertificates; ++i) {
        X509* x509 = sk_X509_value(within.get(), i);
        X509_up_ref(x509);
        if (auto facts = FactsOf(TX509(x509))) {
            certificates.push_back(std::move(facts));
        }
    }
    ERR_clear_error();
    return certificates;
}

ESigned CVerifier::Verify(const SSigned& item, const TCertificates& certificates) const
{
    const TCms cms = ReadCms(item.signature);
    const STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(cms.get());
    const TCertificates own = Within(item);
    TCertificates theirs;
    for (int i = 0; i < sk_CMS_SignerInfo_num(signers); ++i) {
        CMS_SignerInfo* signer = sk_CMS_SignerInfo_value(signers, i);
        const auto* within = SignerOf(signer, own);
        const auto* found = within != nullptr ? within : SignerOf(signer, certificates);
        if (found == nullptr || !IsUsual(Parsed(**found))) {
            return ESigned::UNKNOWN;
        }
        theirs.push_back(*found);
    }
    ESigned verdict = ESigned::WRONG;
    for (const std::vector<unsigned char>& form : item.forms) {
        const ESigned one = VerifyForm(item, form, theirs);
        if (one == ESigned::VERIFIED) {
            return one;
        }
        verdict = one == ESigned::UNKNOWN ? one : verdict;
    }
    return verdict;
}

TCertificates CVerifier::Signers(const SSigned& item, const TCertificates& certificates) const
{
    const TCms cms = ReadCms(item.signature);
    const STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(cms.get());
    TCertificates found;
    for (int i = 0; i < sk_CMS_SignerInfo_num(signers); ++i) {
        if (const auto* certificate = SignerOf(sk_CMS_SignerInfo_value(signers, i), certificates)) {
            found.push_back(*certificate);
        }
    }
    return found;
}

bool CVerifier::Issued(const SCertificateFacts& issuer, const SCertificateFacts& certificate) const
{
    const bool issued = X509_check_issued(Parsed(issuer), Parsed(certificate)) == X509_V_OK;
    ERR_clear_error();
    return issued;
}

bool CVerifier::HasRoots() const
{
    return m_roots != nullptr;
}

bool CVerifier::Trusted(const SCertificateFacts& certificate, const TCertificates& others) const
{
    constexpr int k_deepest = 8;
    const TStoreContext context(X509_STORE_CTX_new());
    TCertificates usual;
    for (const auto& other : others) {
        if (IsUsual(Parsed(*other))) {
            usual.push_back(other);
        }
    }
    const TShallowStack stack = Stack(usual);
    if (!m_roots || X509_STORE_CTX_init(context.get(), m_roots->store.get(), Parsed(certificate), stack.get()) != 1) {
        return false;
    }
    X509_VERIFY_PARAM* param = X509_STORE_CTX_get0_param(context.get());
    X509_VERIFY_PARAM_set_flags(param, X509_V_FLAG_NO_CHECK_TIME | X509_V_FLAG_PARTIAL_CHAIN);
    X509_VERIFY_PARAM_set_depth(param, k_deepest);
    const bool trusted = X509_verify_cert(context.get()) == 1;
    ERR_clear_error();
    return trusted;
}

}  // namespace vyr::inspect
