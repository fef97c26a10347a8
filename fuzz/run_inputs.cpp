// Gives a target the files that are named, without a fuzzer: for tools that look at a program as it
// runs.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    std::ifstream file(argv[i], std::ios::binary);
    if (!file) {
      std::fprintf(stderr, "%s: cannot be read\n", argv[i]);
      return 1;
    }
    std::fprintf(stderr, "%s\n", argv[i]);
    std::vector<std::uint8_t> input{std::istreambuf_iterator<char>(file), {}};
    input.shrink_to_fit();  // what reads past its end is seen
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  return 0;
}
