// The plug-in as a loaded library.

#include <windows.h>

#include <optional>

#include "host/live/live.h"
#include "host/live/windows/program_search_limits.h"
#include "host/live/windows/system_text.h"
#include "host/live/windows/watched_imports.h"

namespace host {
namespace {

struct LibraryCloser {
  using pointer = HMODULE;
  void operator()(HMODULE module) const { FreeLibrary(module); }
};
using Library = std::unique_ptr<void, LibraryCloser>;

/// Where the libraries that the plug-in needs may be: beside it, beside this program, the system's.
/// Not the current folder, and not those of PATH.
constexpr DWORD kSearchedFolders =
    LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_USER_DIRS | LOAD_LIBRARY_SEARCH_SYSTEM32;

using AddModulesFunction = int(std::vector<boost::shared_ptr<halyard::repository::RModule>>&);

class LoadedLibrary final : public LiveLibrary {
 public:
  LoadedLibrary(Library loaded, std::string fileName, AddModulesFunction* addModules,
                const LiveWatch& watch)
      : library(std::move(loaded)), fileName(std::move(fileName)), addModules(addModules) {
    if (watch.listener != nullptr) watched.emplace(library.get(), watch);
  }

  void AddModules(std::vector<boost::shared_ptr<halyard::repository::RModule>>& modules) override {
    const int result = addModules(modules);
    if (result == 0) return;
    throw LiveError(fileName + ": its AddModules answered " + std::to_string(result) +
                    " instead of 0; it added no usable modules");
  }

 private:
  Library library;
  std::string fileName;
  AddModulesFunction* addModules;
  std::optional<WatchedImports> watched;
};

}  // namespace

std::unique_ptr<LiveLibrary> LoadLiveLibrary(const std::filesystem::path& plugin,
                                             const LiveWatch& watch) {
  LimitProgramSearch();
  // An absolute path, so that the libraries beside it are found, and no namesake from elsewhere is
  // loaded instead.
  const std::filesystem::path path = std::filesystem::absolute(plugin).make_preferred();
  const std::string name = ToUtf8(path.native());
  Library library(LoadLibraryExW(path.c_str(), nullptr, kSearchedFolders));
  if (!library) {
    throw LiveError("cannot load " + name + ": " + DescribeSystemError(GetLastError()) +
                    "; it needs repository.dll and logger.dll beside this program");
  }
  // By way of void*, because the function's true type is the library's own declaration.
  auto* addModules = reinterpret_cast<AddModulesFunction*>(
      reinterpret_cast<void*>(GetProcAddress(library.get(), "AddModules")));
  if (addModules == nullptr) {
    throw LiveError(name + " is no plug-in of this kind: it exports no function AddModules");
  }
  return std::make_unique<LoadedLibrary>(std::move(library), name, addModules, watch);
}

}  // namespace host
