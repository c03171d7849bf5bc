// TLS, on an address that is not loopback's: of the network that the test has for itself.
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/asio/write.hpp>

#include "Stand.h"

namespace hub::http {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

// A certificate that signs itself, and its key.
void WriteCertificate(const std::string& certificate, const std::string& key) {
  EVP_PKEY* const pair = EVP_EC_gen("P-256");
  X509* const document = X509_new();
  ASN1_INTEGER_set(X509_get_serialNumber(document), 1);
  X509_gmtime_adj(X509_getm_notBefore(document), -60);
  X509_gmtime_adj(X509_getm_notAfter(document), 3600);
  X509_set_pubkey(document, pair);
  X509_NAME* const name = X509_get_subject_name(document);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>("hub"), -1, -1, 0);
  X509_set_issuer_name(document, name);
  X509_sign(document, pair, EVP_sha256());
  FILE* file = std::fopen(certificate.c_str(), "w");
  PEM_write_X509(file, document);
  std::fclose(file);
  file = std::fopen(key.c_str(), "w");
  PEM_write_PrivateKey(file, pair, nullptr, nullptr, 0, nullptr, nullptr);
  std::fclose(file);
  X509_free(document);
  EVP_PKEY_free(pair);
}

class TlsTest : public testing::Test {
 protected:
  TlsTest() {
    WriteCertificate(folder.Path("hub.pem"), folder.Path("hub.key"));
    stand.AddAccount();
    ServerOptions options;
    options.listen = {"0.0.0.0:0", "127.0.0.1:0"};
    options.socket = "";
    options.certificate = folder.Path("hub.pem");
    options.key = folder.Path("hub.key");
    options.look_every = std::chrono::milliseconds(2);
    stand.Run([&] {
      server = std::make_unique<Server>(stand.house, options);
      server->Start();
    });
  }

  ~TlsTest() override {
    stand.Run([&] { server->Stop(); });
    stand.Stop();
  }

  int Port(size_t listener) const {
    const std::string address = server->Addresses().at(listener);
    return std::stoi(address.substr(address.rfind(':') + 1));
  }

  // The head of the answer.
  std::string Ask(const std::string& bytes, int newest_version) {
    asio::io_context context;
    asio::ssl::context tls(asio::ssl::context::tls_client);
    SSL_CTX_set_max_proto_version(tls.native_handle(), newest_version);
    asio::ssl::stream<tcp::socket> stream(context, tls);
    const auto port = static_cast<uint16_t>(Port(0));
    stream.next_layer().connect({asio::ip::make_address("127.0.0.1"), port});
    stream.handshake(asio::ssl::stream_base::client);
    asio::write(stream, asio::buffer(bytes));
    std::string head;
    asio::read_until(stream, asio::dynamic_buffer(head), "\r\n\r\n");
    return head;
  }

  TempDir folder;
  Stand stand;
  std::unique_ptr<Server> server;
};

TEST_F(TlsTest, OthersAreServedWithTlsAndLoopbackInPlain) {
  const std::string answer =
      Ask("GET /api/session HTTP/1.1\r\nHost: 127.0.0.1\r\nOrigin: https://127.0.0.1\r\n"
          "Connection: close\r\n\r\n",
          TLS1_3_VERSION);
  EXPECT_TRUE(answer.starts_with("HTTP/1.1 200 OK\r\n")) << answer;
  EXPECT_EQ(WebClient::ToPort(Port(1)).Get("/healthz").status, 200);
}

TEST_F(TlsTest, TheCookieIsForTlsAlone) {
  const std::string answer =
      Ask("POST /api/session HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n"
          "Content-Length: 2\r\nConnection: close\r\n\r\n{}",
          TLS1_3_VERSION);
  EXPECT_NE(answer.find("; Secure\r\n"), std::string::npos) << answer;
}

TEST_F(TlsTest, AWebSocketSpeaksTlsToo) {
  const std::string answer = Ask(
      "GET /api/live HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
      "Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
      "Authorization: Bearer " +
          stand.AddToken("scripts", access::Role::kView) + "\r\n\r\n",
      TLS1_2_VERSION);
  EXPECT_TRUE(answer.starts_with("HTTP/1.1 101 "));
}

TEST_F(TlsTest, OldVersionsAreNotSpoken) {
  EXPECT_THROW(Ask("", TLS1_1_VERSION), boost::system::system_error);
}

TEST_F(TlsTest, WhoNeverFinishesTheHandshakeIsClosed) {
  WebClient client = WebClient::ToPort(Port(0));
  client.Send("\x16\x03");
  EXPECT_TRUE(WaitUntil([&] {
    stand.clock.Pass(std::chrono::seconds(1));
    return client.IsEnded();
  }));
}

TEST_F(TlsTest, WhoSpeaksPlainIsClosed) {
  WebClient client = WebClient::ToPort(Port(0));
  client.Send("GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
  EXPECT_TRUE(client.Ends());
}

}  // namespace
}  // namespace hub::http
