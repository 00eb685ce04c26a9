// synonyms_fuzz.cc: the reader of the other words by which a term finds pages. Input: a line with
// the key, then the file.
#include "index/synonyms.h"
#include "program/fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view bytes = Text(data, size);
  const std::string_view key = TakeLine(bytes);
  SynonymFile file;
  file.Open(bytes);
  const SynonymRange range = file.Find(key);
  VELA_CHECK(file.isOpen() || range.end == 0);
  VELA_CHECK(range.first <= range.end);
  VELA_CHECK(range.end - range.first <= kSynonymAlternativesLimit);
  for (uint32_t i = range.first; i < range.end; ++i) {
    const Synonym synonym = file.At(i);
    VELA_CHECK(synonym.weight <= kWholeSynonymWeight);
    VELA_CHECK(synonym.text.size() <= bytes.size());
    uint64_t sum = 0;
    for (int32_t r = 0; r < synonym.records.size(); ++r) {
      const WordMapRecord record = RecordAt(synonym.records, r);
      VELA_CHECK(record.page <= kPageNumberLimit && record.position <= kPositionLimit);
      sum += record.score;
    }
    VELA_CHECK(sum <= bytes.size() * kWordMapScoreLimit);
  }
  return 0;
}
