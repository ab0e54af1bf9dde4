#pragma once

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstdint>
#include <memory>
#include <string>

/// Makes certificates, and signs with them.
class CSigner {
  public:
    /// Times are seconds since 1970; without an issuer it is a root.
    CSigner(const std::string& name, std::int64_t notBefore, std::int64_t notAfter, const CSigner* issuer = nullptr)
        : m_key(EVP_EC_gen("P-256"), EVP_PKEY_free), m_certificate(X509_new(), X509_free)
    {
        static long serial = 0;
        X509* x509 = m_certificate.get();
        X509_set_version(x509, 2);
        ASN1_INTEGER_set(X509_get_serialNumber(x509), ++serial);
        const auto* text = reinterpret_cast<const unsigned char*>(name.c_str());
        X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_ASC, text, -1, -1, 0);
        X509* by = issuer != nullptr ? issuer->m_certificate.get() : x509;
        X509_set_issuer_name(x509, X509_get_subject_name(by));
        ASN1_TIME_set(X509_getm_notBefore(x509), notBefore);
        ASN1_TIME_set(X509_getm_notAfter(x509), notAfter);
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
    /// CMS SignedData over the bytes, DER.
    std::string Sign(const std::string& bytes, bool withCertificate) const
    {
        const unsigned flags = CMS_DETACHED | CMS_BINARY | (withCertificate ? 0 : CMS_NOCERTS);
        const TBio in(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())), BIO_free_all);
        const TBio out(BIO_new(BIO_s_mem()), BIO_free_all);
        CMS_ContentInfo* cms = CMS_sign(m_certificate.get(), m_key.get(), nullptr, in.get(), flags);
        i2d_CMS_bio(out.get(), cms);
        CMS_ContentInfo_free(cms);
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

    static std::string Text(BIO* bio)
    {
        char* data = nullptr;
        const long size = BIO_get_mem_data(bio, &data);
        return {data, static_cast<std::size_t>(size)};
    }

    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> m_key;
    std::unique_ptr<X509, decltype(&X509_free)> m_certificate;
};
