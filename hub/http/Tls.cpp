#include "http/Tls.h"

#include <openssl/ssl.h>

#include <stdexcept>

namespace hub::http {

namespace ssl = boost::asio::ssl;
using boost::system::error_code;

std::unique_ptr<ssl::context> ReadCertificate(const std::string& certificate,
                                              const std::string& key) {
  auto context = std::make_unique<ssl::context>(ssl::context::tls_server);
  const auto check = [](const error_code& error, const std::string& file) {
    if (error) throw std::runtime_error("cannot use " + file + ": " + error.message());
  };
  error_code error;
  context->set_options(ssl::context::default_workarounds | ssl::context::no_sslv2 |
                       ssl::context::no_sslv3 | ssl::context::no_tlsv1 | ssl::context::no_tlsv1_1);
  context->use_certificate_chain_file(certificate, error);
  check(error, certificate);
  context->use_private_key_file(key, ssl::context::pem, error);
  check(error, key);
  // An idle connection keeps no buffers.
  SSL_CTX_set_mode(context->native_handle(), SSL_MODE_RELEASE_BUFFERS);
  return context;
}

}  // namespace hub::http
