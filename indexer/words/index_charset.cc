#include "indexer/words/index_charset.h"

#include <unicode/ucnv.h>
#include <unicode/utf8.h>

#include <memory>

#include "indexer/report/index_error.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/symbols.h"
#include "text/lower.h"

namespace vela::indexer {

namespace {

constexpr char32_t kNoCharacter = 0xFFFD;
constexpr char32_t kFirstBeyond = 0xA0;  // what lies between ASCII and this is control characters

struct NamedSet {
  std::string_view name;
  int32_t codepage;
};

// Names as browsers know them, and the numbers that Windows has for the sets.
constexpr NamedSet kCodepages[] = {
    {"iso-8859-1", 28591},  {"iso-8859-2", 28592},  {"iso-8859-3", 28593},  {"iso-8859-4", 28594},
    {"iso-8859-5", 28595},  {"iso-8859-6", 28596},  {"iso-8859-7", 28597},  {"iso-8859-8", 28598},
    {"iso-8859-9", 28599},  {"iso-8859-13", 28603}, {"iso-8859-15", 28605}, {"windows-1250", 1250},
    {"windows-1251", 1251}, {"windows-1252", 1252}, {"windows-1253", 1253}, {"windows-1254", 1254},
    {"windows-1255", 1255}, {"windows-1256", 1256}, {"windows-1257", 1257}, {"windows-1258", 1258},
    {"koi8-r", 20866},      {"koi8-u", 21866},      {"ibm866", 866},        {"windows-874", 874},
    {"iso-8859-10", 0},     {"iso-8859-14", 0},
};

[[noreturn]] void RefuseName(const std::string& name) {
  std::string names = "utf-8";
  for (const NamedSet& set : kCodepages) names.append(", ").append(set.name);
  throw IndexError(ExitStatus::kUsage, "An index cannot be written in the character set \"" + name +
                                           "\". Give one of " + names + ".");
}

void AppendUtf8(char32_t c, std::string& out) {
  uint8_t bytes[U8_MAX_LENGTH];
  size_t length = 0;
  U8_APPEND_UNSAFE(bytes, length, c);
  out.append(reinterpret_cast<const char*>(bytes), length);
}

std::string Reference(char32_t c) { return "&#" + std::to_string(static_cast<uint32_t>(c)) + ";"; }

// The character of a byte; kNoCharacter where the set has none.
char32_t CharacterOf(UConverter* converter, unsigned char byte) {
  const char text[] = {static_cast<char>(byte)};
  const char* at = text;
  UErrorCode status = U_ZERO_ERROR;
  ucnv_resetToUnicode(converter);
  const UChar32 c = ucnv_getNextUChar(converter, &at, text + 1, &status);
  return U_FAILURE(status) ? kNoCharacter : static_cast<char32_t>(c);
}

}  // namespace

IndexCharset::IndexCharset(const std::string& name) {
  const std::string wanted = LowerAsciiCopy(name);
  if (wanted == "utf-8" || wanted == "utf8") return;
  const NamedSet* found = nullptr;
  for (const NamedSet& set : kCodepages) {
    if (ucnv_compareNames(std::string(set.name).c_str(), wanted.c_str()) == 0) found = &set;
  }
  if (found == nullptr) RefuseName(name);
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(
      ucnv_open(std::string(found->name).c_str(), &status), &ucnv_close);
  if (U_FAILURE(status)) RefuseName(name);
  utf8_ = false;
  name_ = found->name;
  codepage_ = found->codepage;
  for (int byte = 0x80; byte < 0x100; ++byte) {
    const char32_t c = CharacterOf(converter.get(), static_cast<unsigned char>(byte));
    if (c != kNoCharacter && c >= kFirstBeyond) bytes_.emplace(c, static_cast<char>(byte));
  }
  for (int byte = 0x80; byte < 0x100; ++byte) {
    const char32_t c = CharacterOf(converter.get(), static_cast<unsigned char>(byte));
    if (!bytes_.contains(c)) continue;
    std::string lower;
    AppendUtf8(c, lower);
    LowerUtf8(lower.data(), lower.size());
    std::string small;
    if (!Exactly(lower, small) || small.size() != 1) continue;
    if (small[0] == static_cast<char>(byte)) continue;
    uppers_ += static_cast<char>(byte);
    lowers_ += small;
  }
}

bool IndexCharset::Append(char32_t c, std::string& out) const {
  if (utf8_) {
    AppendUtf8(c, out);
    return true;
  }
  if (c < 0x80) {
    out += static_cast<char>(c);
    return true;
  }
  const auto found = bytes_.find(c);
  if (found == bytes_.end()) return false;
  out += found->second;
  return true;
}

std::string IndexCharset::WithReferences(std::string_view text) const {
  if (utf8_) return std::string(text);
  std::string out;
  for (size_t i = 0; i < text.size();) {
    size_t length = 0;
    const char32_t c = DecodeCharacter(text, i, length);
    if (!Append(c, out)) out += Reference(c);
    i += length;
  }
  return out;
}

bool IndexCharset::Exactly(std::string_view text, std::string& out) const {
  out.clear();
  for (size_t i = 0; i < text.size();) {
    size_t length = 0;
    const char32_t c = DecodeCharacter(text, i, length);
    i += length;
    if (c != kNoCharacter && !Append(c, out)) return false;
  }
  return true;
}

}  // namespace vela::indexer
