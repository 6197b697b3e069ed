#pragma once

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <memory>

struct ssl_ctx_st;
struct ssl_st;

namespace korvo {

/// A fresh key and a certificate for 127.0.0.1 that it signed itself: nobody trusts it but who is told to.
class TestCertificate {
public:
    TestCertificate();

    /// The certificate as a PEM file.
    std::filesystem::path file() const { return folder_ / "certificate.pem"; }

    /// What a server needs to speak TLS with it.
    ssl_ctx_st* context() const { return context_.get(); }

private:
    struct Free {
        void operator()(ssl_ctx_st* context) const;
    };
    TemporaryFolder folder_;
    std::unique_ptr<ssl_ctx_st, Free> context_;
};

} // namespace korvo
