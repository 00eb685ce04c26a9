// completions_fuzz.cc: the reader of the beginnings of words of suggestions. Input: a line that is
// typed, two bytes that say how many lines and beginnings there are, then the rest of the file;
// what says that it belongs to the suggestions below is put right.
#include <array>
#include <cstring>
#include <string>

#include "index/completions.h"
#include "program/fuzz/check.h"
#include "program/fuzz/written.h"
#include "text/completion_fold.h"

namespace vela::fuzz {
namespace {

constexpr std::string_view kSuggestions = "one town\ntwo towns\ncaf\u00E9 R&#38;D\n";

void CheckFind(std::string_view file, std::string_view typed) {
  Completions completions;
  if (!completions.Open(file, kSuggestions)) return;
  std::array<std::string_view, 2 * Completions::kMostOfEach> found;
  const size_t count = completions.Find(typed, found);
  VELA_CHECK(count <= found.size());
  for (size_t i = 0; i < count; ++i) {
    VELA_CHECK(!found[i].empty() && found[i].data() >= kSuggestions.data() &&
               found[i].data() + found[i].size() < kSuggestions.data() + kSuggestions.size());
    VELA_CHECK(found[i].data() == kSuggestions.data() || found[i].data()[-1] == '\n');
  }
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view input(reinterpret_cast<const char*>(data), size);
  std::string typed(TakeLine(input));
  typed.resize(FoldForCompletion(typed.data(), typed.size()));
  CheckFind(input, typed);
  if (input.size() < 2) return 0;
  CompletionsHeader header;
  header.autocomplete = {kSuggestions.size(), FileSample(kSuggestions)};
  header.lines = static_cast<unsigned char>(input[0]);
  header.beginnings = static_cast<unsigned char>(input[1]);
  input.remove_prefix(2);
  const size_t records =
      header.lines * sizeof(CompletionLine) + header.beginnings * sizeof(CompletionBeginning);
  if (records > input.size()) return 0;
  header.textBytes = input.size() - records;
  std::string file(sizeof header, '\0');
  memcpy(file.data(), &header, sizeof header);
  file += input;
  CheckFind(file, typed);
  return 0;
}
