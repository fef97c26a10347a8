// A text in a temporary file.
#pragma once

#include <filesystem>
#include <string_view>

namespace host {

/// The variable of the environment that says where temporary files go.
extern const char* const kTemporaryFolderVariable;

/// The file is its owner's alone and has no name, or loses it with the program, however that ends.
/// It is mapped into memory, which the system may use for something else while nobody reads it.
class MappedText {
 public:
  /// Writes `text`, which is not empty. Throws std::runtime_error, with the reason alone, when
  /// `folder` does not take it.
  MappedText(std::string_view text, const std::filesystem::path& folder);
  MappedText(const MappedText&) = delete;
  MappedText& operator=(const MappedText&) = delete;
  ~MappedText();

  std::string_view View() const { return view; }

 private:
  std::string_view view;
  /// Its handle, on Windows: it is removed when that is closed.
  [[maybe_unused]] void* file = nullptr;
};

}  // namespace host
