// replay_main.cc: runs every file of the given corpus folders through a fuzz target, without
// libFuzzer. Part of every test run.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "program/fuzz/check.h"

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
  }
  if (files.empty()) {
    fprintf(stderr, "no corpus\n");
    return 1;
  }
  std::sort(files.begin(), files.end());
  LLVMFuzzerTestOneInput(nullptr, 0);
  for (const auto& file : files) {
    printf("%s\n", file.filename().c_str());
    fflush(stdout);
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  }
  printf("%zu inputs\n", files.size());
  return 0;
}
