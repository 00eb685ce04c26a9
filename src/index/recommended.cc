#include "index/recommended.h"

#include <algorithm>

#include "format/keyword_line.h"
#include "format/recommended.h"
#include "text/numbers.h"

namespace vela {

namespace {

constexpr int64_t kTableBytesPerTie = 512;

}  // namespace

LoadStatus LoadRecommended(RecommendedTies& ties, const IndexDirectory& directory,
                           const Settings& settings) {
  FileImage file;
  if (!file.Open(directory, kRecommendedFileName, true)) return LoadStatus::kCannotOpen;
  const int64_t wanted = int64_t{settings.NumRecommended} + 1;
  if (settings.NumRecommended < 0 || wanted * kTableBytesPerTie > INT32_MAX) {
    return LoadStatus::kNoMemory;
  }
  const auto most = static_cast<int64_t>(file.bytes().size() / 2) + 1;
  if (!ties.dataOffsets.TryAllocate(static_cast<size_t>(std::min(wanted, most)))) {
    return LoadStatus::kNoMemory;
  }
  LineReader reader{file.bytes()};
  std::string_view line;
  while (ties.keywords.size() < settings.NumRecommended &&
         ReadLine(reader, KeywordLineLimit(settings.MaxKeyWordLineLen), line)) {
    line = UpToNul(line);
    const size_t blank = line.rfind(' ');
    if (blank == line.npos || blank == 0) continue;
    ties.dataOffsets[static_cast<size_t>(ties.keywords.size())] = ReadDecimal64(line.substr(blank));
    if (!ties.keywords.TryAdd(line.substr(0, std::min(blank, kRecommendedKeywordsLimit)))) {
      return LoadStatus::kNoMemory;
    }
  }
  return LoadStatus::kOk;
}

}  // namespace vela
