#include "tests/support/TestCertificate.h"

#include <cstdio>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace korvo {

namespace {

void check(bool worked)
{
    if (!worked)
        throw std::runtime_error("no test certificate");
}

void addExtension(X509* certificate, int kind, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value);
    check(extension && X509_add_ext(certificate, extension, -1) == 1);
    X509_EXTENSION_free(extension);
}

void selfSign(X509* certificate, EVP_PKEY* key)
{
    constexpr long hour = 3600;
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -hour);
    X509_gmtime_adj(X509_getm_notAfter(certificate), hour);
    X509_set_pubkey(certificate, key);
    X509_NAME* const name = X509_get_subject_name(certificate);
    const auto* const text = reinterpret_cast<const unsigned char*>("127.0.0.1");
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, text, -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    addExtension(certificate, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate, NID_subject_alt_name, "IP:127.0.0.1");
    check(X509_sign(certificate, key, EVP_sha256()) > 0);
}

} // namespace

void TestCertificate::Free::operator()(ssl_ctx_st* context) const
{
    SSL_CTX_free(context);
}

TestCertificate::TestCertificate() : context_(SSL_CTX_new(TLS_server_method()))
{
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
    check(context_ && key && certificate);
    selfSign(certificate.get(), key.get());
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pem(std::fopen(file().c_str(), "wb"), std::fclose);
    check(pem && PEM_write_X509(pem.get(), certificate.get()) == 1);
    check(SSL_CTX_use_certificate(context_.get(), certificate.get()) == 1);
    check(SSL_CTX_use_PrivateKey(context_.get(), key.get()) == 1);
}

} // namespace korvo
