// The certificate of the listeners that others reach.
#pragma once

#include <boost/asio/ssl/context.hpp>
#include <memory>
#include <string>

namespace hub::http {

// Throws std::runtime_error with the name of the file that cannot be used.
std::unique_ptr<boost::asio::ssl::context> ReadCertificate(const std::string& certificate,
                                                           const std::string& key);

}  // namespace hub::http
