#include "indexer/run_state.h"

#include <algorithm>
#include <cstdint>

#include "indexer/collect/block_bytes.h"
#include "indexer/extract/document_readers.h"
#include "indexer/source/file_reading.h"
#include "indexer/state/config_fingerprints.h"
#include "indexer/state/program_version.h"

namespace vela::indexer {

namespace fs = std::filesystem;

Fingerprint BlocksVersion(const Options& options, const std::string& base) {
  FingerprintOfAll all;
  all.Add(uint64_t{kBlockVersion});
  all.Add(TextOf(ProgramVersion(DocumentReaders().Programs())));
  all.Add(base);
  all.Add(options.maxFileMegabytes);
  all.Add(TextOf(FingerprintsOf(options.config).blocks));
  return all.Finish();
}

std::vector<std::string> FilesIn(const fs::path& fresh) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(fresh)) {
    if (entry.is_regular_file()) names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

Fingerprint IndexWishes(const Options& options, const std::string& base, const Language& language,
                        const fs::path& fresh) {
  constexpr uint64_t kLimit = uint64_t{1} << 30;
  FingerprintOfAll all;
  all.Add(TextOf(BlocksVersion(options, base)));
  all.Add(TextOf(FingerprintsOf(options.config).index));
  all.Add(language.strings);
  for (const std::string& name : FilesIn(fresh)) {
    FileContent file;
    if (ReadRegularFile((fresh / name).string(), kLimit, file) != Reason::kNone) continue;
    all.Add(name);
    all.Add(file.bytes);
  }
  return all.Finish();
}

std::unique_ptr<PageState> OpenPageState(const Options& options, const OpenedSource& opened,
                                         const ItemList& items) {
  if (options.state.empty() || !options.merge.empty()) return nullptr;
  auto state = std::make_unique<PageState>(opened.state.path / kPageStateName,
                                           BlocksVersion(options, opened.base), options.fresh,
                                           options.config.dates);
  state->Compare(*opened.source, items, !options.checkLinks.empty());
  return state;
}

}  // namespace vela::indexer
