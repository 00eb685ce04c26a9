#include "indexer/words/compatible_text.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>

namespace vela::indexer {

std::string CompatibleText(std::string_view word) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* nfkc = icu::Normalizer2::getNFKCInstance(status);
  const icu::StringPiece piece(word.data(), static_cast<int32_t>(word.size()));
  if (U_FAILURE(status) || nfkc->isNormalizedUTF8(piece, status)) return {};
  std::string text;
  icu::StringByteSink<std::string> sink(&text);
  nfkc->normalizeUTF8(0, piece, sink, nullptr, status);
  return U_SUCCESS(status) ? text : std::string();
}

}  // namespace vela::indexer
