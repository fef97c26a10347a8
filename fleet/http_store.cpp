#include "fleet/http_store.h"

#include <fmt/format.h>
#include <httplib.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>
#include <utility>

namespace fleet {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view kPlain = "http://";
constexpr std::string_view kSecure = "https://";

/// Much more than any recording that is taken in.
constexpr std::size_t kMostBytes = std::size_t{256} << 20;
constexpr std::chrono::seconds kConnectTime{5};
constexpr std::chrono::seconds kSilence{20};
constexpr std::chrono::minutes kTransferTime{2};
/// What a server that starts again needs; then whoever waits for the answer is told.
constexpr std::chrono::seconds kPatience{5};
constexpr std::chrono::milliseconds kFirstPause{250};

constexpr int kNotFound = 404;

bool IsDone(int status) { return status >= 200 && status < 300; }

/// Too many requests, and all that is the server's own trouble.
bool MayPass(int status) { return status == 429 || status >= 500; }

bool MayPass(httplib::Error error) {
  return error == httplib::Error::Connection || error == httplib::Error::ConnectionTimeout ||
         error == httplib::Error::Read || error == httplib::Error::Write ||
         error == httplib::Error::SSLConnection;
}

/// OpenSSL writes to a connection that the server has closed as to a pipe.
class BrokenPipeIgnored {
 public:
  BrokenPipeIgnored() : former(std::signal(SIGPIPE, SIG_IGN)) {}
  BrokenPipeIgnored(const BrokenPipeIgnored&) = delete;
  BrokenPipeIgnored& operator=(const BrokenPipeIgnored&) = delete;
  ~BrokenPipeIgnored() { std::signal(SIGPIPE, former); }

 private:
  void (*former)(int);
};

std::string_view DescribeError(httplib::Error error) {
  switch (error) {
    case httplib::Error::SSLServerVerification:
      return "its certificate is not one of an authority that is known here: name the "
             "authority's file in SSL_CERT_FILE";
    case httplib::Error::SSLLoadingCerts:
      return "the certificates of authorities could not be read: look at SSL_CERT_FILE";
    case httplib::Error::SSLConnection:
      return "there is no encrypted connection to be had";
    case httplib::Error::ConnectionTimeout:
    case httplib::Error::Connection:
      return "it cannot be reached";
    case httplib::Error::Canceled:
      return "it sends more than 256 MiB, or for more than two minutes";
    default:
      return "the connection broke off";
  }
}

std::string DescribeStatus(int status) {
  constexpr int kBadRequest = 400;
  if (status == kBadRequest || status == 401 || status == 403) {
    return fmt::format(
        "the server refuses it (status {}): look at the certificate that --store-certificate "
        "names, and at what that may do",
        status);
  }
  return fmt::format("the server answers with status {}", status);
}

httplib::Request MakeRequest(const char* method, std::string path) {
  httplib::Request request;
  request.method = method;
  request.path = std::move(path);
  request.set_header("Accept-Encoding", "identity");
  return request;
}

}  // namespace

bool IsHttpAddress(std::string_view address) {
  return address.starts_with(kPlain) || address.starts_with(kSecure);
}

HttpStore::HttpStore(const StorePlace& place, Unchecked) : place(place) {
  const std::string& address = place.address;
  const std::size_t hostBegin = address.find("//") + 2;
  const std::size_t hostEnd = std::min(address.find('/', hostBegin), address.size());
  const auto isOdd = [](char c) {
    return c <= ' ' || c >= '\x7f' || std::string_view("@?#%\\\"<>").find(c) != std::string::npos;
  };
  if (hostBegin == hostEnd || std::any_of(address.begin(), address.end(), isOdd)) {
    throw StoreFailure(fmt::format(
        "{}: write the store's address as https://HOST:PORT/PATH, with plain letters", address));
  }
  host = address.substr(0, hostEnd);
  path = address.substr(hostEnd);
  if (!path.ends_with('/')) path += '/';
}

HttpStore::HttpStore(const StorePlace& place) : HttpStore(place, Unchecked{}) {
  if (!HasMark()) {
    Fail("", fmt::format("it is no store of recordings, as it has no file {}: look at the address, "
                         "or make it with pqfleet init --store",
                         kStoreMark));
  }
  client.reset();
}

HttpStore::~HttpStore() = default;

void HttpStore::Create(const StorePlace& place) {
  const HttpStore store(place, Unchecked{});
  if (!store.HasMark()) store.Put(kStoreMark, kStoreMarkText);
}

bool HttpStore::HasMark() const {
  const httplib::Response answer = Ask(MakeRequest("GET", path + kStoreMark));
  if (answer.status != kNotFound && !IsDone(answer.status)) {
    Fail(kStoreMark, DescribeStatus(answer.status));
  }
  return answer.body == kStoreMarkText;
}

std::string HttpStore::DescribePlace(const std::string& key) const {
  return host + path + NameInStore(key);
}

std::optional<std::string> HttpStore::Read(const std::string& key) const {
  httplib::Response answer = Ask(MakeRequest("GET", path + NameInStore(key)));
  if (IsDone(answer.status)) return std::move(answer.body);
  if (answer.status != kNotFound) Fail(NameInStore(key), DescribeStatus(answer.status));
  if (!HasMark()) Fail("", "the store is not there any more");
  return std::nullopt;
}

void HttpStore::Put(const std::string& name, std::string_view content) const {
  httplib::Request request = MakeRequest("PUT", path + name);
  request.body = content;
  request.set_header("Content-Type", "application/octet-stream");
  const httplib::Response answer = Ask(request);
  if (!IsDone(answer.status)) Fail(name, DescribeStatus(answer.status));
}

void HttpStore::Write(const std::string& key, std::string_view zip) const {
  Put(NameInStore(key), zip);
}

void HttpStore::Remove(const std::string& key) const {
  const httplib::Response answer = Ask(MakeRequest("DELETE", path + NameInStore(key)));
  if (!IsDone(answer.status) && answer.status != kNotFound) {
    Fail(NameInStore(key), DescribeStatus(answer.status));
  }
}

httplib::Response HttpStore::Ask(const httplib::Request& request) const {
  const BrokenPipeIgnored guard;
  const Clock::time_point begin = Clock::now();
  for (std::chrono::milliseconds pause = kFirstPause;; pause *= 2) {
    const Clock::time_point sent = Clock::now();
    httplib::Request attempt = request;
    std::string body;
    attempt.content_receiver = [&](const char* data, std::size_t size, std::uint64_t,
                                   std::uint64_t) {
      if (body.size() + size > kMostBytes || Clock::now() - sent > kTransferTime) return false;
      body.append(data, size);
      return true;
    };
    httplib::Response answer;
    httplib::Error error = httplib::Error::Success;
    const bool isAnswered = Connect().send(attempt, answer, error);
    if (isAnswered && !MayPass(answer.status)) {
      answer.body = std::move(body);
      return answer;
    }
    if (Clock::now() - begin + pause > kPatience || (!isAnswered && !MayPass(error))) {
      Fail(request.path.substr(path.size()),
           isAnswered ? DescribeStatus(answer.status) : std::string(DescribeError(error)));
    }
    client.reset();
    std::this_thread::sleep_for(pause);
  }
}

httplib::Client& HttpStore::Connect() const {
  if (client) return *client;
  client = place.certificate.empty()
               ? std::make_unique<httplib::Client>(host)
               : std::make_unique<httplib::Client>(host, place.certificate, place.certificate);
  if (!client->is_valid()) {
    client.reset();
    throw StoreFailure(place.certificate.empty()
                           ? fmt::format("{}: it is no address of a server", host)
                           : fmt::format("{}: there is no certificate with its key to be read",
                                         place.certificate));
  }
  client->set_keep_alive(true);
  client->set_tcp_nodelay(true);  // Head and body are written one after the other.
  client->set_decompress(false);
  client->set_connection_timeout(kConnectTime);
  client->set_read_timeout(kSilence);
  client->set_write_timeout(kSilence);
  return *client;
}

void HttpStore::Fail(const std::string& name, std::string_view reason) const {
  throw StoreFailure(fmt::format("{}{}{}: {}", host, path, name, reason));
}

}  // namespace fleet
