#include "indexer/index_files.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "format/index_directory.h"
#include "indexer/collect/recommended_pages.h"
#include "indexer/collect/stop_words.h"
#include "indexer/config/extensions.h"
#include "indexer/extract/content_choice.h"
#include "indexer/freed_memory.h"
#include "indexer/page_reading.h"
#include "indexer/report/index_error.h"
#include "indexer/run_conditions.h"
#include "indexer/side_task.h"
#include "indexer/write/autocomplete_writer.h"
#include "indexer/write/completions_writer.h"
#include "indexer/write/corrections_writer.h"
#include "indexer/write/dictionary_writer.h"
#include "indexer/write/recommended_writer.h"
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

}  // namespace

uint64_t WriteWords(IndexRun& run, SitePages& pages, IndexFacts& facts) {
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
  // The text of the pages is written beside the word map, as neither needs the other.
  const std::vector<uint32_t> order = DictionaryOrder(vocabulary);
  uint64_t bytes = 0;
  SideTask text(JobsOf(run.options) > 1, [&] {
    bytes = pages.text.Finish(fresh / kPageTextFileName, reserved, order, facts.tokenBytes);
  });
  const WordMapResult wordMap =
      WriteWordMap(fresh / kWordMapFileName, collection.postings, vocabulary, collection.pages,
                   facts.tokenBytes, weights.has_value() ? &*weights : nullptr);
  for (uint32_t page = 0; weights.has_value() && page < facts.pages; ++page) {
    pages.table.SetTitleMass(page, weights->titles.Of(page));
  }
  collection.pages = {};
  weights.reset();
  CheckStop(run.stop);
  run.progress.Begin("Writing the index", 0);
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
  SideTask spelling(JobsOf(run.options) > 1, writeSpelling);
  text.Finish();
  bytes += wordMap.fileBytes;
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
  run.summary.words = vocabulary.words.size();
  collection.vocabulary = {};
  ReturnFreedMemory();  // many words take more than all that follows
  return bytes + facts.dictionary.fileBytes + spellingBytes;
}

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

uint64_t WriteHelp(IndexRun& run, SitePages& pages, IndexFacts& facts) {
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

}  // namespace vela::indexer
