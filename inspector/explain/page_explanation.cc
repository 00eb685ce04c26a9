#include "inspector/explain/page_explanation.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string_view>

#include "format/word_weight.h"
#include "index/page_data.h"
#include "inspector/findings/plain_text.h"
#include "inspector/opened/opened_index.h"
#include "inspector/show/word_listing.h"
#include "search/lookup.h"
#include "search/query.h"
#include "text/shown_numbers.h"
#include "text/wildcard.h"

namespace vela::inspector {

namespace {

constexpr size_t kWordsOfPattern = 5;  // told of

struct NotFoundRow {
  std::string_view code;
  std::string_view text;
};
constexpr NotFoundRow kNotFoundRows[] = {
    {"found", "it is found"},
    {"nothing_asked", "the query asks for nothing"},
    {"excluded", "it has a word that the query excludes"},
    {"no_term", "it has no word of the query"},
    {"site", "its address does not hold what the query restricts addresses to"},
    {"not_all_terms", "all words are asked for, and it lacks some"},
    {"category", "it is in none of the categories asked for"},
    {"date", "its date is not in the range asked for"},
    {"counted_down", "exclusions have counted the pages found down to none"},
    {"beyond_limit", "MaxResultsPerQuery pages or more come before it"},
};
static_assert(std::size(kNotFoundRows) == static_cast<size_t>(NotFound::kBeyondLimit) + 1);

const NotFoundRow& RowOf(NotFound why) { return kNotFoundRows[static_cast<size_t>(why)]; }

// The record of the page in a list that may be in any order.
std::optional<WordMapRecord> FindRecord(const WordList& list, uint32_t page) {
  for (int32_t i = 0; i < list.size(); ++i) {
    if (RecordAt(list, i).page == page) return RecordAt(list, i);
  }
  return {};
}

WordList ListOfWord(const SearchedIndex& index, int32_t number) {
  const int64_t offset = index.dictionary.EntryAt(number).offset;
  WordList list;
  if (offset == kNoWordList ||
      FindWordList(index.files.wordMap.bytes(), offset, list).status != TermStatus::kOk) {
    return {};
  }
  return list;
}

// Tells of the word where the page has it.
bool AddWord(const SearchedIndex& index, int32_t number, uint32_t page, TermGain& gain) {
  const auto record = FindRecord(ListOfWord(index, number), page);
  if (!record.has_value()) return false;
  gain.why.push_back(Printable(index.dictionary.WordAt(number)) + ": " +
                     RecordText(*record, index.settings));
  return true;
}

void AddPattern(const SearchedIndex& index, uint32_t page, TermGain& gain) {
  const bool foldCase = LowersQueries(index.settings);
  size_t told = 0;
  for (int32_t number = FirstSearchedWord(index.settings);
       number < index.dictionary.size() && told < kWordsOfPattern; ++number) {
    if (MatchesWord(index.dictionary, number, gain.word, foldCase) &&
        AddWord(index, number, page, gain)) {
      ++told;
    }
  }
}

void AddAlternatives(ExplainedSearch& search, int32_t term, uint32_t page, TermGain& gain) {
  for (const Alternative& each : search.alternatives()) {
    if (each.term != term) continue;
    const auto record = FindRecord(search.PagesOf(each), page);
    if (!record.has_value()) continue;
    gain.why.push_back(Printable(each.synonym.text) + ", another word for it, " +
                       std::to_string(each.synonym.weight) +
                       " of 100: " + RecordText(*record, search.index().settings));
  }
}

TermGain::Kind KindOf(const SearchedTerm& term, const Settings& settings) {
  if (term.shown.empty() || static_cast<int64_t>(term.shown.size()) < settings.MinWordLen) {
    return TermGain::Kind::kShort;
  }
  if (ReadSiteRestriction(View(term.word)).active) return TermGain::Kind::kSite;
  if (term.shown.starts_with('-')) return TermGain::Kind::kExclusion;
  if (IsPhrase(View(term.word), settings)) return TermGain::Kind::kPhrase;
  return HasWildcard(View(term.word)) ? TermGain::Kind::kPattern : TermGain::Kind::kWord;
}

// What tells why the page has the term.
void AddReasons(ExplainedSearch& search, int32_t term, uint32_t page, TermGain& gain) {
  const SearchedIndex& index = search.index();
  if (gain.kind == TermGain::Kind::kPhrase) {
    gain.why.emplace_back("its words stand one after another");
    return;
  }
  if (HasWildcard(gain.word)) return AddPattern(index, page, gain);
  const int32_t number = index.dictionary.FindExact(gain.word, FirstSearchedWord(index.settings));
  if (number >= 0) AddWord(index, number, page, gain);
  AddAlternatives(search, term, page, gain);
}

std::vector<TermGain> GainsOf(ExplainedSearch& search, const std::vector<PageState>& trace,
                              uint32_t page) {
  std::vector<TermGain> gains;
  PageState former;
  const TermSearch& terms = search.run().terms;
  for (size_t i = 0; i < trace.size(); ++i) {
    const SearchedTerm& term = terms.terms[i];
    TermGain& gain = gains.emplace_back();
    gain.shown = term.shown;
    gain.word = View(term.word);
    gain.kind = KindOf(term, search.index().settings);
    gain.records = term.records;
    gain.has = trace[i].match.termsMatched != former.match.termsMatched;
    gain.before = former.match.score;
    gain.after = trace[i].match.score;
    if (gain.has) AddReasons(search, static_cast<int32_t>(i), page, gain);
    former = trace[i];
  }
  return gains;
}

bool IsInCategories(const ExplainedSearch& search, uint32_t page) {
  const SearchRequest& request = search.request();
  if (SearchesAllCategories(request)) return true;
  const SearchedIndex& index = search.index();
  return std::ranges::any_of(request.categories, [&](int32_t category) {
    return TestCategory(index.files.pages, index.settings, page, category) == CategoryTest::kIn;
  });
}

NotFound WhyNotFound(const ExplainedSearch& search, const PageExplanation& explanation) {
  const SearchRun& run = search.run();
  const PageMatch& match = explanation.state.match;
  const uint32_t page = explanation.page;
  if (search.query().terms.terms.empty() || search.query().terms[0].empty()) {
    return NotFound::kNothingAsked;
  }
  const bool isExcluded = std::ranges::any_of(explanation.terms, [](const TermGain& gain) {
    return gain.kind == TermGain::Kind::kExclusion && gain.has;
  });
  if (!run.everyPage && isExcluded) return NotFound::kExcluded;
  if (!run.everyPage && (match.score == 0 || match.termsMatched == 0)) return NotFound::kNoTerm;
  if (run.filters.site.active && !PassesSiteRestriction(run.filters, page)) return NotFound::kSite;
  if (search.request().andMode == 1 &&
      static_cast<int32_t>(match.termsInOrder) < run.effectiveTerms) {
    return NotFound::kNotAllTerms;
  }
  if (!IsInCategories(search, page)) return NotFound::kCategory;
  if (!PassesDateRange(run.filters, page)) return NotFound::kDate;
  return run.matches.resultCount == 0 ? NotFound::kCountedDown : NotFound::kBeyondLimit;
}

std::string FactorText(uint32_t factor) {
  char text[20];
  snprintf(text, sizeof text, "%.3f", static_cast<double>(factor) / kOneFactor);
  return text;
}

std::string WeighedSumText(const SearchRun& run, const PageExplanation& explanation) {
  const PageState& state = explanation.state;
  const size_t found = state.weight.found;
  const size_t near = std::min<size_t>(state.weight.near, kWeighedTerms);
  std::string text =
      "its words weigh " + std::to_string(state.match.score) + ", times " +
      FactorText(run.weights.foundFactors[found]) + " for " + CountOfText(found, "term", "terms") +
      " of " + std::to_string(run.effectiveTerms) + ", times " +
      FactorText(run.weights.nearFactors[near]) + " for " + CountOfText(near, "term", "terms") +
      " near another: " + std::to_string(explanation.wordsScore) + ", in quarters";
  text += "\n  its title adds " + std::to_string(explanation.titleScore);
  if (state.weight.titleTerms != 0) {
    text += ", with " +
            CountOfText(static_cast<uint64_t>(std::popcount(state.weight.titleTerms)), "term",
                        "terms") +
            " of the query in it";
  }
  return text;
}

std::string PlainSumText(const ExplainedSearch& search, const PageExplanation& explanation) {
  const PageMatch& match = explanation.state.match;
  std::string text = "its words score " + std::to_string(match.score);
  if (explanation.key != match.score) {
    text += ", and " + std::to_string(match.termsMatched - 1) + " times " +
            std::to_string(search.run().matches.maxScore) + ", the highest of any page, for the " +
            std::to_string(match.termsMatched) +
            " words matched: " + std::to_string(explanation.key);
  }
  char factor[40];
  snprintf(factor, sizeof factor, "%.4f",
           explanation.key == 0 ? 0.0 : static_cast<double>(explanation.score) / explanation.key);
  return text + "; times " + factor + " for words in the same blocks of its text (mask " +
         std::to_string(match.proximityMask) + ")";
}

std::string GainText(const TermGain& gain) {
  std::string text = "  " + Printable(gain.shown);
  if (gain.kind != TermGain::Kind::kExclusion && gain.word != gain.shown && !gain.word.empty()) {
    text += " (" + Printable(gain.word) + ")";
  }
  switch (gain.kind) {
    case TermGain::Kind::kShort:
      return text + ": too short, passed over\n";
    case TermGain::Kind::kSite:
      return text + ": restricts the addresses\n";
    case TermGain::Kind::kExclusion:
      text += gain.has ? ": the page has it and is excluded" : ": the page does not have it";
      break;
    default:
      text += gain.has ? ": +" + std::to_string(int64_t{gain.after} - gain.before)
                       : ": the page does not have it";
      break;
  }
  text += ", " +
          CountOfText(static_cast<uint64_t>(std::max<int64_t>(gain.records, 0)), "page has it",
                      "pages have it") +
          "\n";
  for (const std::string& why : gain.why) text += "    " + why + "\n";
  return text;
}

}  // namespace

std::string_view NotFoundCode(NotFound why) { return RowOf(why).code; }

PageExplanation ExplainPage(ExplainedSearch& search, uint32_t page) {
  const SearchRun& run = search.run();
  const SearchedIndex& index = search.index();
  PageExplanation explanation;
  explanation.page = page;
  explanation.date = PageDateTime(index.files.pages, page);
  explanation.boost = PageBoost(index.files.pages, page);
  const std::vector<PageState> trace = search.TraceOf(page);
  if (!trace.empty()) explanation.state = trace.back();
  explanation.terms = GainsOf(search, trace, page);
  explanation.rank = search.RankOf(page);
  if (explanation.rank == 0) {
    explanation.notFound = WhyNotFound(search, explanation);
    return explanation;
  }
  explanation.score = run.results.entries[explanation.rank - 1].score;
  explanation.key = run.matches.pages[page].score;
  if (search.Weighs()) {
    PageWeight words = explanation.state.weight;
    words.titleTerms = 0;
    explanation.wordsScore =
        WeighedScore(run.weights, words, explanation.state.match.score, [] { return uint32_t{0}; });
    explanation.titleScore = TitleScore(run.weights, explanation.state.weight.titleTerms,
                                        PageTitleMass(index.files.pages, page));
  }
  return explanation;
}

std::string ExplanationText(const ExplainedSearch& search, const PageExplanation& explanation) {
  const SearchedIndex& index = search.index();
  const SearchRun& run = search.run();
  std::string_view address;
  static_cast<void>(ReadPageUrl(index.files.pageData.bytes(),
                                PageDataOffset(index.files.pages, explanation.page), address));
  std::string text = "page " + std::to_string(explanation.page) + ", " + Printable(address) + "\n";
  if (explanation.rank == 0) {
    text.append("  is not found: ").append(RowOf(explanation.notFound).text).append("\n");
  } else {
    text += "  is result " + CountText(explanation.rank) + " of " +
            CountText(static_cast<uint64_t>(run.results.size())) + ", with a score of " +
            std::to_string(explanation.score) + "\n";
    const int32_t shown = index.settings.MaxResultsPerQuery;
    if (shown >= 0 && explanation.rank > static_cast<size_t>(shown)) {
      text += "  is behind the " + CountOfText(static_cast<uint64_t>(shown), "result", "results") +
              " that can be shown (MaxResultsPerQuery)\n";
    }
  }
  for (const TermGain& gain : explanation.terms) text += GainText(gain);
  if (explanation.boost != 0 && explanation.boost != 10) {
    text += "  scores of its words are multiplied by " + std::to_string(explanation.boost) +
            " tenths\n";
  }
  if (explanation.rank == 0) return text;
  text += "  " +
          (search.Weighs() ? WeighedSumText(run, explanation) : PlainSumText(search, explanation)) +
          "\n";
  return text;
}

void WriteExplanation(const ExplainedSearch& search, const PageExplanation& explanation,
                      JsonText& json) {
  const SearchedIndex& index = search.index();
  std::string_view address;
  static_cast<void>(ReadPageUrl(index.files.pageData.bytes(),
                                PageDataOffset(index.files.pages, explanation.page), address));
  json.Number("page", explanation.page).Text("address", address);
  json.Flag("found", explanation.rank != 0);
  if (explanation.rank == 0) {
    json.Text("reason", NotFoundCode(explanation.notFound));
  } else {
    json.Number("rank", explanation.rank).Number("score", explanation.score);
    json.Number("sum", explanation.state.match.score);
    if (search.Weighs()) {
      json.Number("words_score", explanation.wordsScore);
      json.Number("title_score", explanation.titleScore);
    } else {
      json.Number("key", explanation.key);
    }
  }
  json.Number("date", explanation.date).Number("boost", explanation.boost).BeginArray("terms");
  for (const TermGain& gain : explanation.terms) {
    json.BeginObject().Text("term", gain.shown).Text("word", gain.word);
    json.Flag("has", gain.has).Number("before", gain.before).Number("after", gain.after);
    json.Number("records", gain.records).BeginArray("why");
    for (const std::string& why : gain.why) json.Text({}, why);
    json.EndArray().EndObject();
  }
  json.EndArray();
}

std::string OrderText(const ExplainedSearch& search, const PageExplanation& before,
                      const PageExplanation& after) {
  const int32_t sort = search.request().sort;
  const bool byDate = search.index().settings.UseDateTime == 1 &&
                      (sort == kSortNewestFirst || sort == kSortOldestFirst);
  if (byDate && before.date != after.date) {
    return "its date is " + DateText(before.date) + ", not " + DateText(after.date);
  }
  if (before.score != after.score) {
    return "its score is " + std::to_string(before.score) + ", not " + std::to_string(after.score);
  }
  return "its score is the same, and its number in the index lower";
}

}  // namespace vela::inspector
