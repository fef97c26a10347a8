#include "host/files/text_store.h"

#include <fmt/format.h>

#include <stdexcept>
#include <system_error>
#include <utility>

#include "host/files/mapped_text.h"
#include "host/text/path_text.h"

namespace host {
namespace {

/// A text in memory that counts as long as it is there.
struct CountedText {
  CountedText(Bytes text, std::shared_ptr<std::atomic<std::size_t>> count)
      : text(std::move(text)), count(std::move(count)) {}
  CountedText(const CountedText&) = delete;
  CountedText& operator=(const CountedText&) = delete;
  ~CountedText() { *count -= text.size(); }

  Bytes text;
  std::shared_ptr<std::atomic<std::size_t>> count;
};

}  // namespace

bool TextStore::TakeRoom(std::size_t size) {
  std::size_t now = *inMemory;
  do {
    if (size > mostInMemory || now > mostInMemory - size) return false;
  } while (!inMemory->compare_exchange_weak(now, now + size));
  return true;
}

Bytes TextStore::Keep(Bytes text) {
  if (text.size() < kShortest || text.IsElsewhere()) return text;
  if (TakeRoom(text.size())) {
    const auto counted = std::make_shared<const CountedText>(std::move(text), inMemory);
    return {counted->text.Text(), counted};
  }
  try {
    if (folder.empty()) throw std::runtime_error("the system names none");
    const auto mapped = std::make_shared<const MappedText>(text, folder);
    return {mapped->View(), mapped};
  } catch (const std::runtime_error& reason) {
    const std::scoped_lock lock(guard);
    if (problem.empty()) {
      problem = fmt::format(
          "the folder for temporary files{} takes no more: {}; the rest was kept in memory, which "
          "may run short. Give the folder room, or name another one in {}",
          folder.empty() ? "" : ", " + PathText(folder) + ",", reason.what(),
          kTemporaryFolderVariable);
    }
    return text;
  }
}

std::string TextStore::TakeProblem() {
  const std::scoped_lock lock(guard);
  return std::exchange(problem, {});
}

TextStore& GetTextStore() {
  static TextStore store;
  return store;
}

void UseTemporaryFiles() {
  constexpr std::size_t kMostInMemory = std::size_t{64} << 20;
  std::error_code ignored;
  GetTextStore().SetLimit(kMostInMemory, std::filesystem::temp_directory_path(ignored));
}

}  // namespace host
