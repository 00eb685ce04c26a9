#include "indexer/build_index.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "indexer/collect/page_collection.h"
#include "indexer/config/language_file.h"
#include "indexer/publish/index_folder.h"
#include "indexer/publish/open_search.h"
#include "indexer/publish/owner_files.h"
#include "indexer/publish/public_files.h"
#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/words/symbols.h"
#include "indexer/write/autocomplete_writer.h"
#include "indexer/write/dictionary_writer.h"
#include "indexer/write/settings_writer.h"
#include "indexer/write/spelling_writer.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kMaxPosition = (uint64_t{1} << 40) - 1;

// True when `inner` is `outer` or lies in it; both absolute and resolved.
bool IsWithin(const fs::path& inner, const fs::path& outer) {
  const auto [outerEnd, rest] =
      std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
  (void)rest;
  return outerEnd == outer.end();
}

fs::path ResolvedSite(const std::string& site) {
  std::error_code error;
  fs::path resolved = fs::canonical(site, error);
  if (error || !fs::is_directory(resolved)) {
    throw IndexError(ExitStatus::kFailed, "Cannot read the site folder " + site + ": " +
                                              (error ? error.message() : "it is no folder") +
                                              ". Check --site.");
  }
  return resolved;
}

void CheckStop(const volatile std::sig_atomic_t& stop) {
  if (stop != 0) {
    throw IndexError(ExitStatus::kInterrupted, "Interrupted: the index was not changed.");
  }
}

// A run under way.
struct Run {
  const Options& options;
  Progress& progress;
  const volatile std::sig_atomic_t& stop;
  const IndexFolder& folder;
  IndexSummary summary;
};

void ReadPages(Run& run, PageCollection& collection) {
  const SiteInput& input = collection.input;
  const SiteConfig& config = run.options.config;
  run.progress.Begin("Looking for pages", 0);
  const WalkRules rules = {run.options.exclude, run.folder.target(), config.htmlEndings,
                           config.textEndings};
  const std::vector<SiteFile> files = WalkSite(input.site, rules, run.summary.files);
  for (const SiteFile& file : files) {
    collection.siteAddresses.insert(PageAddress(input.base, file.path));
  }
  collection.recommended = WantedPages(config.recommended, input.base);
  run.progress.Begin("Reading pages", files.size());
  uint64_t done = 0;
  for (const SiteFile& file : files) {
    CheckStop(run.stop);
    const Reason reason = AddFile(file, collection);
    if (reason != Reason::kNone) AddLeftOut(run.summary.files, reason, file.path);
    run.progress.Step(++done);
  }
  if (!collection.pages.empty()) return;
  std::string why;
  for (const auto& [reason, group] : GroupsByText(run.summary.files)) {
    why += "\n  left out: " + std::to_string(group->count) + " (" + reason + ")";
  }
  throw IndexError(ExitStatus::kNothing, "No page to index was found in " + input.site.string() +
                                             ". The files must be HTML or text." + why);
}

// The files by which words are found. Returns the size of all.
uint64_t WriteWords(Run& run, PageCollection& collection, IndexFacts& facts) {
  const fs::path& fresh = run.folder.fresh();
  const Vocabulary& vocabulary = collection.vocabulary;
  facts.pages = collection.pages.size();
  facts.tokenBytes = TokenBytes(ReservedLimits().limit + 1 + vocabulary.words.size());
  if (facts.tokenBytes > 5 || collection.pageText.tokenCount() * facts.tokenBytes > kMaxPosition) {
    throw IndexError(ExitStatus::kFailed,
                     "The site holds more text than one index can address. "
                     "Index its parts into several folders.");
  }
  run.progress.Begin("Sorting words", 0);
  run.summary.runs = collection.postings.runCount();
  const WordMapResult wordMap = WriteWordMap(fresh / "vela_wordmap.vdat", collection.postings,
                                             vocabulary, collection.pages, facts.tokenBytes);
  CheckStop(run.stop);
  run.progress.Begin("Writing the index", 0);
  const std::vector<uint32_t> order = DictionaryOrder(vocabulary);
  facts.dictionary = WriteDictionary(fresh / "vela_dictionary.vdat", vocabulary, order,
                                     wordMap.offsets, collection.input.charset);
  uint64_t bytes = wordMap.fileBytes + facts.dictionary.fileBytes;
  bytes += collection.pageText.Finish(fresh / "vela_pagetext.vdat", order, facts.tokenBytes);
  const PageTableWriter::Sizes table = collection.pageTable.Finish();
  facts.pageInfoBytes = table.infoBytes;
  bytes += table.infoBytes + table.dataBytes;
  if (run.options.config.spelling) {
    const SpellingSizes spelling = WriteSpelling(fresh / "vela_spelling.vdat", vocabulary, order);
    facts.spellings = spelling.entries;
    bytes += spelling.fileBytes;
  }
  return bytes;
}

// The files that help a visitor beside the words. Returns the size of all.
uint64_t WriteHelp(Run& run, PageCollection& collection, IndexFacts& facts) {
  const fs::path& fresh = run.folder.fresh();
  const SiteConfig& config = run.options.config;
  const IndexCharset& charset = collection.input.charset;
  std::ranges::move(UnusedRules(collection), std::back_inserter(run.summary.warnings));
  uint64_t bytes = 0;
  size_t longest = 0;
  if (!config.recommended.empty()) {
    RecommendedSizes sizes =
        WriteRecommended(fresh / "vela_recommended.vdat", config.recommended,
                         collection.recommended, collection.input.base, charset);
    facts.recommended = sizes.entries;
    longest = sizes.longestLine;
    bytes += sizes.fileBytes;
    std::ranges::move(sizes.unused, std::back_inserter(run.summary.warnings));
  }
  facts.lineLength = KeyWordLineLength(config, longest);
  if (config.suggestions) {
    const AutocompleteSizes sizes =
        WriteAutocomplete(fresh / "vela_autocomplete.vdat", collection.suggestions.Take(),
                          config.mostSuggestions, facts.lineLength, charset);
    facts.autocomplete = sizes.lines;
    bytes += sizes.fileBytes;
  }
  return bytes;
}

}  // namespace

IndexSummary BuildIndex(const Options& given, Progress& progress,
                        const volatile std::sig_atomic_t& stop) {
  Options options = given;
  const std::string base = CheckedBaseUrl(options.baseUrl);
  const fs::path site = ResolvedSite(options.site);
  const IndexCharset charset(options.config.charset);
  const std::string language = LoadLanguage(options.language);
  AddXmlSettings(base, options.config);
  IndexFolder folder(options.out);
  if (IsWithin(site, folder.target())) {
    throw IndexError(ExitStatus::kUsage,
                     "--out is replaced as a whole and must not hold the site "
                     "itself. Give a folder of its own for the index.");
  }

  Run run = {options, progress, stop, folder, {}};
  const Finding templateFault = WriteTemplate(options, charset, folder);
  if (templateFault.reason != Reason::kNone) run.summary.warnings.push_back(templateFault);
  PageCollection collection({site, base, options, charset}, folder.fresh());
  ReadPages(run, collection);
  collection.words = {};
  IndexFacts facts;
  uint64_t bytes = WriteWords(run, collection, facts);
  bytes += WriteHelp(run, collection, facts);
  bytes +=
      WriteSettings(folder.fresh() / "settings.vdat", facts, options.config, charset, language);
  WritePublicFiles(options.config, facts.autocomplete != 0, charset, folder);
  CheckStop(stop);
  folder.Commit();

  IndexSummary& summary = run.summary;
  summary.pages = facts.pages;
  summary.words = collection.vocabulary.words.size();
  summary.occurrences = collection.pageText.tokenCount();
  summary.sourceBytes = collection.sourceBytes;
  summary.indexBytes = bytes;
  summary.metaValues = std::move(collection.metaValues);
  progress.Clear();
  return summary;
}

}  // namespace vela::indexer
