#include "host/live/windows/module_image.h"

#include <windows.h>

namespace host {
namespace {

/// A loaded module's memory. Offsets come from the loader's own tables, which it has checked.
class Image {
 public:
  explicit Image(void* module) : base(static_cast<char*>(module)) {}

  template <typename T>
  T* At(DWORD offset) const {
    return reinterpret_cast<T*>(base + offset);
  }

  /// The table of that number; null when the module has none.
  template <typename T>
  const T* Directory(int number) const {
    const auto* headers =
        At<IMAGE_NT_HEADERS64>(static_cast<DWORD>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
    const DWORD offset = headers->OptionalHeader.DataDirectory[number].VirtualAddress;
    return offset == 0 ? nullptr : At<T>(offset);
  }

 private:
  char* base;
};

template <typename Visit>
void VisitImportedLibraries(const Image& image, const Visit& visit) {
  const auto* library = image.Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
  for (; library != nullptr && library->Name != 0; ++library) visit(*library);
}

}  // namespace

std::vector<Import> ListImports(void* module) {
  const Image image(module);
  std::vector<Import> imports;
  VisitImportedLibraries(image, [&](const IMAGE_IMPORT_DESCRIPTOR& library) {
    if (library.OriginalFirstThunk == 0) return;  // a linker that keeps no names beside addresses
    const auto* name = image.At<IMAGE_THUNK_DATA64>(library.OriginalFirstThunk);
    auto* address = image.At<IMAGE_THUNK_DATA64>(library.FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++address) {
      if (IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal)) continue;
      const auto* byName =
          image.At<IMAGE_IMPORT_BY_NAME>(static_cast<DWORD>(name->u1.AddressOfData));
      imports.push_back({image.At<char>(library.Name), reinterpret_cast<const char*>(byName->Name),
                         reinterpret_cast<void**>(&address->u1.Function)});
    }
  });
  return imports;
}

std::vector<std::string> ListImportedLibraries(void* module) {
  const Image image(module);
  std::vector<std::string> libraries;
  VisitImportedLibraries(image, [&](const IMAGE_IMPORT_DESCRIPTOR& library) {
    libraries.emplace_back(image.At<char>(library.Name));
  });
  return libraries;
}

std::vector<std::string> ListExports(void* module) {
  const Image image(module);
  std::vector<std::string> names;
  const auto* table = image.Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
  if (table == nullptr) return names;
  const auto* offsets = image.At<DWORD>(table->AddressOfNames);
  for (DWORD i = 0; i < table->NumberOfNames; ++i) names.emplace_back(image.At<char>(offsets[i]));
  return names;
}

}  // namespace host
