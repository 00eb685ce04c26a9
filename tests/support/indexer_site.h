// indexer_site.h: a small site on disk, and its index, for the tests of the indexer. Every index
// that is built here has to pass the inspector.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "indexer/build_index.h"
#include "support/index_builder.h"
#include "support/inspection.h"
#include "support/scratch_directory.h"

namespace vela::indexer {

inline void WriteFile(const std::filesystem::path& path, std::string_view content) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary).write(content.data(), std::ssize(content));
}

inline std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// The time of every file of a site, so that its index does not depend on when the test runs.
inline void SetTime(const std::filesystem::path& path, int64_t seconds) {
  const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
  utimensat(AT_FDCWD, path.c_str(), times, 0);
}

// A settings file that is read without a fault and holds that one setting.
inline std::string SettingsFileWith(const std::string& setting) {
  std::string lines = setting + "\n";
  for (const auto& text : support::kLanguageTexts) lines += std::string(text.key) + " = \"text\"\n";
  return lines;
}

struct TestSite {
  support::ScratchDirectory scratch;
  std::filesystem::path folder = scratch.path() / "site";
  std::filesystem::path index = scratch.path() / "index";
  Options options;

  TestSite() {
    std::filesystem::create_directory(folder);
    options.site = folder.string();
    options.baseUrl = "https://x.example/";
    options.out = index.string();
    options.quiet = true;
    options.config.trustsFileDates = true;  // the files of a test are all of one day
  }
  void Add(const std::string& path, std::string_view content, int64_t time = 1000000000) const {
    WriteFile(folder / path, content);
    SetTime(folder / path, time);
  }
  IndexSummary Build() const {
    Progress progress(false);
    const volatile std::sig_atomic_t stop = 0;
    IndexSummary summary = BuildIndex(options, progress, stop);
    EXPECT_EQ(support::FaultsOf(options.out), "");
    return summary;
  }
  std::string Read(const std::string& name) const { return ReadFile(index / name); }
};

inline constexpr const char* kIndexFiles[] = {
    "settings.vdat",      "vela_dictionary.vdat", "vela_wordmap.vdat",
    "vela_pageinfo.vdat", "vela_pagedata.vdat",   "vela_pagetext.vdat",
};

}  // namespace vela::indexer
