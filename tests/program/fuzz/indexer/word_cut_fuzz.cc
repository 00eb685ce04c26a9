// word_cut_fuzz.cc: where words begin and end. Input: a text, cut as clean text and as it is.
#include <string>

#include "indexer/words/clean_text.h"
#include "indexer/words/plain_forms.h"
#include "indexer/words/word_cut.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/clean_text.h"
#include "text/lower.h"

namespace vela::fuzz {
namespace {

void CheckCut(const indexer::ChunkTokens& cut, bool clean) {
  std::string_view rest = cut.surface;
  for (const indexer::TextToken& token : cut.tokens) {
    if (token.sign != 0) {
      VELA_CHECK(indexer::ClassifyCharacter(token.sign) == CharacterKind::kSymbol);
      VELA_CHECK(token.base.empty() && !token.surface.empty());
      continue;
    }
    VELA_CHECK(!token.base.empty() && token.base.size() <= indexer::kWordBytesLimit);
    VELA_CHECK(token.base.size() == token.surface.size());
    // The words stand in the text in this order, none in another.
    const size_t at = rest.find(token.surface);
    VELA_CHECK(at != rest.npos);
    rest.remove_prefix(at + token.surface.size());
    if (!clean) continue;
    CheckClean(token.surface);
    std::string lower(token.surface);
    LowerUtf8(lower.data(), lower.size());
    VELA_CHECK(lower == token.base);
  }
  for (const indexer::FoundForm& form : cut.forms) {
    VELA_CHECK(form.token < cut.tokens.size() && cut.tokens[form.token].sign == 0);
    VELA_CHECK(!form.text.empty() && form.text.size() <= indexer::kWordBytesLimit);
    VELA_CHECK(form.text.find_first_of("\"*?:<> ") == form.text.npos);
    VELA_CHECK(form.text != cut.tokens[form.token].base);
  }
}

// A cut as one text, to compare two runs.
std::string Listing(const indexer::ChunkTokens& cut) {
  std::string all;
  for (const indexer::TextToken& token : cut.tokens) {
    all += std::to_string(uint32_t{token.sign}) + ' ';
    all.append(token.base).append(1, ' ').append(token.surface).append(1, '\n');
  }
  for (const indexer::FoundForm& form : cut.forms) {
    all += std::to_string(form.token) + ' ' + form.text + '\n';
  }
  return all;
}

void CheckText(std::string_view text, bool clean) {
  indexer::ChunkTokens cut;  // used again for each chunk, as the indexer does
  std::string_view rest = text;
  for (std::string_view chunk; !(chunk = indexer::NextChunk(rest)).empty();) {
    VELA_CHECK(chunk.find(' ') == chunk.npos && chunk.size() <= indexer::kChunkBytesLimit);
    indexer::CutChunk(chunk, cut);
    CheckCut(cut, clean);
    indexer::ChunkTokens fresh;
    indexer::CutChunk(chunk, fresh);
    VELA_CHECK(Listing(cut) == Listing(fresh));
    const auto forms = indexer::PlainForms(chunk);
    VELA_CHECK(forms.size() <= 3);
  }
  VELA_CHECK(rest.empty());
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela::fuzz;
  const std::string_view text = Text(data, size);
  CheckText(text, false);
  std::string clean(text);
  vela::indexer::CleanText(clean);
  CheckText(clean, true);
  return 0;
}
