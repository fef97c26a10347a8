#include "host/pqhost/login.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "host/files/file_handle.h"
#include "host/files/whole_file.h"
#include "host/program/destination.h"
#include "host/secrets/secret.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

/// A line of three words has no more; a file of another kind is refused before it is read.
constexpr std::uint64_t kLargestLogin = 4096;

Secret ReadLogin(const std::filesystem::path& path) {
  const auto refuse = [&](const std::string& why) {
    throw UsageError(fmt::format("--amt-login {} {}", PathText(path), why));
  };
  FileHandle file;
  try {
    file = OpenToRead(path);
  } catch (const std::runtime_error& error) {
    refuse(error.what());
  }
  if (IsOpenToOthers(file)) refuse("may be read by others: give it to yourself alone");
  if (file.Size() > kLargestLogin) refuse("is too large for a line ADDRESS USER PASSWORD");
  return ReadWholeFile(file);
}

LoginPrompt::Input ReadFrom(Secret login) {
  return
      [text = std::make_shared<const Secret>(std::move(login)), next = std::size_t{0}]() mutable {
        const std::string_view all = text->View();
        return next < all.size() ? static_cast<unsigned char>(all[next++]) : EOF;
      };
}

LoginPrompt::Input ReadStandardInput() {
  // The library's buffer would keep what was typed.
  std::setvbuf(stdin, nullptr, _IONBF, 0);
  return [] { return std::getc(stdin); };
}

}  // namespace

LoginPrompt MakeLoginPrompt(const SourceOptions& options, const Console& console) {
  const auto warn = [&console](const std::string& line) { Complain(console, line); };
  if (options.amtLogin == kStandardStream) {
    return {ReadStandardInput(), false, warn, "standard input ended before a login that it takes"};
  }
  if (options.amtLogin) {
    return {ReadFrom(ReadLogin(*options.amtLogin)), false, warn,
            "the file of --amt-login has none that it takes"};
  }
  if (options.asksNobody) return {nullptr, false, warn, "--no-input"};
  if (console.inIsTerminal) return {ReadStandardInput(), true, warn, ""};
  return {nullptr, false, warn,
          "standard input is no console (--amt-login - takes the login from it)"};
}

}  // namespace host
