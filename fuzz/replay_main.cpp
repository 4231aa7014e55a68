// Runs a fuzz target's entry point over files without libFuzzer, so that the
// seed corpus (and any crash file) replays in every build, sanitizers
// included. Arguments are files or directories, read one level deep.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      files.emplace_back(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
  }
  int failures = 0;
  for (const auto& path : files) {
    std::ifstream in(path, std::ios::binary);
    if (!in) std::fprintf(stderr, "cannot read %s\n", path.string().c_str());
    failures += !in;
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::printf("replayed %zu inputs\n", files.size());
  return failures == 0 && !files.empty() ? 0 : 1;
}
