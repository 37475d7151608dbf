// The connection, with TLS, as libcurl makes it; what is said over it is our own. For STARTTLS libcurl reads
// the greeting, asks for the capabilities and turns encryption on; in front of that it sends nothing secret.
#include <curl/curl.h>
#include <sys/socket.h>

#include <cstdlib>
#include <cstring>

#include "stores/imap/transport.h"

namespace tidyfold::imap {

namespace {

constexpr long connect_seconds = 30;

int Give_Up(void* interruption, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  return static_cast<const Interruption*>(interruption)->Is_Set() ? 1 : 0;
}

class Curl_Transport : public Transport {
 public:
  Curl_Transport(const Server_Address& address, const Interruption& interruption)
      : starts_tls_(address.security == Security::Start_Tls) {
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    curl_ = ready == CURLE_OK ? curl_easy_init() : nullptr;
    if (curl_ == nullptr) throw Connection_Error("The network library cannot be started.");
    const bool tls = address.security == Security::Tls;
    const bool literal = address.host.find(':') != std::string::npos;
    const std::string url = (tls           ? "https://"
                             : starts_tls_ ? "imap://"
                                           : "http://") +
                            (literal ? "[" + address.host + "]" : address.host) + ":" +
                            std::to_string(address.port) + "/";
    char words[CURL_ERROR_SIZE] = "";
    Set(CURLOPT_URL, url.c_str());
    Set(CURLOPT_CONNECT_ONLY, 1L);
    Set(CURLOPT_ERRORBUFFER, words);
    Set(CURLOPT_NOSIGNAL, 1L);
    Set(CURLOPT_PROXY, "");
    Set(CURLOPT_SSL_ENABLE_ALPN, 0L);
    Set(CURLOPT_SSL_VERIFYPEER, 1L);
    Set(CURLOPT_SSL_VERIFYHOST, 2L);
    Set(CURLOPT_USE_SSL, starts_tls_ ? long{CURLUSESSL_ALL} : long{CURLUSESSL_NONE});
    Set(CURLOPT_CONNECTTIMEOUT, connect_seconds);
    Set(CURLOPT_SERVER_RESPONSE_TIMEOUT, connect_seconds);
    Set(CURLOPT_TCP_KEEPALIVE, 1L);
    Set(CURLOPT_NOPROGRESS, 0L);
    Set(CURLOPT_XFERINFOFUNCTION, Give_Up);
    Set(CURLOPT_XFERINFODATA, const_cast<void*>(static_cast<const void*>(&interruption)));
    if (const char* const trusted = std::getenv("SSL_CERT_FILE")) Set(CURLOPT_CAINFO, trusted);
    const CURLcode code = curl_easy_perform(curl_);
    Set(CURLOPT_ERRORBUFFER, static_cast<char*>(nullptr));
    if (code != CURLE_OK) {
      Clean_Up();
      if (interruption.Is_Set()) throw Interrupted();
      throw Connection_Error(Why(address, code, words));
    }
    curl_easy_getinfo(curl_, CURLINFO_ACTIVESOCKET, &socket_);
    if (socket_ == CURL_SOCKET_BAD) {
      Clean_Up();
      throw Connection_Error("The mail server closed the connection at once.");
    }
  }
  Curl_Transport(const Curl_Transport&) = delete;
  Curl_Transport& operator=(const Curl_Transport&) = delete;
  ~Curl_Transport() override {
    // Otherwise libcurl says goodbye in IMAP's words and waits for the answer.
    if (socket_ != CURL_SOCKET_BAD) shutdown(socket_, SHUT_RDWR);
    Clean_Up();
  }

  std::optional<std::size_t> Read(char* buffer, std::size_t size) override {
    std::size_t got = 0;
    const CURLcode code = curl_easy_recv(curl_, buffer, size, &got);
    if (code == CURLE_AGAIN) return std::nullopt;
    if (code != CURLE_OK) throw Connection_Error("The connection to the mail server was lost.");
    return got;
  }
  std::size_t Write(std::string_view bytes) override {
    std::size_t sent = 0;
    const CURLcode code = curl_easy_send(curl_, bytes.data(), bytes.size(), &sent);
    if (code == CURLE_AGAIN) return 0;
    if (code != CURLE_OK) throw Connection_Error("The connection to the mail server was lost.");
    return sent;
  }
  int Read_Descriptor() const override { return socket_; }
  bool Is_Greeted() const override { return starts_tls_; }

 private:
  template <class Value>
  void Set(CURLoption option, Value value) {
    curl_easy_setopt(curl_, option, value);
  }
  void Clean_Up() { curl_easy_cleanup(curl_); }

  static std::string Why(const Server_Address& address, CURLcode code, const char* words) {
    const std::string server = "The mail server \"" + address.host + "\"";
    const std::string detail = std::string(" (") + (*words != '\0' ? words : curl_easy_strerror(code)) + ")";
    switch (code) {
      case CURLE_COULDNT_RESOLVE_HOST:
        return server + " is not known. Check its name" + detail + ".";
      case CURLE_COULDNT_CONNECT:
        return server + " cannot be reached at port " + std::to_string(address.port) +
               ". Check its name, the port and the network" + detail + ".";
      case CURLE_OPERATION_TIMEDOUT:
        return server + " does not answer. Try again later" + detail + ".";
      case CURLE_PEER_FAILED_VERIFICATION:
        return server + " could not prove that it is the right one, so nothing was sent to it. Its " +
               "certificate has to be renewed or trusted" + detail + ".";
      case CURLE_USE_SSL_FAILED:
        return server + " offers no encryption at port " + std::to_string(address.port) +
               ", so nothing was sent to it. Try imaps:// instead" + detail + ".";
      case CURLE_SSL_CONNECT_ERROR:
        return server + " does not speak TLS at port " + std::to_string(address.port) +
               ". Check the port, or try imap:// for STARTTLS" + detail + ".";
      default:
        return server + " cannot be used" + detail + ".";
    }
  }

  CURL* curl_ = nullptr;
  curl_socket_t socket_ = CURL_SOCKET_BAD;
  bool starts_tls_;
};

}  // namespace

std::unique_ptr<Transport> Connect(const Server_Address& address, const Interruption& interruption) {
  return std::make_unique<Curl_Transport>(address, interruption);
}

}  // namespace tidyfold::imap
