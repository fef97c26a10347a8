#include "host/live/tool_files.h"

#include <windows.h>
// After windows.h.
#include <wincrypt.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>

#include "host/files/windows/library_function.h"
#include "host/live/windows/system_text.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr wchar_t kUninstallKey[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
/// Where 64-bit and 32-bit programs are listed.
constexpr REGSAM kViews[] = {KEY_WOW64_64KEY, KEY_WOW64_32KEY};
/// Folders for programs, as variables tell them.
constexpr const wchar_t* kProgramFolders[] = {L"ProgramW6432", L"ProgramFiles",
                                              L"ProgramFiles(x86)"};

std::wstring ReadWideVariable(const wchar_t* name) {
  std::wstring value(32768, L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
  return value;
}

/// Adds a folder with its drive, once.
void AddFolder(const fs::path& folder, std::vector<fs::path>& folders) {
  if (!folder.is_absolute() || folder.relative_path().empty()) return;
  for (const fs::path& known : folders) {
    if (_wcsicmp(known.c_str(), folder.c_str()) == 0) return;
  }
  folders.push_back(folder);
}

void AddListedFolders(REGSAM view, std::vector<fs::path>& folders) {
  HKEY list = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kUninstallKey, 0, KEY_READ | view, &list) !=
      ERROR_SUCCESS) {
    return;
  }
  std::array<wchar_t, 256> name{};
  for (DWORD index = 0;; ++index) {
    DWORD length = static_cast<DWORD>(name.size());
    const LSTATUS status =
        RegEnumKeyExW(list, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) break;
    std::array<wchar_t, 1024> place{};
    DWORD size = sizeof(place);
    if (RegGetValueW(list, name.data(), L"InstallLocation", RRF_RT_REG_SZ, nullptr, place.data(),
                     &size) == ERROR_SUCCESS) {
      AddFolder(fs::path(place.data()).lexically_normal(), folders);
    }
  }
  RegCloseKey(list);
}

/// Of the resource that Windows shows of a file; empty when there is none.
std::string ReadVersion(const fs::path& file) {
  HMODULE image = LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  if (image == nullptr) return {};
  std::string version;
  // The system's own names of both are for narrow texts, unless UNICODE is defined.
  constexpr WORD kVersionInfo = 1;
  constexpr WORD kVersionType = 16;
  HRSRC found =
      FindResourceW(image, MAKEINTRESOURCEW(kVersionInfo), MAKEINTRESOURCEW(kVersionType));
  HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(image, found);
  // Its numbers follow a head of 40 bytes: three counts, the key and what aligns them.
  constexpr DWORD kHead = 40;
  if (loaded != nullptr && SizeofResource(image, found) >= kHead + sizeof(VS_FIXEDFILEINFO)) {
    const auto* numbers = reinterpret_cast<const VS_FIXEDFILEINFO*>(
        static_cast<const char*>(LockResource(loaded)) + kHead);
    constexpr DWORD kSignature = 0xFEEF04BD;
    if (numbers->dwSignature == kSignature) {
      version = std::to_string(HIWORD(numbers->dwFileVersionMS)) + "." +
                std::to_string(LOWORD(numbers->dwFileVersionMS)) + "." +
                std::to_string(HIWORD(numbers->dwFileVersionLS)) + "." +
                std::to_string(LOWORD(numbers->dwFileVersionLS));
    }
  }
  FreeLibrary(image);
  return version;
}

/// The system's library for certificates, which is only loaded to look at a file.
struct Certificates {
  decltype(&CryptQueryObject) query = nullptr;
  decltype(&CryptMsgGetParam) getParameter = nullptr;
  decltype(&CryptMsgClose) closeMessage = nullptr;
  decltype(&CertGetSubjectCertificateFromStore) findSubject = nullptr;
  decltype(&CertGetNameStringW) getName = nullptr;
  decltype(&CertFreeCertificateContext) freeCertificate = nullptr;
  decltype(&CertCloseStore) closeStore = nullptr;

  Certificates() {
    HMODULE library = LoadLibraryExW(L"crypt32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    isThere = library != nullptr && FindFunction(library, "CryptQueryObject", query) &&
              FindFunction(library, "CryptMsgGetParam", getParameter) &&
              FindFunction(library, "CryptMsgClose", closeMessage) &&
              FindFunction(library, "CertGetSubjectCertificateFromStore", findSubject) &&
              FindFunction(library, "CertGetNameStringW", getName) &&
              FindFunction(library, "CertFreeCertificateContext", freeCertificate) &&
              FindFunction(library, "CertCloseStore", closeStore);
  }

  bool isThere = false;  ///< all of them
};

/// The signer's name in an embedded signature.
std::string NameSigner(const Certificates& system, HCERTSTORE store, HCRYPTMSG message) {
  DWORD size = 0;
  if (!system.getParameter(message, CMSG_SIGNER_CERT_INFO_PARAM, 0, nullptr, &size)) return {};
  const auto bytes = std::make_unique<std::byte[]>(size);
  if (!system.getParameter(message, CMSG_SIGNER_CERT_INFO_PARAM, 0, bytes.get(), &size)) return {};
  PCCERT_CONTEXT certificate = system.findSubject(store, X509_ASN_ENCODING | PKCS_7_ASN_ENCODING,
                                                  reinterpret_cast<PCERT_INFO>(bytes.get()));
  if (certificate == nullptr) return {};
  std::array<wchar_t, 256> name{};
  const DWORD length = system.getName(certificate, CERT_NAME_SIMPLE_DISPLAY_TYPE, 0, nullptr,
                                      name.data(), static_cast<DWORD>(name.size()));
  system.freeCertificate(certificate);
  return length <= 1 ? std::string() : ToUtf8({name.data(), length - 1});
}

std::string ReadSigner(const fs::path& file) {
  static const Certificates kSystem;
  if (!kSystem.isThere) return {};
  HCERTSTORE store = nullptr;
  HCRYPTMSG message = nullptr;
  if (!kSystem.query(CERT_QUERY_OBJECT_FILE, file.c_str(),
                     CERT_QUERY_CONTENT_FLAG_PKCS7_SIGNED_EMBED, CERT_QUERY_FORMAT_FLAG_BINARY, 0,
                     nullptr, nullptr, nullptr, &store, &message, nullptr)) {
    return {};
  }
  std::string signer = NameSigner(kSystem, store, message);
  kSystem.closeMessage(message);
  kSystem.closeStore(store, 0);
  return signer;
}

}  // namespace

std::vector<fs::path> ListInstallFolders() {
  std::vector<fs::path> folders;
  for (const REGSAM view : kViews) AddListedFolders(view, folders);
  for (const wchar_t* name : kProgramFolders) AddFolder(ReadWideVariable(name), folders);
  return folders;
}

std::vector<fs::path> ListPathFolders() {
  std::vector<fs::path> folders;
  const std::wstring path = ReadWideVariable(L"PATH");
  for (std::size_t begin = 0; begin < path.size();) {
    const std::size_t end = std::min(path.find(L';', begin), path.size());
    AddFolder(path.substr(begin, end - begin), folders);
    begin = end + 1;
  }
  return folders;
}

FileOrigin ReadOrigin(const fs::path& file) { return {ReadVersion(file), ReadSigner(file)}; }

}  // namespace host
