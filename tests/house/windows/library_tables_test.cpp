// What the built library exports and imports: the host finds its functions by these names.

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "host/live/windows/module_image.h"

namespace test {
namespace {

/// The library that stands beside this program.
HMODULE ThePlugin() {
  static const HMODULE module = LoadLibraryA("repository_pqmodule.dll");
  return module;
}

std::string ToLower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

/// What comes with the system or the compiler.
bool IsForeign(const std::string& library) {
  // The guard of the stack takes its random number from advapi32.dll.
  static const std::set<std::string> kForeign = {"advapi32.dll",    "kernel32.dll",
                                                 "msvcrt.dll",      "libgcc_s_seh-1.dll",
                                                 "libstdc++-6.dll", "libwinpthread-1.dll"};
  return kForeign.contains(library);
}

TEST(LibraryTables, ExportsTheEntryAndTheWrapperMembersAndNothingElse) {
  ASSERT_NE(ThePlugin(), nullptr);
  // The wrapper's members under the names that this compiler gives them; a constructor and a
  // destructor have two, for complete objects and for bases.
  const std::vector<std::string> expected = {
      "AddModules",
      "_ZN7halyard10repository17RInstancesWrapperC1EOS1_",
      "_ZN7halyard10repository17RInstancesWrapperC1ERKS1_",
      "_ZN7halyard10repository17RInstancesWrapperC2EOS1_",
      "_ZN7halyard10repository17RInstancesWrapperC2ERKS1_",
      "_ZN7halyard10repository17RInstancesWrapperD1Ev",
      "_ZN7halyard10repository17RInstancesWrapperD2Ev",
      "_ZN7halyard10repository17RInstancesWrapperaSEOS1_",
      "_ZN7halyard10repository17RInstancesWrapperaSERKS1_",
  };
  EXPECT_EQ(host::ListExports(ThePlugin()), expected);
}

TEST(LibraryTables, ImportsTheHostsTwoLibrariesAndNothingElseOfOurs) {
  ASSERT_NE(ThePlugin(), nullptr);
  std::set<std::string> own;
  for (const std::string& library : host::ListImportedLibraries(ThePlugin())) {
    if (!IsForeign(ToLower(library))) own.insert(ToLower(library));
  }
  EXPECT_EQ(own, (std::set<std::string>{"logger.dll", "repository.dll"}));
}

TEST(LibraryTables, ImportsWhatTheHostWatches) {
  ASSERT_NE(ThePlugin(), nullptr);
  std::set<std::string> functions;
  for (const host::Import& import : host::ListImports(ThePlugin())) {
    functions.insert(import.function);
  }
  for (const char* name : {"CreatePipe", "CreateProcessA", "GetExitCodeProcess", "GetStartupInfoA",
                           "ReadFile", "WaitForSingleObject", "fopen", "fwrite", "system"}) {
    EXPECT_TRUE(functions.contains(name)) << name;
  }
}

TEST(LibraryTables, HoldsTheAddressesOfTheFunctionsThatItNames) {
  ASSERT_NE(ThePlugin(), nullptr);
  const auto imports = host::ListImports(ThePlugin());
  const auto found = std::find_if(imports.begin(), imports.end(), [](const host::Import& import) {
    return import.function == "CreateProcessA";
  });
  ASSERT_NE(found, imports.end());
  EXPECT_EQ(*found->slot, reinterpret_cast<void*>(
                              GetProcAddress(GetModuleHandleA("kernel32.dll"), "CreateProcessA")));
}

}  // namespace
}  // namespace test
