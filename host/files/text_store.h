// Texts that together are too large for memory.
#pragma once

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "host/text/bytes.h"

namespace host {

/// Keeps texts in memory as long as they are few, and those beyond in temporary files. May be used
/// on several threads.
class TextStore {
 public:
  /// Knows no limit.
  TextStore() = default;
  TextStore(std::size_t mostInMemory, std::filesystem::path folder) {
    SetLimit(mostInMemory, std::move(folder));
  }

  /// In `folder` are the files of the texts with which there would be more than `most` bytes. For
  /// one thread, before others keep texts.
  void SetLimit(std::size_t most, std::filesystem::path itsFolder) {
    mostInMemory = most;
    folder = std::move(itsFolder);
  }

  /// A shorter text stays where it is: so many files would be worse.
  static constexpr std::size_t kShortest = std::size_t{1} << 14;

  /// The same bytes, where there is room for them until their last copy goes. When the folder takes
  /// no more they stay in memory.
  Bytes Keep(Bytes text);

  /// Bytes that are in memory.
  std::size_t InMemory() const { return *inMemory; }
  /// That a text had to stay in memory, and why, for people; empty when none had since it was asked
  /// for last.
  std::string TakeProblem();

 private:
  bool TakeRoom(std::size_t size);

  std::size_t mostInMemory = std::numeric_limits<std::size_t>::max();
  std::filesystem::path folder;
  /// The texts may outlive the store.
  const std::shared_ptr<std::atomic<std::size_t>> inMemory =
      std::make_shared<std::atomic<std::size_t>>(0);
  std::mutex guard;
  std::string problem;
};

/// The store of the program, which opens no files before UseTemporaryFiles().
TextStore& GetTextStore();

/// From now on it keeps 64 MiB in memory, and the rest in the system's folder for temporary files.
void UseTemporaryFiles();

}  // namespace host
