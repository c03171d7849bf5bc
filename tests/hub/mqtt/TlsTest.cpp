// A broker that is reached over TLS, and asks for the hub's certificate.
#include "BrokerSite.h"

namespace {

constexpr char kOpenssl[] = "/usr/bin/openssl";

constexpr char kConfiguration[] =
    "[req]\ndistinguished_name = name\n[name]\n[ca]\nbasicConstraints = CA:true\n"
    "[server]\nsubjectAltName = IP:127.0.0.1\n[client]\nbasicConstraints = CA:false\n";

}  // namespace

class BrokerTls : public BrokerSite {
 protected:
  void SetUp() override {
    BrokerSite::SetUp();
    files_.Write("openssl.cnf", kConfiguration);
    Openssl({"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
             "-subj", "/CN=house", "-extensions", "ca", "-keyout", File("ca.key"), "-out",
             File("ca.pem")});
    Sign("server");
    Sign("client");
  }

  std::string File(const std::string& name) const { return files_.Path(name); }

  void Openssl(std::vector<std::string> words) {
    if (words.front() == "req") words.insert(words.end(), {"-config", File("openssl.cnf")});
    virtualbus::Program program(files_, kOpenssl, words);
    ASSERT_EQ(program.WaitForExit(), 0) << program.Errors();
  }

  // A key and a certificate of the house.
  void Sign(const std::string& who) {
    Openssl({"req", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-subj",
             "/CN=" + who, "-keyout", File(who + ".key"), "-out", File(who + ".csr")});
    Openssl({"x509", "-req", "-in", File(who + ".csr"), "-CA", File("ca.pem"), "-CAkey",
             File("ca.key"), "-CAcreateserial", "-extfile", File("openssl.cnf"), "-extensions", who,
             "-out", File(who + ".pem")});
  }

  std::string BrokerLines() const {
    return "allow_anonymous true\nrequire_certificate true\ncafile " + File("ca.pem") +
           "\ncertfile " + File("server.pem") + "\nkeyfile " + File("server.key") + "\n";
  }
  std::string Certificate() const {
    return "certificate = \"" + File("client.pem") + "\"\nkey = \"" + File("client.key") + "\"\n";
  }

 private:
  TempDir files_;
};

TEST_F(BrokerTls, WhoeverShowsItsCertificateIsIn) {
  StartBroker(BrokerLines());
  StartAllWith("ca = \"" + File("ca.pem") + "\"\n" + Certificate());
  ExpectBroker(R"("state":"up")");
}

TEST_F(BrokerTls, WhoeverShowsNoneIsRefused) {
  StartBroker(BrokerLines());
  StartAllWith("ca = \"" + File("ca.pem") + "\"\n");
  ExpectBroker(R"("state":"refused","host":"127.0.0.1",)"
               R"("detail":"it ends TLS; it may want a certificate")");
}

TEST_F(BrokerTls, ABrokerThatSomebodyElseHasSignedIsNotTrusted) {
  StartBroker(BrokerLines());
  StartAllWith("ca = \"" + File("client.pem") + "\"\n" + Certificate());
  ExpectBroker(R"("state":"refused")");
  EXPECT_NE(BrokerState().find("certificate verify failed"), std::string::npos) << BrokerState();
}

TEST_F(BrokerTls, AFileThatIsNotThereIsNamed) {
  StartBroker(BrokerLines());
  StartAllWith("ca = \"/etc/none.pem\"\n");
  ExpectBroker(R"("state":"refused","host":"127.0.0.1",)"
               R"("detail":"/etc/none.pem: No such file or directory")");
}
