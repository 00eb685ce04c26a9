#include "indexer/index_files.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "format/index_directory.h"
#include "indexer/collect/recommended_pages.h"
#include "indexer/collect/stop_words.h"
#include "indexer/config/extensions.h"
#include "indexer/extract/content_choice.h"
#include "indexer/memory/freed_memory.h"
#include "indexer/page_reading.h"
#include "indexer/report/index_error.h"
#include "indexer/run_conditions.h"
#include "indexer/side_task.h"
#include "indexer/write/autocomplete_writer.h"
#include "indexer/write/completions_writer.h"
#include "indexer/write/corrections_writer.h"
#include "indexer/write/dictionary_writer.h"
#include "indexer/write/lookup_writer.h"
#include "indexer/write/pair_table.h"
#include "indexer/write/recommended_writer.h"
#include "indexer/write/sections_writer.h"
#include "indexer/write/spelling_writer.h"
#include "indexer/write/synonyms_writer.h"
#include "indexer/write/word_map_writer.h"
#include "text/stemmer.h"

namespace vela::indexer {

namespace {

namespace fs = std::filesystem;

// Whether compounds are written as one word, as German does.
bool IsGerman(const Options& options) {
  return options.config.stemming == kStemGerman ||
         (options.config.stemming < 0 && options.language == "german");
}

// The words of the site as its files have them.
struct WordOrder {
  ReservedEntries reserved;
  uint64_t firstWord = 0;         // its number in the dictionary
  std::vector<uint32_t> order;    // DictionaryOrder
  std::vector<uint64_t> offsets;  // of the lists in the word map
};

TextShape ShapeOf(const IndexFacts& facts) {
  return {.tokenBytes = facts.tokenBytes, .lastSign = facts.reserved.limit};
}

// Fills what is known of the words when all pages are read. Throws IndexError when an index cannot
// address all their text.
void SetWordFacts(const PageCollection& collection, WordOrder& words, IndexFacts& facts) {
  words.reserved = collection.signs.Finish();
  words.firstWord = words.reserved.texts.size();
  facts.reserved = words.reserved.numbers;
  facts.tokenBytes = TokenWidth(words.firstWord + collection.vocabulary.words.size());
  if (facts.tokenBytes > kTokenWidthLimit ||
      collection.tokenCount * facts.tokenBytes > kPositionLimit) {
    throw IndexError(ExitStatus::kFailed,
                     "The site holds more text than one index can address. "
                     "Index its parts into several folders.");
  }
}

// The first word of the dictionary that is on too few pages for its pairs to be written.
uint32_t PairedWords(const Vocabulary& vocabulary, const WordOrder& words) {
  const auto behind = std::ranges::partition_point(words.order, [&](uint32_t word) {
    return vocabulary.words[word].pageCount > kMostUnpairedPages;
  });
  return static_cast<uint32_t>(words.firstWord +
                               static_cast<uint64_t>(behind - words.order.begin()));
}

// Settles in the page table what is known of pages only when all are read.
void SettlePages(IndexRun& run, SitePages& pages) {
  for (const MoreCategories& more : CategoriesOfCopies(pages.collection)) {
    pages.table.AddToCategories(more.page, more.categories);
  }
  std::vector<Finding>& warnings = run.summary.warnings;
  const FileDates& fileDates = pages.collection.fileDates;
  const std::string sharedDay = fileDates.SharedDay();
  if (!run.options.config.trustsFileDates && !sharedDay.empty()) {
    bool isSome = false;
    fileDates.ForEachPage([&](const FileDate& page) {
      pages.table.SetTime(page.page, page.ownTime);
      isSome = true;
    });
    if (isSome) warnings.push_back({Reason::kFileDatesShared, {}, sharedDay});
  }
  std::ranges::move(pages.collection.rules.Unused(), std::back_inserter(warnings));
  std::ranges::move(UnusedFields(pages.collection), std::back_inserter(warnings));
  std::ranges::move(UnusedContentRules(run.options.config, pages.collection.content),
                    std::back_inserter(warnings));
}

// Writes the word map, and into the page table what it says of titles. Returns its size.
uint64_t WriteLists(IndexRun& run, SitePages& pages, size_t tokenBytes,
                    std::optional<WeightInput>& weights, WordOrder& words) {
  PageCollection& collection = pages.collection;
  WordMapResult wordMap = WriteWordMap(run.folder.fresh() / kWordMapFileName, collection.postings,
                                       collection.vocabulary, collection.pages, tokenBytes,
                                       weights.has_value() ? &*weights : nullptr);
  for (uint32_t page = 0; weights.has_value() && page < collection.pages.size(); ++page) {
    pages.table.SetTitleMass(page, weights->titles.Of(page));
  }
  collection.pages = {};
  weights.reset();
  words.offsets = std::move(wordMap.offsets);
  return wordMap.fileBytes;
}

uint64_t WriteRecommendations(IndexRun& run, SitePages& pages, IndexFacts& facts) {
  const SiteConfig& config = run.options.config;
  RecommendedSizes sizes;
  if (!config.recommended.empty()) {
    std::vector<Recommendation> recommendations;
    for (const RecommendedRule& rule : config.recommended) {
      recommendations.push_back(FindRecommended(rule, pages.collection.addresses, run.base));
    }
    sizes = WriteRecommended(run.folder.fresh() / kRecommendedFileName, recommendations,
                             pages.table, run.charset, CutsSigns(config, run.charset));
    facts.recommended = sizes.entries;
    std::ranges::move(sizes.unused, std::back_inserter(run.summary.warnings));
  }
  facts.lineLength = KeyWordLineLength(config, sizes.longestLine);
  return sizes.fileBytes;
}

// What is made of the words alone. Returns the size of all.
uint64_t WriteDictionaries(const IndexRun& run, const Vocabulary& vocabulary,
                           const WordOrder& words, IndexFacts& facts) {
  const fs::path& fresh = run.folder.fresh();
  const SiteConfig& config = run.options.config;
  facts.dictionary = WriteDictionary(fresh / kDictionaryFileName, words.reserved.texts, vocabulary,
                                     words.order, words.offsets, run.charset);
  uint64_t bytes = facts.dictionary.fileBytes;
  if (!config.spelling) return bytes;
  const SpellingSizes spelling =
      WriteSpelling(fresh / kSpellingFileName, vocabulary, words.order, words.firstWord);
  facts.spellings = spelling.entries;
  bytes += spelling.fileBytes;
  if (ExtensionValue(config, "SpellingDistance") != 0) {
    bytes +=
        WriteCorrections(fresh / kCorrectionsFileName, vocabulary, words.order, run.charset.utf8());
  }
  return bytes;
}

uint64_t WriteSuggestions(const IndexRun& run, SuggestionList& suggestions, IndexFacts& facts) {
  const fs::path& fresh = run.folder.fresh();
  const SiteConfig& config = run.options.config;
  if (!config.suggestions) return 0;
  const AutocompleteSizes sizes =
      WriteAutocomplete(fresh / kAutoCompleteFileName, suggestions.Take(facts.stopWords),
                        config.mostSuggestions, facts.lineLength, run.charset);
  facts.autocomplete = sizes.lines;
  const bool completesAnyWord =
      run.charset.utf8() && ExtensionValue(config, "CompleteAnyWord") != 0;
  return sizes.fileBytes + (completesAnyWord ? WriteCompletions(fresh, sizes.texts) : 0);
}

// The files that belong to others, which are complete.
uint64_t WriteSideFiles(const IndexRun& run, PageCollection& collection, PairTable& pairs,
                        IndexFacts& facts) {
  const fs::path& fresh = run.folder.fresh();
  const LookupSizes lookup = WriteLookup(fresh, ShapeOf(facts), facts.pairedWords, pairs);
  facts.lookupGeneration = lookup.generation;
  return lookup.fileBytes + WriteSections(fresh / kSectionsFileName, collection.sections,
                                          {.generation = lookup.generation,
                                           .pageTextSize = collection.tokenCount * facts.tokenBytes,
                                           .tokenBytes = facts.tokenBytes});
}

uint64_t WriteOtherWords(const IndexRun& run, PageCollection& collection, const WordOrder& words,
                         IndexFacts& facts) {
  const SiteConfig& config = run.options.config;
  if (!config.extensions && config.synonyms.empty()) return 0;
  const SynonymSizes synonyms =
      WriteSynonyms(run.folder.fresh(), {.vocabulary = collection.vocabulary,
                                         .order = words.order,
                                         .offsets = words.offsets,
                                         .firstWord = words.firstWord,
                                         .text = ShapeOf(facts),
                                         .utf8 = run.charset.utf8(),
                                         .weighs = ExtensionValue(config, "Ranking") != 0,
                                         .findsCompounds = config.extensions,
                                         .isGerman = IsGerman(run.options),
                                         .forms = collection.forms,
                                         .rules = config.synonyms});
  facts.synonyms = synonyms.keys;
  return synonyms.fileBytes;
}

}  // namespace

// Twice two threads have about as much to do, and need nothing of each other. In the end there are
// three, of which one needs what another has made before it is done itself.
uint64_t WriteIndexFiles(IndexRun& run, SitePages& pages, IndexFacts& facts) {
  const bool aside = JobsOf(run.options) > 1;
  PageCollection& collection = pages.collection;
  run.progress.Begin("Sorting words", 0);
  run.summary.runs = collection.postings.runCount();
  run.summary.words = collection.vocabulary.words.size();
  facts.pages = collection.pages.size();
  WordOrder words;
  SetWordFacts(collection, words, facts);

  SideTask ordering(aside, [&] { words.order = DictionaryOrder(collection.vocabulary); });
  facts.stopWords = StopWordsOf(collection.vocabulary, facts.pages, collection.forms);
  std::optional<WeightInput> weights;
  if (ExtensionValue(run.options.config, "Ranking") != 0) {
    weights = WeightInput{
        .titles =
            TitleMasses(facts.pages, facts.stopWords, collection.vocabulary, collection.forms),
        .links = collection.linkTexts.Finish(collection.addresses, collection.vocabulary)};
  }
  ordering.Finish();
  facts.pairedWords = PairedWords(collection.vocabulary, words);

  uint64_t textBytes = 0;
  SideTask text(aside, [&] {
    textBytes = pages.text.Finish(run.folder.fresh() / kPageTextFileName, words.reserved,
                                  words.order, facts.tokenBytes);
  });
  uint64_t bytes = WriteLists(run, pages, facts.tokenBytes, weights, words);
  SettlePages(run, pages);
  bytes += WriteRecommendations(run, pages, facts);
  const PageTableWriter::Sizes table = pages.table.Finish();
  facts.pageInfoBytes = table.infoBytes;
  text.Finish();
  bytes += textBytes + table.infoBytes + table.dataBytes;
  CheckStop(run.stop);
  run.keeper.Check();

  run.progress.Begin("Writing the index", 0);
  std::optional<PairTable> pairs;
  SideTask pairing(aside, [&, shape = ShapeOf(facts), pairedWords = facts.pairedWords] {
    pairs.emplace(run.folder.fresh(), shape, pairedWords);
  });
  uint64_t sideBytes = 0;
  SideTask beside(aside, [&] {
    sideBytes = WriteDictionaries(run, collection.vocabulary, words, facts);
    sideBytes += WriteSuggestions(run, collection.suggestions, facts);
    pairing.Finish();
    sideBytes += WriteSideFiles(run, collection, *pairs, facts);
  });
  bytes += WriteOtherWords(run, collection, words, facts);
  beside.Finish();
  return bytes + sideBytes;
}

}  // namespace vela::indexer
