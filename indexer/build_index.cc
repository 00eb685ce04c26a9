#include "indexer/build_index.h"

#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <thread>
#include <utility>

#include "format/index_directory.h"
#include "indexer/collect/block_bytes.h"
#include "indexer/collect/page_collection.h"
#include "indexer/collect/recommended_pages.h"
#include "indexer/collect/stop_words.h"
#include "indexer/config/extensions.h"
#include "indexer/config/language_file.h"
#include "indexer/extract/read_page.h"
#include "indexer/link_check.h"
#include "indexer/memory_plan.h"
#include "indexer/open_source.h"
#include "indexer/page_workers.h"
#include "indexer/publish/compare_indexes.h"
#include "indexer/publish/former_settings.h"
#include "indexer/publish/index_folder.h"
#include "indexer/publish/open_search.h"
#include "indexer/publish/public_files.h"
#include "indexer/publish/search_program.h"
#include "indexer/publish/search_template.h"
#include "indexer/report/index_error.h"
#include "indexer/report/report_text.h"
#include "indexer/run_conditions.h"
#include "indexer/run_report.h"
#include "indexer/side_task.h"
#include "indexer/site/address.h"
#include "indexer/site_look.h"
#include "indexer/source/fingerprint.h"
#include "indexer/source/source.h"
#include "indexer/state/anchor_bytes.h"
#include "indexer/state/config_fingerprints.h"
#include "indexer/state/merged_parts.h"
#include "indexer/state/page_state.h"
#include "indexer/state/program_version.h"
#include "indexer/state/site_part.h"
#include "indexer/words/clean_text.h"
#include "indexer/write/autocomplete_writer.h"
#include "indexer/write/completions_writer.h"
#include "indexer/write/corrections_writer.h"
#include "indexer/write/dictionary_writer.h"
#include "indexer/write/lookup_writer.h"
#include "indexer/write/out_file.h"
#include "indexer/write/page_table_writer.h"
#include "indexer/write/page_text_writer.h"
#include "indexer/write/recommended_writer.h"
#include "indexer/write/sections_writer.h"
#include "indexer/write/settings_writer.h"
#include "indexer/write/spelling_writer.h"
#include "indexer/write/synonyms_writer.h"
#include "indexer/write/word_map_writer.h"
#include "text/stemmer.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kMegabyte = uint64_t{1} << 20;

// The threads that read pages.
unsigned Jobs(const Options& options) {
  const auto wanted = static_cast<unsigned>(options.jobs);
  return wanted != 0 ? wanted : std::max(1U, std::thread::hardware_concurrency());
}

// A run under way: what the owner wants, and what every step reports to.
struct Run {
  const Options& options;
  const std::string& base;  // the site's address, ending in "/"
  const IndexCharset& charset;
  const IndexFolder& folder;
  Progress& progress;
  const volatile std::sig_atomic_t& stop;
  RunReport& report;
  MemoryPlan memory;
  PageState* state;          // not owned; null: nothing is kept of the pages
  const MergedParts* parts;  // the same; null: the site is read by this run
  IndexSummary summary;
  bool mayDiffer = false;  // the same site may give another index: some page met a limit of time
};

// The pages of the site, in memory and in the files that are written as they are read.
struct SitePages {
  explicit SitePages(const Run& run)
      : collection({.base = run.base,
                    .config = run.options.config,
                    .charset = run.charset,
                    .memory = run.memory.collection,
                    .sink = [this](const std::vector<PageToken>& tokens) { text.Add(tokens); }},
                   run.folder.fresh()),
        text(run.folder.fresh()),
        table(run.folder.fresh() / kPageInfoFileName, run.folder.fresh() / kPageDataFileName) {}

  PageCollection collection;
  PageTextWriter text;
  PageTableWriter table;
  PageEntry entry;  // of the page that joined last
};

// What a run that reads pages has of them all; the referenced objects outlive the reading.
struct ReadingInput {
  const Source& source;
  const std::vector<SourceItem>& items;
  const std::string& base;
  const SiteConfig& config;
  const IndexCharset& charset;
  const volatile std::sig_atomic_t& stop;
  const MemoryPlan& memory;
};

// How the pages of the site are read, by all threads alike.
struct PageReading {
  explicit PageReading(const ReadingInput& input)
      : source(input.source),
        items(input.items),
        content(input.config, input.base),
        wishes{.images = input.config.images,
               .recognisesLanguages = input.config.recognisesLanguages,
               .dates = input.config.dates,
               .documents = &documents,
               .content = &content},
        limits{.stop = &input.stop},
        blocks{.base = input.base,
               .config = input.config,
               .charset = input.charset,
               .stop = &input.stop,
               .memory = input.memory.known} {}

  const Source& source;
  const std::vector<SourceItem>& items;
  DocumentReaders documents;
  const ContentChoices content;
  const PageWishes wishes;
  const ReadingLimits limits;
  const BlockInput blocks;
  std::mutex largePages;               // held by the thread that is busy with one
  LinkCheck* links = nullptr;          // not owned; null: links are not checked
  PageState* state = nullptr;          // not owned; null: nothing is kept from run to run
  const MergedParts* parts = nullptr;  // not owned; null: the site is read by this run
};

// What a page takes while it is read is many times its size. Of those above so many bytes threads
// read one at a time.
constexpr size_t kLargePageBytes = size_t{2} << 20;

void ReadItem(PageReading& reading, size_t number, BlockMaker& maker, ItemOutcome& outcome) {
  if (reading.parts != nullptr) {
    reading.parts->Take(number, outcome);
    return;
  }
  const SourceItem& item = reading.items[number];
  PageState* state = reading.state;
  if (state != nullptr && state->Take(number, outcome)) return;
  outcome = ItemOutcome();
  ItemContent content;
  if (state != nullptr) content.version = reading.source.Version(item);
  FileContent file;
  outcome.reason = reading.source.Read(item, file);
  if (outcome.reason != Reason::kNone) {
    // It is asked for again, as what stands against it need not show in a version.
    if (state != nullptr) state->Keep(number, ItemContent(), outcome);
    return;
  }
  if (state != nullptr) {
    content.bytes = ContentFingerprint(file);
    content.modifiedTime = file.modifiedTime;
    if (state->TakeEqual(number, content, outcome)) return;
    outcome = ItemOutcome();
  }
  std::unique_lock large(reading.largePages, std::defer_lock);
  if (file.bytes.size() > kLargePageBytes) large.lock();
  if (reading.links != nullptr) {
    const std::optional<PageAnchors> anchors = AnchorsOfItem(item, file);
    if (anchors.has_value()) outcome.anchors = AnchorBytes(*anchors);
  }
  Page page;
  outcome.reason = ReadPage(item, std::move(file), reading.wishes, reading.limits, page);
  if (outcome.reason == Reason::kNone) outcome.reason = maker.Make(page, outcome.block);
  if (state != nullptr && outcome.reason != Reason::kStopped) state->Keep(number, content, outcome);
}

// From an item of the site to a block. Nothing of the index is touched, so that a page which takes
// more memory than there is costs the run no more than that page.
Reason MakeItemBlock(PageReading& reading, size_t number, BlockMaker& maker, PageBlock& block) try {
  ItemOutcome outcome;
  ReadItem(reading, number, maker, outcome);
  PageAnchors anchors;
  if (reading.links != nullptr && ReadAnchors(outcome.anchors, anchors)) {
    reading.links->AddPage(reading.items[number], std::move(anchors));
  }
  block = std::move(outcome.block);
  return outcome.reason;
} catch (const std::bad_alloc&) {
  return Reason::kNoMemory;
}

// Takes the block of one item of the site in. kNone, or why it is left out. Where there is no
// memory for its words, half of them may be in the index: the run cannot go on.
Reason TakeBlock(const PageBlock& block, SitePages& pages, LeftOut& remarks) try {
  const Reason reason = AddPage(block, pages.collection, pages.entry);
  if (reason != Reason::kNone) return reason;
  pages.table.AddPage(pages.entry);
  if (!block.markupFault.empty()) {
    AddLeftOut(remarks, Reason::kNotWellFormed, block.facts.path, {}, block.markupFault);
  }
  if (block.use.isLeftOff) AddLeftOut(remarks, Reason::kLeftOff, block.facts.path);
  if (block.use.lacksChosen) AddLeftOut(remarks, Reason::kNothingChosen, block.facts.path);
  return Reason::kNone;
} catch (const std::bad_alloc&) {
  throw IndexError(ExitStatus::kFailed, "Out of memory at " + block.facts.path +
                                            ". Give a smaller --memory or --max-file-size, or "
                                            "leave that page out (--exclude).");
}

// Says what became of an item of the site.
void Report(const SourceItem& item, Reason reason, Run& run, SitePages& pages) {
  if (reason != Reason::kNone) AddLeftOut(run.summary.files, reason, item.path);
  std::string similar;
  if (reason == Reason::kNone && pages.entry.similarTo.has_value()) {
    similar = PlainAddress(pages.table.ReadLine(*pages.entry.similarTo).address);
    AddLeftOut(run.summary.similar, Reason::kSimilar, item.path, {}, similar);
  }
  if (!run.report.isWanted()) return;
  const PageCollection& collection = pages.collection;
  if (reason == Reason::kNone) {
    run.report.AddPage(item, pages.entry, collection.pages.size() - 1, similar);
  } else {
    run.report.AddLeftOut(item, reason, OriginalOf(item, reason, collection, pages.table));
  }
}

void WriteReport(const Run& run) {
  if (run.options.report.empty() || WantsJsonReport(run.options)) return;
  OutFile file(run.options.report);
  file.Write(RepairedUtf8(ReportText(run.summary)));
  file.Finish();
}

// A site that lost many of its pages at once is more often half copied or not mounted than smaller.
void CheckMissingPages(const Run& run, uint64_t pages) {
  constexpr uint64_t kWhole = 100;
  const Options& options = run.options;
  if (options.acceptFewer || options.missingPercentLimit >= kWhole) return;
  const std::unique_ptr<Settings> settings = ReadFormerSettings(run.folder.target());
  if (settings == nullptr) return;
  const auto former = static_cast<uint64_t>(std::max(settings->NumPages, 0));
  if (pages * kWhole >= former * (kWhole - options.missingPercentLimit)) return;
  throw IndexError(ExitStatus::kShrunk,
                   "Only " + CountText(pages) + " pages were found where the index has " +
                       CountText(former) + "; more than " +
                       std::to_string(options.missingPercentLimit) +
                       " % are missing (stop_when_fewer), and the index was not changed. Check "
                       "that " +
                       (options.site.empty() ? "the site" : options.site) +
                       " is whole, or run once with --accept-fewer.");
}

void CheckBrokenLinks(const Run& run) {
  if (run.options.checkLinks != "fail" || run.summary.links.found.empty()) return;
  throw IndexError(ExitStatus::kBrokenLinks, LinksText(run.summary.links) +
                                                 "The index was not changed (--check-links=fail).");
}

[[noreturn]] void RefuseEmptySite(const std::string& sought, const LeftOut& leftOut) {
  std::string why;
  for (const auto& [reason, group] : GroupsByText(leftOut)) {
    why += "\n  left out: " + std::to_string(group->count) + " (" + reason + ")";
  }
  throw IndexError(ExitStatus::kNothing, "No page to index was found " + sought + why);
}

// Makes the items that `reading` is about into blocks, each of which `use` takes in its turn.
void ForEachItem(PageReading& reading, unsigned jobs, size_t waitingBytes, const UseBlock& use) {
  const auto newMaker = [&]() -> MakeBlock {
    const auto maker = std::make_shared<BlockMaker>(reading.blocks);
    return [&reading, maker](size_t item, PageBlock& block) {
      return MakeItemBlock(reading, item, *maker, block);
    };
  };
  ForEachBlock({.items = reading.items.size(), .jobs = jobs, .waitingBytes = waitingBytes},
               newMaker, use);
}

void ReadPages(const Source& source, SiteListing& listing, Run& run, SitePages& pages) {
  const std::vector<SourceItem>& items = listing.items;
  run.report.AddListing(listing);
  std::optional<LinkCheck> links;
  if (!run.options.checkLinks.empty()) {
    links.emplace(LinkedSite{.base = run.base, .folder = run.options.site}, listing);
  }
  run.summary.files = std::move(listing.leftOut);
  run.summary.otherKinds = std::move(listing.otherKinds);
  std::ranges::move(listing.unused, std::back_inserter(run.summary.warnings));
  for (const SourceItem& item : items) pages.collection.addresses.AddItem(item.address);
  run.progress.Begin("Reading pages", items.size());
  PageReading reading({.source = source,
                       .items = items,
                       .base = run.base,
                       .config = run.options.config,
                       .charset = run.charset,
                       .stop = run.stop,
                       .memory = run.memory});
  reading.links = links.has_value() ? &*links : nullptr;
  reading.state = run.state;
  reading.parts = run.parts;
  ForEachItem(reading, Jobs(run.options), run.memory.waiting,
              [&](size_t item, Reason reason, const PageBlock& block) {
                run.mayDiffer = run.mayDiffer || IsPassing(reason);
                if (reason == Reason::kNone) reason = TakeBlock(block, pages, run.summary.remarks);
                CheckStop(run.stop);  // perhaps in the middle of the page
                Report(items[item], reason, run, pages);
                run.progress.Step(item + 1);
              });
  if (pages.collection.pages.empty()) {
    WriteReport(run);
    RefuseEmptySite(listing.sought, run.summary.files);
  }
  if (links.has_value()) run.summary.links = links->Finish(pages.collection.addresses);
  pages.collection.tokens = {};
  malloc_trim(0);  // what pages were read with is of no use to what follows
}

// Whether compounds are written as one word, as German does.
bool IsGerman(const Options& options) {
  return options.config.stemming == kStemGerman ||
         (options.config.stemming < 0 && options.language == "german");
}

// The files by which words are found. Returns the size of all.
uint64_t WriteWords(Run& run, SitePages& pages, IndexFacts& facts) {
  const fs::path& fresh = run.folder.fresh();
  PageCollection& collection = pages.collection;
  const Vocabulary& vocabulary = collection.vocabulary;
  facts.pages = collection.pages.size();
  facts.stopWords = StopWordsOf(vocabulary, facts.pages, collection.forms);
  const ReservedEntries reserved = collection.signs.Finish();
  facts.reserved = reserved.numbers;
  const uint64_t firstWord = reserved.texts.size();
  facts.tokenBytes = TokenWidth(firstWord + vocabulary.words.size());
  if (facts.tokenBytes > kTokenWidthLimit ||
      collection.tokenCount * facts.tokenBytes > kPositionLimit) {
    throw IndexError(ExitStatus::kFailed,
                     "The site holds more text than one index can address. "
                     "Index its parts into several folders.");
  }
  run.progress.Begin("Sorting words", 0);
  run.summary.runs = collection.postings.runCount();
  std::optional<WeightInput> weights;
  if (ExtensionValue(run.options.config, "Ranking") != 0) {
    weights = WeightInput{
        .titles = TitleMasses(facts.pages, facts.stopWords, vocabulary, collection.forms),
        .links = collection.linkTexts.Finish(collection.addresses, vocabulary)};
  }
  const WordMapResult wordMap =
      WriteWordMap(fresh / kWordMapFileName, collection.postings, vocabulary, collection.pages,
                   facts.tokenBytes, weights.has_value() ? &*weights : nullptr);
  for (uint32_t page = 0; weights.has_value() && page < facts.pages; ++page) {
    pages.table.SetTitleMass(page, weights->titles.Of(page));
  }
  CheckStop(run.stop);
  run.progress.Begin("Writing the index", 0);
  const std::vector<uint32_t> order = DictionaryOrder(vocabulary);
  // What is made of the words alone goes on beside what needs their places.
  const SiteConfig& config = run.options.config;
  uint64_t spellingBytes = 0;
  const auto writeSpelling = [&] {
    facts.dictionary = WriteDictionary(fresh / kDictionaryFileName, reserved.texts, vocabulary,
                                       order, wordMap.offsets, run.charset);
    if (!config.spelling) return;
    const SpellingSizes spelling =
        WriteSpelling(fresh / kSpellingFileName, vocabulary, order, firstWord);
    facts.spellings = spelling.entries;
    spellingBytes = spelling.fileBytes;
    if (ExtensionValue(config, "SpellingDistance") != 0) {
      spellingBytes +=
          WriteCorrections(fresh / kCorrectionsFileName, vocabulary, order, run.charset.utf8());
    }
  };
  SideTask spelling(Jobs(run.options) > 1, writeSpelling);
  uint64_t bytes = wordMap.fileBytes;
  bytes += pages.text.Finish(fresh / kPageTextFileName, reserved, order, facts.tokenBytes);
  if (config.extensions || !config.synonyms.empty()) {
    const SynonymSizes synonyms = WriteSynonyms(
        fresh, {.vocabulary = vocabulary,
                .order = order,
                .offsets = wordMap.offsets,
                .firstWord = firstWord,
                .text = {.tokenBytes = facts.tokenBytes, .lastSign = facts.reserved.limit},
                .utf8 = run.charset.utf8(),
                .weighs = ExtensionValue(config, "Ranking") != 0,
                .findsCompounds = config.extensions,
                .isGerman = IsGerman(run.options),
                .forms = collection.forms,
                .rules = config.synonyms});
    facts.synonyms = synonyms.keys;
    bytes += synonyms.fileBytes;
  }
  spelling.Finish();
  return bytes + facts.dictionary.fileBytes + spellingBytes;
}

// Settles in the page table what is known of pages only when all are read.
void SettlePages(Run& run, SitePages& pages) {
  for (const MoreCategories& more : CategoriesOfCopies(pages.collection)) {
    pages.table.AddToCategories(more.page, more.categories);
  }
  std::vector<Finding>& warnings = run.summary.warnings;
  const FileDates& fileDates = pages.collection.fileDates;
  const std::string sharedDay = fileDates.SharedDay();
  if (!run.options.config.trustsFileDates && !sharedDay.empty() && !fileDates.pages().empty()) {
    for (const FileDate& page : fileDates.pages()) pages.table.SetTime(page.page, page.ownTime);
    warnings.push_back({Reason::kFileDatesShared, {}, sharedDay});
  }
  std::ranges::move(pages.collection.rules.Unused(), std::back_inserter(warnings));
  std::ranges::move(UnusedFields(pages.collection), std::back_inserter(warnings));
  std::ranges::move(UnusedContentRules(run.options.config, pages.collection.content),
                    std::back_inserter(warnings));
}

// The files that help a visitor beside the words. Returns the size of all.
uint64_t WriteHelp(Run& run, SitePages& pages, IndexFacts& facts) {
  const fs::path& fresh = run.folder.fresh();
  const SiteConfig& config = run.options.config;
  std::vector<Finding>& warnings = run.summary.warnings;
  uint64_t bytes = 0;
  size_t longest = 0;
  if (!config.recommended.empty()) {
    std::vector<Recommendation> recommendations;
    for (const RecommendedRule& rule : config.recommended) {
      recommendations.push_back(FindRecommended(rule, pages.collection.addresses, run.base));
    }
    RecommendedSizes sizes =
        WriteRecommended(fresh / kRecommendedFileName, recommendations, pages.table, run.charset,
                         CutsSigns(config, run.charset));
    facts.recommended = sizes.entries;
    longest = sizes.longestLine;
    bytes += sizes.fileBytes;
    std::ranges::move(sizes.unused, std::back_inserter(warnings));
  }
  facts.lineLength = KeyWordLineLength(config, longest);
  if (config.suggestions) {
    const AutocompleteSizes sizes = WriteAutocomplete(
        fresh / kAutoCompleteFileName, pages.collection.suggestions.Take(facts.stopWords),
        config.mostSuggestions, facts.lineLength, run.charset);
    facts.autocomplete = sizes.lines;
    bytes += sizes.fileBytes;
    if (run.charset.utf8() && ExtensionValue(config, "CompleteAnyWord") != 0) {
      bytes += WriteCompletions(fresh, sizes.texts);
    }
  }
  return bytes;
}

// All that a block depends on beside its page.
Fingerprint BlocksVersion(const Options& options, const std::string& base) {
  FingerprintOfAll all;
  all.Add(uint64_t{kBlockVersion});
  all.Add(TextOf(ProgramVersion(DocumentReaders().Programs())));
  all.Add(base);
  all.Add(options.maxFileMegabytes);
  all.Add(TextOf(FingerprintsOf(options.config).blocks));
  return all.Finish();
}

// The files of the new index so far.
std::vector<std::string> FilesIn(const fs::path& fresh) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(fresh)) {
    if (entry.is_regular_file()) names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

// All that an index depends on beside the pages; `fresh` holds the template and the program.
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

// What is kept of the pages, compared with those that are there; null where nothing is kept.
std::unique_ptr<PageState> OpenPageState(const Options& options, const OpenedSource& opened,
                                         const std::vector<SourceItem>& items) {
  if (options.state.empty() || !options.merge.empty()) return nullptr;
  auto state = std::make_unique<PageState>(opened.state.path / kPageStateName,
                                           BlocksVersion(options, opened.base), options.fresh,
                                           options.config.dates);
  state->Compare(*opened.source, items, !options.checkLinks.empty());
  return state;
}

// Whether the index that is there is what this run would make, and nothing else is asked of it.
bool IsThere(const Run& run, const Fingerprint& wishes) {
  const Options& options = run.options;
  return run.state != nullptr && run.state->isUnchanged() && options.report.empty() &&
         options.checkLinks.empty() && !options.dryRun &&
         run.state->IsPublished(wishes, run.folder.target());
}

// The source of a run that reads the site, or of one that merges its parts.
struct SiteSource {
  OpenedSource opened;
  const MergedParts* parts = nullptr;  // opened.source, where it is that
};

SiteSource OpenSite(const Options& options, const std::string& base, const fs::path& indexFolder,
                    Progress& progress, const volatile std::sig_atomic_t& stop) {
  SiteSource site;
  if (options.merge.empty()) {
    site.opened = OpenSource(options, base, indexFolder, progress, stop);
    return site;
  }
  auto parts = std::make_unique<MergedParts>(options.merge);
  site.parts = parts.get();
  site.opened.source = std::move(parts);
  site.opened.base = base;
  return site;
}

// Reads one part of the site, and keeps what becomes of its pages.
IndexSummary BuildPart(const Options& given, Progress& progress,
                       const volatile std::sig_atomic_t& stop) {
  Options options = given;
  const std::optional<PartNumber> part = ReadPartNumber(options.part);
  if (!part.has_value()) {
    throw IndexError(ExitStatus::kUsage,
                     "Give --part as in --part 2/7: the second of seven parts, of at most " +
                         std::to_string(kPartLimit) + ".");
  }
  const IndexCharset charset(options.config.charset);
  progress.Begin("Looking for pages", 0);
  std::error_code error;  // of a folder that need not be there
  fs::path index =
      options.out.empty() ? fs::path() : fs::weakly_canonical(fs::absolute(options.out), error);
  if (!index.empty() && !index.has_filename()) index = index.parent_path();
  const SiteSource site = OpenSite(options, CheckedBaseUrl(options.baseUrl), index, progress, stop);
  const OpenedSource& opened = site.opened;
  SiteListing listing = opened.source->List();
  PartNotes notes = {
      .part = *part,
      .list = ListFingerprintOf(listing.items),
      .base = opened.base,
      .look = LookAtSite(*opened.source, listing.items, opened.base, stop, options.config),
      .listing = {}};
  IndexSummary summary;
  Settle(notes.look, charset, options.config, summary);
  summary.siteItems = listing.items.size();
  KeepPart(*part, listing.items);
  const std::vector<SourceItem> items = std::exchange(listing.items, {});
  notes.listing = std::move(listing);
  const std::unique_ptr<PageState> state = OpenPageState(options, opened, items);
  progress.Begin("Reading pages", items.size());
  const MemoryPlan memory = PlanMemory(options.memoryMegabytes * kMegabyte, Jobs(options));
  PageReading reading({.source = *opened.source,
                       .items = items,
                       .base = opened.base,
                       .config = options.config,
                       .charset = charset,
                       .stop = stop,
                       .memory = memory});
  reading.state = state.get();
  ForEachItem(reading, Jobs(options), memory.waiting,
              [&](size_t item, Reason reason, const PageBlock& block) {
                CheckStop(stop);
                summary.sourceBytes += block.facts.fileSize;
                if (reason == Reason::kNone) ++summary.pages;
                if (reason != Reason::kNone) AddLeftOut(summary.files, reason, items[item].path);
                progress.Step(item + 1);
              });
  state->NotePart(PartText(notes));
  summary.part = std::to_string(part->number) + " of " + std::to_string(part->count);
  summary.partFolder = opened.state.path.string();
  summary.usesState = true;
  summary.keptPages = state->takenCount();
  const std::vector<Finding> faults = state->Finish();
  progress.Clear();
  if (faults.empty()) return summary;
  throw IndexError(ExitStatus::kFailed, FindingText(faults.front()) + ".");
}

IndexSummary Build(const Options& given, Progress& progress, const volatile std::sig_atomic_t& stop,
                   RunReport& report) {
  Options options = given;
  const std::string givenBase = CheckedBaseUrl(options.baseUrl);
  const IndexCharset charset(options.config.charset);
  const Language language = LoadLanguage(options.language);
  IndexFolder folder(options.out, PublishSystemOf(options, progress, stop));
  // Before the template and the program, which may take a while.
  progress.Begin("Looking for pages", 0);
  const SiteSource site = OpenSite(options, givenBase, folder.target(), progress, stop);
  const OpenedSource& opened = site.opened;
  const std::string& base = opened.base;
  AddXmlSettings(base, options.config);

  if (!options.program.empty()) InstallProgram(options.program, folder.fresh());
  Run run = {.options = options,
             .base = base,
             .charset = charset,
             .folder = folder,
             .progress = progress,
             .stop = stop,
             .report = report,
             .memory = PlanMemory(options.memoryMegabytes * kMegabyte, Jobs(options)),
             .state = nullptr,
             .parts = site.parts,
             .summary = {}};
  IndexSummary& summary = run.summary;
  const Finding templateFault = WriteTemplate(options, language.templateWords, charset, folder);
  if (templateFault.reason != Reason::kNone) summary.warnings.push_back(templateFault);
  summary.warnings.insert(summary.warnings.end(), opened.findings.begin(), opened.findings.end());
  Source& source = *opened.source;
  progress.Begin("Looking for pages", 0);
  SiteListing listing = source.List();
  const SiteLook look = site.parts != nullptr
                            ? site.parts->notes().look
                            : LookAtSite(source, listing.items, base, stop, options.config);
  Settle(look, charset, options.config, summary);
  if (site.parts != nullptr) site.parts->CheckVersion(BlocksVersion(options, base));
  const std::unique_ptr<PageState> state = OpenPageState(options, opened, listing.items);
  run.state = state.get();
  Fingerprint wishes;
  if (state != nullptr) wishes = IndexWishes(options, base, language, folder.fresh());
  if (IsThere(run, wishes)) {
    const std::unique_ptr<Settings> settings = ReadFormerSettings(folder.target());
    if (settings != nullptr) summary.pages = static_cast<uint64_t>(std::max(settings->NumPages, 0));
    summary.isUnchanged = true;
    std::ranges::move(state->Finish(), std::back_inserter(summary.warnings));
    progress.Clear();
    return summary;
  }
  SitePages pages(run);
  ReadPages(source, listing, run, pages);
  IndexFacts facts;
  uint64_t bytes = WriteWords(run, pages, facts);
  SettlePages(run, pages);
  bytes += WriteHelp(run, pages, facts);
  const PageTableWriter::Sizes table = pages.table.Finish();
  facts.pageInfoBytes = table.infoBytes;
  bytes += table.infoBytes + table.dataBytes;
  const LookupSizes lookup = WriteLookup(
      folder.fresh(), {.tokenBytes = facts.tokenBytes, .lastSign = facts.reserved.limit});
  facts.lookupGeneration = lookup.generation;
  bytes += WriteSections(folder.fresh() / kSectionsFileName, pages.collection.sections,
                         {.generation = lookup.generation,
                          .pageTextSize = pages.collection.tokenCount * facts.tokenBytes,
                          .tokenBytes = facts.tokenBytes});
  bytes += lookup.fileBytes;
  bytes += WriteSettings(folder.fresh() / kSettingsFileName, facts, options.config, charset,
                         language.strings);
  WritePublicFiles(options.config, facts.autocomplete != 0, charset, folder);
  PageCollection& collection = pages.collection;
  summary.pages = facts.pages;
  summary.words = collection.vocabulary.words.size();
  summary.occurrences = collection.tokenCount;
  summary.sourceBytes = collection.sourceBytes;
  summary.indexBytes = bytes;
  summary.metaValues = std::move(collection.metaValues);
  summary.content = {.excluded = collection.content.excluded,
                     .excludingPages = collection.content.excludingPages,
                     .chosenPages = collection.content.chosenPages};
  const Finding logFault = LogFolderFault(options.config, folder.target());
  if (logFault.reason != Reason::kNone) summary.warnings.push_back(logFault);
  // Before the index changes, so that a run that cannot write it leaves all as it was.
  WriteReport(run);
  CheckMissingPages(run, summary.pages);
  CheckBrokenLinks(run);
  CheckStop(stop);
  if (options.dryRun || report.isWanted()) {
    progress.Begin("Comparing with the index before", 0);
    summary.changes = CompareIndexes(folder.target(), folder.fresh());
  }
  summary.isDryRun = options.dryRun;
  report.Finish(summary);
  const std::vector<std::string> written = FilesIn(folder.fresh());
  if (!options.dryRun) folder.Commit();
  if (state != nullptr) {
    if (!options.dryRun && !run.mayDiffer) state->NotePublished(wishes, folder.target(), written);
    summary.usesState = true;
    summary.keptPages = state->takenCount();
    std::ranges::move(state->Finish(), std::back_inserter(summary.warnings));
  }
  progress.Clear();
  return summary;
}

}  // namespace

IndexSummary BuildIndex(const Options& options, Progress& progress,
                        const volatile std::sig_atomic_t& stop) {
  RunReport report(options, progress);
  try {
    if (!options.part.empty()) return BuildPart(options, progress, stop);
    return Build(options, progress, stop, report);
  } catch (const IndexError& error) {
    report.Fail(error.status, error.what());
    throw;
  } catch (const std::exception& error) {
    report.Fail(ExitStatus::kFailed, error.what());
    throw;
  }
}

}  // namespace vela::indexer
