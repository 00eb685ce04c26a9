#include "indexer/words/stored_text.h"

#include "indexer/words/symbols.h"

namespace vela::indexer {

namespace {

constexpr char32_t kEllipsis = 0x2026;
constexpr std::string_view kUnsafeAnywhere = "&<>\"'|";
constexpr std::string_view kUnsafeBetweenTags = "&<>";

struct TextStyle {
  std::string_view unsafe;  // characters that become references
  const IndexCharset& charset;
};

void AppendSafe(char32_t c, const TextStyle& style, std::string& out) {
  const bool unsafe = c < 0x80 && style.unsafe.find(static_cast<char>(c)) != style.unsafe.npos;
  if (unsafe || !style.charset.Append(c, out)) {
    out.append("&#").append(std::to_string(static_cast<uint32_t>(c))).append(";");
  }
}

std::string Stored(std::string_view text, size_t limit, const TextStyle& style) {
  std::string ellipsis;
  AppendSafe(kEllipsis, style, ellipsis);
  std::string out;
  size_t wordEnd = 0;  // of the last whole word that leaves room for the ellipsis
  size_t characterEnd = 0;
  for (size_t i = 0; i < text.size();) {
    size_t length = 0;
    const char32_t c = DecodeCharacter(text, i, length);
    i += length;
    if (out.size() + ellipsis.size() <= limit) {
      characterEnd = out.size();
      if (c <= 0x20) wordEnd = out.size();
    }
    AppendSafe(c <= 0x20 ? U' ' : c, style, out);
    if (out.size() > limit) {
      out.resize(wordEnd > limit / 2 ? wordEnd : characterEnd);
      return out += ellipsis;
    }
  }
  return out;
}

}  // namespace

std::string StoredText(std::string_view text, size_t limit, const IndexCharset& charset) {
  return Stored(text, limit, {kUnsafeAnywhere, charset});
}

std::string StoredText(std::string_view text, const IndexCharset& charset) {
  return StoredText(text, std::string::npos / 2, charset);
}

std::string StoredElementText(std::string_view text, size_t limit, const IndexCharset& charset) {
  return Stored(text, limit, {kUnsafeBetweenTags, charset});
}

}  // namespace vela::indexer
