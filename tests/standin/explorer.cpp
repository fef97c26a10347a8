// Stands in for the user's Explorer: notes what it is to open, in the folder that the test's
// environment names.

#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

int main() {
  const wchar_t* folder = _wgetenv(L"PQ_STANDIN_STATE");
  if (folder == nullptr) return 250;
  std::ofstream(std::filesystem::path(folder) / "explorer") << GetCommandLineA();
}
