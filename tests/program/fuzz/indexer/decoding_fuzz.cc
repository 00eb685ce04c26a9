// decoding_fuzz.cc: bytes of any character set on their way to clean text. Input: the file, which
// is read as a page and as plain text.
#include <string>

#include "indexer/extract/decoding.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/clean_text.h"

namespace vela::fuzz {
namespace {

constexpr std::string_view kNulAndEscape("\0\x1B", 2);

void CheckDecoding(std::string_view file, bool isHtml) {
  std::string text;
  std::string again;
  indexer::ReadingBudget budget;
  const indexer::Reason reason = indexer::ConvertToUtf8(file, isHtml, budget, text);
  VELA_CHECK(reason == indexer::ConvertToUtf8(file, isHtml, budget, again));
  if (reason != indexer::Reason::kNone) return;
  VELA_CHECK(text == again);
  VELA_CHECK(indexer::IsValidUtf8(text));
  VELA_CHECK(text.find('\0') == text.npos);
  // Nothing is declared in plain text: what is UTF-8 already stays, where no mark stands before it
  // and nothing in it switches to another set.
  const bool marked = file.starts_with("\xEF\xBB\xBF") || file.starts_with("\xFF\xFE") ||
                      file.starts_with("\xFE\xFF");
  if (!isHtml && !marked && file.find_first_of(kNulAndEscape) == file.npos &&
      indexer::IsValidUtf8(file)) {
    VELA_CHECK(text == file);
  }
}

void CheckCleaning(std::string text) {
  indexer::CleanText(text);
  CheckClean(text);
  const std::string line = indexer::CollapseBlanks(text);
  CheckOneLine(line);
  VELA_CHECK(indexer::CollapseBlanks(line) == line);
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela::fuzz;
  const std::string_view file = Text(data, size);
  CheckDecoding(file, true);
  CheckDecoding(file, false);
  CheckCleaning(std::string(file));
  return 0;
}
