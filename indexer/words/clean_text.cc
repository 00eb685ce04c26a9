#include "indexer/words/clean_text.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "indexer/words/eight_bytes.h"
#include "text/ascii.h"
#include "text/signs.h"

namespace vela::indexer {

namespace {

// No language writes more marks over one letter, and the stream-safe text format allows no more.
constexpr size_t kMarkRunLimit = 30;

// Whether the character is put in order among the marks before it when it is composed.
bool IsOrderedMark(UChar32 c) {
  constexpr UChar32 kFirstMark = 0x300;
  return c >= kFirstMark && u_getIntPropertyValue(c, UCHAR_LEAD_CANONICAL_COMBINING_CLASS) != 0;
}

// Drops what is beyond kMarkRunLimit in a run of marks: sorting a run takes time in proportion to
// the square of its length. `text` is valid UTF-8.
void LimitMarkRuns(std::string& text) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  size_t kept = 0;
  size_t marks = 0;
  for (size_t i = 0; i < text.size();) {
    const size_t begin = i;
    UChar32 c = 0;
    U8_NEXT(bytes, i, text.size(), c);
    marks = IsOrderedMark(c) ? marks + 1 : 0;
    if (marks > kMarkRunLimit) continue;
    if (kept != begin) std::copy(&text[begin], &text[begin] + (i - begin), &text[kept]);
    kept += i - begin;
  }
  text.resize(kept);
}

// Combines letters and the marks that follow them into one character where there is one (NFC).
void Compose(std::string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
  const icu::StringPiece piece(text.data(), static_cast<int32_t>(text.size()));
  if (U_FAILURE(status) || nfc->isNormalizedUTF8(piece, status)) return;
  std::string composed;
  icu::StringByteSink<std::string> sink(&composed);
  nfc->normalizeUTF8(0, piece, sink, nullptr, status);
  if (U_SUCCESS(status)) text = std::move(composed);
}

// Makes blanks of the control characters in ASCII text.
void BlankControls(char* at, char* end) {
  constexpr uint64_t kDelete = 0x7F7F7F7F7F7F7F7F;
  const auto blank = [](char& c) {
    if (IsControl(c)) c = ' ';
  };
  for (; end - at >= static_cast<ptrdiff_t>(sizeof(uint64_t)); at += sizeof(uint64_t)) {
    const uint64_t bytes = EightBytes(at);
    if (!HoldsLess(bytes, ' ') && !HoldsLess(bytes ^ kDelete, 1)) continue;
    std::for_each_n(at, sizeof(uint64_t), blank);
  }
  std::for_each(at, end, blank);
}

// `text` is valid UTF-8.
std::string WithPlainSigns(std::string_view text) {
  std::string clean;
  clean.reserve(text.size());
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  for (size_t i = 0; i < text.size();) {
    const size_t begin = i;
    if (bytes[i] < 0x80) {
      i = AsciiEnd(text, begin);
      const size_t kept = clean.size();
      clean.append(text, begin, i - begin);
      BlankControls(clean.data() + kept, clean.data() + clean.size());
      continue;
    }
    UChar32 c = 0;
    U8_NEXT(bytes, i, text.size(), c);
    switch (KindOf(static_cast<char32_t>(c))) {
      case CharacterKind::kInvisible:
        break;
      case CharacterKind::kHyphen:
        clean += '-';
        break;
      case CharacterKind::kBlank:
        clean += ' ';
        break;
      default:
        clean.append(text, begin, i - begin);
        break;
    }
  }
  return clean;
}

}  // namespace

bool IsValidUtf8(std::string_view text) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  size_t i = 0;
  const size_t length = text.size();
  while (i < length) {
    if (bytes[i] < 0x80) {
      i = AsciiEnd(text, i);
      continue;
    }
    UChar32 c = 0;
    U8_NEXT(bytes, i, length, c);
    if (c < 0) return false;
  }
  return true;
}

std::string RepairedUtf8(std::string_view bytes) {
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(bytes.data(), static_cast<int32_t>(bytes.size())));
  std::string utf8;
  text.toUTF8String(utf8);
  return utf8;
}

void CleanText(std::string& text) {
  if (IsAsciiText(text)) {
    BlankControls(text.data(), text.data() + text.size());
    return;
  }
  if (!IsValidUtf8(text)) text = RepairedUtf8(text);
  LimitMarkRuns(text);
  Compose(text);
  text = WithPlainSigns(text);
}

std::string CollapseBlanks(const std::string& text) {
  std::string out(text.size(), '\0');
  size_t length = 0;
  bool followsBlank = true;
  // Without a branch: where words end cannot be told ahead.
  for (const char c : text) {
    out[length] = c;
    const bool isBlank = c == ' ';
    length += isBlank && followsBlank ? 0 : 1;
    followsBlank = isBlank;
  }
  if (length != 0 && followsBlank) --length;
  out.resize(length);
  return out;
}

}  // namespace vela::indexer
