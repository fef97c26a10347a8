// A store at a web server that answers GET, and to those who submit PUT and DELETE: nginx with its
// DAV module, or an object store behind one.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "fleet/store.h"

namespace httplib {
class Client;
struct Request;
struct Response;
}  // namespace httplib

namespace fleet {

/// Whether it is http://… or https://…
bool IsHttpAddress(std::string_view address);

class HttpStore : public Store {
 public:
  /// Throws StoreFailure. Certificates are checked with the authorities that OpenSSL knows here,
  /// $SSL_CERT_FILE among them.
  explicit HttpStore(const StorePlace& place);
  ~HttpStore() override;

  static void Create(const StorePlace& place);

  std::string DescribePlace(const std::string& key) const override;
  std::optional<std::string> Read(const std::string& key) const override;
  void Write(const std::string& key, std::string_view zip) const override;
  void Remove(const std::string& key) const override;
  void Settle() const override {}

 private:
  struct Unchecked {};
  HttpStore(const StorePlace& place, Unchecked);

  bool HasMark() const;
  void Put(const std::string& name, std::string_view content) const;
  /// Until there is an answer that would not be another one in a moment.
  httplib::Response Ask(const httplib::Request& request) const;
  httplib::Client& Connect() const;
  [[noreturn]] void Fail(const std::string& name, std::string_view reason) const;

  StorePlace place;
  std::string host;  ///< with scheme and port
  std::string path;  ///< ends with a slash
  /// Made with the first request, so that processes that are forked before have their own.
  mutable std::unique_ptr<httplib::Client> client;
};

}  // namespace fleet
