#include "inspector/show/word_listing.h"

#include "format/word_map.h"
#include "format/word_weight.h"
#include "inspector/findings/plain_text.h"
#include "inspector/show/page_name.h"
#include "search/lookup.h"
#include "search/term_search.h"
#include "text/lower.h"

namespace vela::inspector {

namespace {

// The blocks of a page's text, from its beginning on: "x" for one that has the word.
std::string BlocksText(uint8_t proximity) {
  std::string text;
  for (uint32_t block = 0; block < kProximityBlocks; ++block) {
    text += (proximity & ProximityBit(block)) != 0 ? 'x' : '.';
  }
  return text;
}

}  // namespace

std::optional<uint32_t> FindWord(const OpenedIndex& index, std::string_view typed) {
  if (WordCount(index) == 0) return {};
  const Settings& settings = index.settings;
  const int32_t first = FirstSearchedWord(settings);
  QueryText word;
  Set(word, typed);
  int32_t number = index.dictionary.FindExact(View(word), first);
  if (number < 0) {
    LowerText(word.bytes, View(word).size(), IsUtf8(settings));
    number = index.dictionary.FindExact(View(word), first);
  }
  Stemmer stemmer;
  if (number < 0 && StemsWords(settings) &&
      stemmer.Create(settings.StemmingAlgo, StemsUtf8(settings)) == StemmerStatus::kOk) {
    StemText(word, stemmer, IsUtf8(settings));
    number = index.dictionary.FindExact(View(word), first);
  }
  if (number < 0) return {};
  return static_cast<uint32_t>(number);
}

std::string RecordText(const WordMapRecord& record, const Settings& settings) {
  std::string text;
  if (settings.Ranking == 1) {
    text = "weight " + std::to_string(WeightOf(record.score));
    if (IsTitleWord(record.score)) text += " and in the title";
  } else {
    text = "score " + std::to_string(record.score);
  }
  return text + ", blocks " + BlocksText(record.proximity) + ", first at byte " +
         std::to_string(record.position);
}

void WriteRecord(const WordMapRecord& record, const Settings& settings, JsonText& json) {
  json.Number("score", record.score);
  if (settings.Ranking == 1) {
    json.Number("weight", WeightOf(record.score)).Flag("in_title", IsTitleWord(record.score));
  }
  json.Number("blocks", record.proximity).Number("position", record.position);
}

std::string WordText(const OpenedIndex& index, uint32_t word) {
  const DictEntry entry = index.dictionary.EntryAt(static_cast<int32_t>(word));
  const WordList list = ListOf(index, word);
  std::string text = Printable(entry.word) + "\n  word " + std::to_string(word) + " on " +
                     CountOfText(static_cast<uint64_t>(list.size()), "page", "pages") + "\n";
  VariantReader variants(index.dictionary, entry);
  std::string_view variant;
  while (variants.Next(variant)) text += "  spelling " + Printable(variant) + "\n";
  for (int32_t i = 0; i < list.size(); ++i) {
    const WordMapRecord record = RecordAt(list, i);
    text += PageName(index, record.page) + "\n  " + RecordText(record, index.settings) + "\n";
  }
  return text;
}

void WriteWord(const OpenedIndex& index, uint32_t word, JsonText& json) {
  const DictEntry entry = index.dictionary.EntryAt(static_cast<int32_t>(word));
  json.Text("word", entry.word).Number("number", word).BeginArray("spellings");
  VariantReader variants(index.dictionary, entry);
  std::string_view variant;
  while (variants.Next(variant)) json.Text({}, variant);
  json.EndArray().BeginArray("pages");
  const WordList list = ListOf(index, word);
  for (int32_t i = 0; i < list.size(); ++i) {
    const WordMapRecord record = RecordAt(list, i);
    json.BeginObject().Number("page", record.page);
    json.Text("address", TextsOf(index, record.page).url);
    WriteRecord(record, index.settings, json);
    json.EndObject();
  }
  json.EndArray();
}

}  // namespace vela::inspector
