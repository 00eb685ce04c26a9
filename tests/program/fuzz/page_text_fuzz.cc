// page_text_fuzz.cc: the text of the pages: its tokens, the passages taken from it, and phrases in
// it. Input: a line with DictIDLen, ContextSize, MaxContextKeywords, the matched terms and three
// positions, a line with a phrase, then the file.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "index/dictionary.h"
#include "index/page_text.h"
#include "output/context_text.h"
#include "program/fuzz/check.h"
#include "program/fuzz/term_list.h"
#include "program/fuzz/written.h"
#include "search/highlight_terms.h"
#include "search/passages.h"
#include "search/phrase.h"
#include "search/snippets.h"

namespace vela::fuzz {
namespace {

// Two marks that end a run, then ".", "(", "-" as the last reserved words.
constexpr std::string_view kWords =
    "0 -1\n1 -1\n. -1\n( -1\n- -1\nbig 0 1\nBig\ncat 0\nof 0 2\nOf\nOF\nnew 0\n";
constexpr int32_t kReservedLimit = 4;
constexpr std::string_view kOpen = "<vela:highlight>";
constexpr std::string_view kClose = "</vela:highlight>";

struct Input {
  int32_t matched = 0;
  unsigned positions[3] = {};
  std::string_view phrase;
  std::string_view file;
};

bool ReadInput(std::string_view text, Settings& settings, Input& input) {
  const std::string numbers(TakeLine(text));
  if (sscanf(numbers.c_str(), "%d %d %d %d %u %u %u", &settings.DictIDLen, &settings.ContextSize,
             &settings.MaxContextKeywords, &input.matched, &input.positions[0], &input.positions[1],
             &input.positions[2]) != 7 ||
      input.matched < 1) {
    return false;
  }
  settings.DictIDLen = std::clamp(settings.DictIDLen, 1, 5);
  // No passage comes near its longest, so that marks never cut one short.
  settings.ContextSize = std::min(settings.ContextSize, 40);
  settings.MaxContextKeywords = std::min(settings.MaxContextKeywords, 100);
  settings.NumKeywords = 9;
  settings.OutputBasewordBufferSize = 1000;
  settings.OutputVariantBufferSize = 1000;
  settings.DictReservedLimit = kReservedLimit;
  settings.DictReservedSuffixes = 2;
  settings.DictReservedPrefixes = 3;
  settings.DictReservedNoSpaces = 4;
  settings.ToLowerSearchWords = 1;
  settings.XMLHighlight = 1;
  settings.MaxSearchTime = 30;
  input.phrase = TakeLine(text);
  input.file = text;
  return true;
}

// Every token lies where arithmetic puts it, whatever was read before.
void CheckTokens(PageTextReader& reader, std::string_view file) {
  const auto size = static_cast<size_t>(reader.tokenSize);
  SeekPageText(reader, file.size() / 2);
  PageTextToken token;
  (void)ReadPageTextToken(reader, token);
  SeekPageText(reader, 0);
  for (size_t at = 0; at + size <= file.size(); at += size) {
    VELA_CHECK(ReadPageTextToken(reader, token) == reader.tokenSize);
    uint32_t word = 0;
    for (size_t i = size - 1; i-- > 0;) {
      word = word << 8 | static_cast<unsigned char>(file[at + i]);
    }
    VELA_CHECK(token.word == word);
    VELA_CHECK(token.variant == static_cast<unsigned char>(file[at + size - 1]));
  }
  VELA_CHECK(ReadPageTextToken(reader, token) == 0 && token.word == 0);
}

void CheckPieces(const SnippetSource& source, const ResultEntry& entry) {
  SnippetWalk walk = StartSnippets(source.settings, entry);
  SnippetPiece piece;
  int32_t pieces = 0;
  while (NextPiece(walk, source, entry, piece) == SnippetStatus::kPiece) {
    ++pieces;
    VELA_CHECK(pieces <= source.settings.MaxContextKeywords);
    VELA_CHECK(static_cast<uint32_t>(pieces) <= entry.termsMatched);
    VELA_CHECK(piece.count <= std::max(walk.wordsPerPiece, 0));
    bool isOpen = false;
    for (int32_t i = 0; i < piece.count; ++i) {
      const SnippetSlot& slot = piece.slots[static_cast<size_t>(i)];
      VELA_CHECK(slot.word > 1 && slot.word < source.settings.NumKeywords);
      VELA_CHECK(slot.mark != SlotMark::kWhole && slot.mark != SlotMark::kOpen ? true : !isOpen);
      VELA_CHECK(slot.mark != SlotMark::kClose || isOpen);
      if (slot.mark == SlotMark::kOpen) isOpen = true;
      if (slot.mark == SlotMark::kClose) isOpen = false;
    }
    VELA_CHECK(!isOpen);
  }
}

// What is planned lies in the page text, and is marked like any piece.
void CheckPlan(const SnippetSource& source, const ResultEntry& entry, std::string_view file,
               const Dictionary& dictionary) {
  TermList list;
  FillTerms(list, {"big", "new cat", "-of", "n*"});
  TermSearch search;
  VELA_CHECK(StartTermSearch(search, list, source.settings));
  PassageWords words;
  words.Collect({search.terms.data(), search.terms.size()}, dictionary, source.settings);
  PassagePlan plan;
  PlanPassages(
      {.settings = source.settings, .dictionary = dictionary, .pageText = file, .words = words},
      entry, plan);
  VELA_CHECK(plan.count <= static_cast<int32_t>(PassagePlan::kPieceLimit));
  for (int32_t i = 0; i < plan.count; ++i) {
    const PassagePiece& piece = plan.pieces[static_cast<size_t>(i)];
    VELA_CHECK(piece.start < file.size());
    VELA_CHECK(piece.tokens <= source.settings.ContextSize);
  }
  const SnippetSource planned = {.settings = source.settings,
                                 .dictionary = dictionary,
                                 .terms = source.terms,
                                 .marksWords = true,
                                 .plan = &plan,
                                 .text = source.text};
  SnippetWalk walk = StartSnippets(source.settings, entry);
  SnippetPiece piece;
  int32_t pieces = 0;
  while (NextPiece(walk, planned, entry, piece) == SnippetStatus::kPiece) {
    ++pieces;
    for (int32_t i = 0; i < piece.count; ++i) {
      const SnippetSlot& slot = piece.slots[static_cast<size_t>(i)];
      VELA_CHECK(slot.word > 1 && slot.word < dictionary.size());
    }
  }
  VELA_CHECK(pieces <= plan.count);
}

std::string Context(const SnippetSource& source, const ResultEntry& entry) {
  return Written([&](Response& response) { WriteContextXml(response, source, entry, "big cat"); });
}

std::string WithoutMarks(std::string text) {
  for (const std::string_view mark : {kOpen, kClose}) {
    for (size_t at = 0; (at = text.find(mark, at)) != text.npos;) text.erase(at, mark.size());
  }
  return text;
}

// A phrase that is found stands at the position it was found at.
void CheckPhrase(Phrase& phrase, const Settings& settings, PageTextReader& text,
                 const Input& input) {
  if (phrase.words.empty()) return;
  for (const unsigned position : input.positions) {
    PhraseBudget budget;
    budget.maxSeeks = 1;
    budget.deadline = 1e18;
    budget.now = [] { return 0.0; };
    WordMapRecord candidate;
    candidate.score = static_cast<uint32_t>(input.matched % 256);
    candidate.proximity = 1;
    candidate.position = position;
    WordMapRecord found;
    const CandidateResult result =
        TestCandidate(phrase, candidate, settings, TextPairs(), text, budget, found);
    VELA_CHECK(result != CandidateResult::kStop);
    if (result != CandidateResult::kFound) continue;
    VELA_CHECK(found.position >= candidate.position);
    SeekPageText(text, found.position);
    for (size_t k = 0; k < phrase.words.size(); ++k) {
      PageTextToken token;
      do {
        VELA_CHECK(ReadPageTextToken(text, token) == text.tokenSize);
        VELA_CHECK(token.word > 1);
      } while (token.word <= static_cast<uint32_t>(kReservedLimit) && k != 0 &&
               phrase.words[k].number != static_cast<int32_t>(token.word));
      VELA_CHECK(static_cast<int32_t>(token.word) == phrase.words[k].number);
    }
  }
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  const auto settings = std::make_unique<Settings>();
  Input input;
  if (!ReadInput(Text(data, size), *settings, input)) return 0;

  const LookupFile noLookup;
  Dictionary dictionary;
  VELA_CHECK(dictionary.Load(kWords, *settings, noLookup).status == DictionaryStatus::kOk);
  TermList words;
  FillTerms(words, {"cat", input.phrase});
  HighlightTerms terms;
  VELA_CHECK(CollectHighlightTerms(terms, words, true));

  PageTextReader text;
  text.file = input.file;
  text.tokenSize = settings->DictIDLen;
  CheckTokens(text, input.file);

  ResultEntry entry;
  entry.termsMatched = static_cast<uint32_t>(input.matched);
  entry.firstPosition = input.positions[0];
  entry.secondPosition = input.positions[1];
  entry.thirdPosition = input.positions[2];
  SnippetSource source = {.settings = *settings,
                          .dictionary = dictionary,
                          .terms = terms,
                          .marksWords = true,
                          .text = text};
  CheckPieces(source, entry);
  CheckPlan(source, entry, input.file, dictionary);
  const std::string marked = Context(source, entry);
  source.marksWords = false;
  VELA_CHECK(WithoutMarks(marked) == Context(source, entry));

  // Only words of one list position are candidates, so the lists themselves may stay empty.
  Phrase phrase;
  const std::string none(4, '\0');
  VELA_CHECK(PreparePhrase(phrase, input.phrase, dictionary, none).status == TermStatus::kOk);
  CheckPhrase(phrase, *settings, text, input);
  return 0;
}
