#pragma once

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/ec.h>
#include <openssl/ocsp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstdint>
#include <ctime>
#include <memory>
#include <string>

/// Makes certificates, and signs with them.
class CSigner {
  public:
    /// Times are seconds since 1970; without an issuer it is a root. `pem`: the private key, in place of a new one.
    CSigner(const std::string& name, std::int64_t notBefore, std::int64_t notAfter, const CSigner* issuer = nullptr,
            const std::string& pem = {})
        : m_key(pem.empty() ? EVP_EC_gen("P-256") : Key(pem), EVP_PKEY_free), m_certificate(X509_new(), X509_free)
    {
        static long serial = 0;
        X509* x509 = m_certificate.get();
        X509_set_version(x509, 2);
        ASN1_INTEGER_set(X509_get_serialNumber(x509), ++serial);
        const auto* text = reinterpret_cast<const unsigned char*>(name.c_str());
        X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_ASC, text, -1, -1, 0);
        X509* by = issuer != nullptr ? issuer->m_certificate.get() : x509;
        X509_set_issuer_name(x509, X509_get_subject_name(by));
        ASN1_TIME_set_string_X509(X509_getm_notBefore(x509), Stamp(notBefore).c_str());
        ASN1_TIME_set_string_X509(X509_getm_notAfter(x509), Stamp(notAfter).c_str());
        X509_set_pubkey(x509, m_key.get());
        X509V3_CTX context;
        X509V3_set_ctx(&context, by, x509, nullptr, nullptr, 0);
        const auto extend = [&](int nid, const char* value) {
            X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
            X509_add_ext(x509, extension, -1);
            X509_EXTENSION_free(extension);
        };
        extend(NID_subject_key_identifier, "hash");
        extend(NID_basic_constraints, issuer == nullptr ? "CA:TRUE" : "CA:FALSE");
        X509_sign(x509, issuer != nullptr ? issuer->m_key.get() : m_key.get(), EVP_sha256());
    }
    /// CMS SignedData over the bytes, DER; `time`: of the signature, in place of now.
    std::string Sign(const std::string& bytes, bool withCertificate, std::int64_t time = 0) const
    {
        const unsigned flags =
            CMS_DETACHED | CMS_BINARY | CMS_PARTIAL | CMS_NOSMIMECAP | (withCertificate ? 0 : CMS_NOCERTS);
        const TBio in(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())), BIO_free_all);
        const TBio out(BIO_new(BIO_s_mem()), BIO_free_all);
        CMS_ContentInfo* cms = CMS_sign(nullptr, nullptr, nullptr, nullptr, flags);
        CMS_SignerInfo* signer = CMS_add1_signer(cms, m_certificate.get(), m_key.get(), EVP_sha256(), flags);
        if (time != 0) {
            ASN1_TIME* signing = ASN1_TIME_new();
            ASN1_TIME_set_string_X509(signing, Stamp(time).c_str());
            CMS_signed_add1_attr_by_NID(signer, NID_pkcs9_signingTime, signing->type, signing, -1);
            ASN1_TIME_free(signing);
        }
        CMS_final(cms, in.get(), nullptr, flags);
        i2d_CMS_bio(out.get(), cms);
        CMS_ContentInfo_free(cms);
        return Text(out.get());
    }
    /// OCSP response for a day that the certificate of another, which this one has issued, is good. DER.
    std::string Ocsp(const CSigner& other, std::int64_t time) const
    {
        const std::unique_ptr<ASN1_TIME, decltype(&ASN1_TIME_free)> from(ASN1_GENERALIZEDTIME_new(), ASN1_TIME_free);
        const std::unique_ptr<ASN1_TIME, decltype(&ASN1_TIME_free)> until(ASN1_GENERALIZEDTIME_new(), ASN1_TIME_free);
        ASN1_GENERALIZEDTIME_set_string(from.get(), Stamp(time).c_str());
        ASN1_GENERALIZEDTIME_set_string(until.get(), Stamp(time + 86400).c_str());
        OCSP_BASICRESP* basic = OCSP_BASICRESP_new();
        OCSP_CERTID* id = OCSP_cert_to_id(EVP_sha1(), other.m_certificate.get(), m_certificate.get());
        OCSP_basic_add1_status(basic, id, V_OCSP_CERTSTATUS_GOOD, 0, nullptr, from.get(), until.get());
        ASN1_GENERALIZEDTIME_set_string(const_cast<ASN1_GENERALIZEDTIME*>(OCSP_resp_get0_produced_at(basic)),
                                        Stamp(time).c_str());
        OCSP_basic_sign(basic, m_certificate.get(), m_key.get(), EVP_sha256(), nullptr, OCSP_NOTIME);
        OCSP_RESPONSE* response = OCSP_response_create(OCSP_RESPONSE_STATUS_SUCCESSFUL, basic);
        const TBio out(BIO_new(BIO_s_mem()), BIO_free_all);
        ASN1_i2d_bio_of(OCSP_RESPONSE, i2d_OCSP_RESPONSE, out.get(), response);
        OCSP_RESPONSE_free(response);
        OCSP_CERTID_free(id);
        OCSP_BASICRESP_free(basic);
        return Text(out.get());
    }
    std::string Der() const
    {
        const TBio out(BIO_new(BIO_s_mem()), BIO_free_all);
        i2d_X509_bio(out.get(), m_certificate.get());
        return Text(out.get());
    }
    std::string Pem() const
    {
        const TBio out(BIO_new(BIO_s_mem()), BIO_free_all);
        PEM_write_bio_X509(out.get(), m_certificate.get());
        return Text(out.get());
    }
    std::string KeyId() const
    {
        const ASN1_OCTET_STRING* id = X509_get0_subject_key_id(m_certificate.get());
        return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(id)),
                static_cast<std::size_t>(ASN1_STRING_length(id))};
    }
    static std::string Base64(const std::string& bytes)
    {
        std::string text(bytes.size() / 3 * 4 + 5, '\0');
        const int size =
            EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                            reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
        return text.substr(0, static_cast<std::size_t>(size));
    }

  private:
    using TBio = std::unique_ptr<BIO, decltype(&BIO_free_all)>;

    /// By texts: on machines of 32 bits time_t may be longer here than in libcrypto.
    static std::string Stamp(std::int64_t seconds)
    {
        const auto time = static_cast<std::time_t>(seconds);
        std::tm fields{};
        char text[16];
        return {text, std::strftime(text, sizeof text, "%Y%m%d%H%M%SZ", gmtime_r(&time, &fields))};
    }
    static EVP_PKEY* Key(const std::string& pem)
    {
        const TBio in(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), BIO_free_all);
        return PEM_read_bio_PrivateKey(in.get(), nullptr, nullptr, nullptr);
    }
    static std::string Text(BIO* bio)
    {
        char* data = nullptr;
        const long size = BIO_get_mem_data(bio, &data);
        return {data, static_cast<std::size_t>(size)};
    }

    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> m_key;
    std::unique_ptr<X509, decltype(&X509_free)> m_certificate;
};
