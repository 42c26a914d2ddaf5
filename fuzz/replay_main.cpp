// A fuzz target's entry point run once on every file of the folders named on the command line:
// the seed corpus the tests write, and fuzz/regressions/<target>/, where an input that once
// crashed the target is kept. Built in every test build (sanitizers included) so that the seeds
// stay readable and a fixed crash stays fixed. Fails when no input was found at all.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size);

namespace {

std::vector<uint8_t> read_bytes(const std::filesystem::path &path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

int main(int argc, char **argv) {
  std::size_t inputs = 0;
  for (int i = 1; i < argc; ++i) {
    std::error_code error;
    if (!std::filesystem::is_directory(argv[i], error)) continue;
    for (const auto &entry : std::filesystem::directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      const std::vector<uint8_t> bytes = read_bytes(entry.path());
      LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
      ++inputs;
    }
  }
  std::printf("replayed %zu inputs\n", inputs);
  return inputs == 0 ? 1 : 0;
}
