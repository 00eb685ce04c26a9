#include "indexer/extract/decoding.h"

#include <uchardet/uchardet.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "indexer/words/clean_text.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

// How far a declaration of the character set may stand from the start of a page.
constexpr size_t kDeclarationBytes = 4096;
// More than this is never needed to recognise a character set.
constexpr size_t kDetectionBytes = 256 * 1024;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

// The value behind the first `name` in `tag` that is followed by "=", with or without quotes.
std::string ValueAfter(std::string_view tag, std::string_view name) {
  for (size_t at = tag.find(name); at != tag.npos; at = tag.find(name, at + 1)) {
    size_t i = at + name.size();
    while (i < tag.size() && IsBlank(tag[i])) ++i;
    if (i >= tag.size() || tag[i] != '=') continue;
    ++i;
    while (i < tag.size() && (IsBlank(tag[i]) || tag[i] == '"' || tag[i] == '\'')) ++i;
    const size_t begin = i;
    while (i < tag.size() && !IsBlank(tag[i]) && tag[i] != '"' && tag[i] != '\'' && tag[i] != ';' &&
           tag[i] != '>' && tag[i] != '/' && tag[i] != '?') {
      ++i;
    }
    return std::string(tag.substr(begin, i - begin));
  }
  return {};
}

// The name of the character set that the page declares, in lower case, or an empty text.
std::string DeclaredCharset(std::string_view bytes) {
  const std::string head = LowerAsciiCopy(bytes.substr(0, kDeclarationBytes));
  if (head.starts_with("<?xml")) {
    std::string name = ValueAfter(std::string_view(head).substr(0, head.find('>')), "encoding");
    if (!name.empty()) return name;
  }
  for (size_t at = head.find("<meta"); at != head.npos; at = head.find("<meta", at + 5)) {
    const size_t end = head.find('>', at);
    std::string name =
        ValueAfter(std::string_view(head).substr(at, end == head.npos ? end : end - at), "charset");
    if (!name.empty()) return name;
  }
  return {};
}

// The converter to use for a declared name. Browsers read the smaller sets as the larger ones that
// grew out of them, and so do authors; a page that could be read far enough to find the name is not
// UTF-16 whatever it says.
std::string ConverterName(const std::string& declared) {
  struct Alias {
    std::string_view from, to;
  };
  constexpr Alias kAliases[] = {
      {"iso-8859-1", "windows-1252"},
      {"latin1", "windows-1252"},
      {"us-ascii", "windows-1252"},
      {"ascii", "windows-1252"},
      {"iso-8859-9", "windows-1254"},
      {"latin5", "windows-1254"},
      {"gb2312", "gb18030"},
      {"gbk", "gb18030"},
      {"shift_jis", "windows-31j"},
      {"x-sjis", "windows-31j"},
      {"euc-kr", "windows-949"},
      {"ks_c_5601-1987", "windows-949"},
      {"tis-620", "windows-874"},
      {"utf8", "utf-8"},
      {"utf-16", "utf-8"},
      {"utf-16le", "utf-8"},
      {"utf-16be", "utf-8"},
  };
  for (const Alias& alias : kAliases) {
    if (alias.from == declared) return std::string(alias.to);
  }
  return declared;
}

std::string DetectedCharset(std::string_view bytes) {
  struct Closer {
    void operator()(uchardet_t d) const { uchardet_delete(d); }
  };
  const std::unique_ptr<std::remove_pointer_t<uchardet_t>, Closer> detector(uchardet_new());
  const std::string_view sample = bytes.substr(0, kDetectionBytes);
  if (uchardet_handle_data(detector.get(), sample.data(), sample.size()) != 0) return {};
  uchardet_data_end(detector.get());
  return LowerAsciiCopy(uchardet_get_charset(detector.get()));
}

// False when there is no such converter.
bool Convert(std::string_view bytes, const std::string& charset, std::string& utf8) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(
      ucnv_open(charset.c_str(), &status), &ucnv_close);
  if (U_FAILURE(status)) return false;
  const icu::UnicodeString text(bytes.data(), static_cast<int32_t>(bytes.size()), converter.get(),
                                status);
  if (U_FAILURE(status)) return false;
  utf8.clear();
  text.toUTF8String(utf8);
  return true;
}

// False when there is no such converter, or one that a declaration in ASCII cannot be true of.
bool ReadsAscii(const std::string& charset) {
  constexpr std::string_view kSample = "<meta charset=";
  std::string utf8;
  return Convert(kSample, charset, utf8) && utf8 == kSample;
}

// Text holds hardly any control bytes; a picture or an archive is full of them.
bool LooksBinary(std::string_view bytes) {
  size_t controls = 0;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 && !IsBlank(c) && byte != 0x0B && byte != 0x1B && byte != 0x1A) ++controls;
  }
  return controls > 4 + bytes.size() / 200;
}

// Share of damage up to which a page that calls itself UTF-8 is believed.
bool MostlyUtf8(std::string_view text) {
  size_t bad = 0;
  size_t good = 0;
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  const auto length = static_cast<int32_t>(text.size());
  for (int32_t i = 0; i < length;) {
    if (bytes[i] < 0x80) {
      ++i;
      continue;
    }
    UChar32 c = 0;
    U8_NEXT(bytes, i, length, c);
    ++(c < 0 ? bad : good);
  }
  return bad * 10 <= good;
}

}  // namespace

Reason ConvertToUtf8(std::string_view bytes, bool isHtml, std::string& utf8) {
  if (bytes.starts_with("\xEF\xBB\xBF")) {
    utf8 = RepairedUtf8(bytes.substr(3));
  } else if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
    const bool little = bytes[0] == '\xFF';
    if (!Convert(bytes.substr(2), little ? "UTF-16LE" : "UTF-16BE", utf8)) {
      return Reason::kNotConverted;
    }
  } else {
    if (LooksBinary(bytes)) return Reason::kBinary;
    std::string declared = isHtml ? ConverterName(DeclaredCharset(bytes)) : std::string();
    if (!declared.empty() && !ReadsAscii(declared)) declared.clear();
    const bool valid = IsValidUtf8(bytes);
    if (valid && (declared.empty() || declared == "utf-8")) {
      utf8.assign(bytes);
    } else if (declared == "utf-8" && MostlyUtf8(bytes)) {
      utf8 = RepairedUtf8(bytes);
    } else if (declared.empty() || declared == "utf-8" || !Convert(bytes, declared, utf8)) {
      if (valid) {
        utf8.assign(bytes);
      } else if (const std::string detected = DetectedCharset(bytes);
                 detected.empty() || !Convert(bytes, ConverterName(detected), utf8)) {
        if (!Convert(bytes, "windows-1252", utf8)) return Reason::kNotConverted;
      }
    }
  }
  std::ranges::replace(utf8, '\0', ' ');
  return Reason::kNone;
}

}  // namespace vela::indexer
