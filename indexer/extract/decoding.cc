#include "indexer/extract/decoding.h"

#include <uchardet/uchardet.h>
#include <unicode/ucnv.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "indexer/extract/declared_charset.h"
#include "indexer/extract/reading_notes.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/eight_bytes.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

// More than this is never needed to recognise a character set.
constexpr size_t kDetectionBytes = 256 * 1024;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

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

struct ConverterCloser {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using ConverterPointer = std::unique_ptr<UConverter, ConverterCloser>;

ConverterPointer OpenConverter(const char* name) {
  UErrorCode status = U_ZERO_ERROR;
  ConverterPointer converter(ucnv_open(name, &status));
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  return U_FAILURE(status) ? nullptr : std::move(converter);
}

// False when there is no such converter. When `budget` refuses more, `utf8` is cut short.
bool Convert(std::string_view bytes, const std::string& charset, ReadingBudget& budget,
             std::string& utf8) {
  utf8.clear();
  const ConverterPointer from = OpenConverter(charset.c_str());
  const ConverterPointer to = OpenConverter("UTF-8");
  if (from == nullptr || to == nullptr) return false;
  constexpr size_t kPieceBytes = size_t{1} << 16;
  std::vector<char> piece(kPieceBytes);
  std::array<UChar, 1024> pivot;
  UChar* pivotSource = pivot.data();
  UChar* pivotTarget = pivot.data();
  const char* source = bytes.data();
  UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
  for (bool isFirst = true; status == U_BUFFER_OVERFLOW_ERROR; isFirst = false) {
    char* target = piece.data();
    status = U_ZERO_ERROR;
    ucnv_convertEx(to.get(), from.get(), &target, piece.data() + piece.size(), &source,
                   bytes.data() + bytes.size(), pivot.data(), &pivotSource, &pivotTarget,
                   pivot.data() + pivot.size(), isFirst, true, &status);
    if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR) return false;
    const std::string_view added(piece.data(), static_cast<size_t>(target - piece.data()));
    if (!TakeBytes(budget, added.size()) || !TakeSteps(budget, added.size())) return true;
    utf8 += added;
  }
  return true;
}

// False when there is no such converter, or one that a declaration in ASCII cannot be true of. What
// hides markup in letters is none for pages.
bool ReadsAscii(const std::string& charset) {
  if (charset == "utf-8") return true;
  constexpr std::string_view kSample = "<meta charset=+ADw->";
  ReadingBudget budget;
  std::string utf8;
  return Convert(kSample, charset, budget, utf8) && utf8 == kSample;
}

// The converter for the first name that the server or the page declares and that can be true; empty
// for none.
std::string DeclaredConverter(std::string_view bytes, bool isHtml, std::string_view serverCharset) {
  if (!serverCharset.empty()) {
    std::string name = ConverterName(std::string(serverCharset));
    if (ReadsAscii(name)) return name;
  }
  if (!isHtml) return {};
  std::string first;
  ForEachDeclaredCharset(bytes, [&first](const std::string& declared) {
    std::string name = ConverterName(declared);
    if (!ReadsAscii(name)) return false;
    first = std::move(name);
    return true;
  });
  return first;
}

// A sign of text, not the first half of a pair: no control character but for blanks.
bool IsTextUnit(uint32_t unit) {
  const bool isControl = unit < 0x20 && !IsBlank(static_cast<char>(unit)) && unit != 0x0B;
  return !isControl && unit != 0xFFFE && unit != 0xFFFF && (unit & 0xFFFFF800U) != 0xD800;
}

// Whether the bytes are numbers of `width` that stand for text, in the order that `isLittle` says,
// and one in ten of them is of ASCII, as blanks and markup are everywhere.
bool IsUnicodeText(std::string_view bytes, size_t width, bool isLittle) {
  constexpr size_t kUnitLimit = 2048;
  constexpr uint32_t kTextPlanes = 0x40000;
  if (bytes.size() < 2 * width || bytes.size() % width != 0) return false;
  const size_t count = std::min(bytes.size() / width, kUnitLimit);
  if (bytes.substr(0, count * width).find('\0') == bytes.npos) return false;  // no ASCII
  size_t ascii = 0;
  bool isPair = false;  // the unit before is its first half
  for (size_t i = 0; i < count; ++i) {
    uint32_t unit = 0;
    for (size_t k = 0; k < width; ++k) {
      const size_t at = i * width + (isLittle ? width - 1 - k : k);
      unit = unit << 8 | static_cast<unsigned char>(bytes[at]);
    }
    const bool isLow = width == 2 && unit >= 0xDC00 && unit <= 0xDFFF;
    const bool isHigh = width == 2 && unit >= 0xD800 && unit <= 0xDBFF;
    if (isPair != isLow || unit >= kTextPlanes) return false;
    if (!isLow && !isHigh && !IsTextUnit(unit)) return false;
    isPair = isHigh;
    if (unit < 0x80) ++ascii;
  }
  return ascii * 10 >= count;
}

struct UnicodeForm {
  std::string_view mark;
  size_t width;  // of its numbers, in bytes
  bool isLittle;
  const char* charset;
};
// The longer marks first: one begins as another does.
constexpr UnicodeForm kUnicodeForms[] = {
    {std::string_view("\xFF\xFE\0\0", 4), 4, true, "UTF-32LE"},
    {std::string_view("\0\0\xFE\xFF", 4), 4, false, "UTF-32BE"},
    {"\xFF\xFE", 2, true, "UTF-16LE"},
    {"\xFE\xFF", 2, false, "UTF-16BE"},
};

// The form of Unicode that is no UTF-8, and whether a mark says so; null for none.
const UnicodeForm* WideUnicode(std::string_view bytes, bool& isMarked) {
  isMarked = true;
  for (const UnicodeForm& form : kUnicodeForms) {
    if (bytes.starts_with(form.mark) && (form.width == 2 || bytes.size() % 4 == 0)) return &form;
  }
  isMarked = false;
  for (const UnicodeForm& form : kUnicodeForms) {
    if (IsUnicodeText(bytes, form.width, form.isLittle)) return &form;
  }
  return nullptr;
}

// ISO-2022-JP is ASCII but for the sequences that switch to Japanese and back.
bool IsJapaneseBySwitches(std::string_view bytes) {
  const size_t to = std::min(bytes.find("\x1B$B"), bytes.find("\x1B$@"));
  if (to == bytes.npos) return false;
  const size_t back = std::min(bytes.find("\x1B(B", to), bytes.find("\x1B(J", to));
  return back != bytes.npos &&
         std::ranges::all_of(bytes, [](char c) { return static_cast<signed char>(c) >= 0; });
}

// Text holds hardly any control bytes; a picture or an archive is full of them.
bool LooksBinary(std::string_view bytes) {
  size_t controls = 0;
  const auto count = [&controls](std::string_view piece) {
    for (const char c : piece) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte < 0x20 && !IsBlank(c) && byte != 0x0B && byte != 0x1B && byte != 0x1A) ++controls;
    }
  };
  constexpr size_t kPiece = sizeof(uint64_t);
  size_t at = 0;
  for (; bytes.size() - at >= kPiece; at += kPiece) {
    if (HoldsLess(EightBytes(bytes.data() + at), ' ')) count(bytes.substr(at, kPiece));
  }
  count(bytes.substr(at));
  return controls > 4 + bytes.size() / 200;
}

void NoteCharset(ReadingBudget& budget, CharsetOrigin origin, std::string_view charset) {
  if (budget.notes == nullptr) return;
  budget.notes->charsetOrigin = origin;
  budget.notes->charset = charset;
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

// `own` is the text of `bytes` where it need not stay, else null.
Reason ToUtf8(std::string_view bytes, std::string* own, bool isHtml, ReadingBudget& budget,
              std::string& utf8, std::string_view serverCharset) {
  const auto takeAsItIs = [&] {
    if (own != nullptr) {
      utf8 = std::move(*own);
    } else {
      utf8.assign(bytes);
    }
  };
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  bool isMarked = false;
  if (bytes.starts_with(kUtf8Mark)) {
    utf8 = RepairedUtf8(bytes.substr(kUtf8Mark.size()));
    NoteCharset(budget, CharsetOrigin::kMark, "utf-8");
  } else if (const UnicodeForm* form = WideUnicode(bytes, isMarked); form != nullptr) {
    if (isMarked) bytes.remove_prefix(form->mark.size());
    NoteCharset(budget, isMarked ? CharsetOrigin::kMark : CharsetOrigin::kUnicodeBytes,
                form->charset);
    if (!Convert(bytes, form->charset, budget, utf8)) return Reason::kNotConverted;
  } else {
    if (LooksBinary(bytes)) return Reason::kBinary;
    std::string declared = DeclaredConverter(bytes, isHtml, serverCharset);
    const bool isServers =
        !serverCharset.empty() && declared == ConverterName(std::string(serverCharset));
    CharsetOrigin origin = isServers ? CharsetOrigin::kServer : CharsetOrigin::kPage;
    if (declared.empty() && IsJapaneseBySwitches(bytes)) {
      declared = "iso-2022-jp";
      origin = CharsetOrigin::kSwitches;
    }
    NoteCharset(budget, declared.empty() ? CharsetOrigin::kValidUtf8 : origin,
                declared.empty() ? "utf-8" : declared);
    CheckBudget(budget);
    if (budget.status != Reason::kNone) return budget.status;
    const bool valid = IsValidUtf8(bytes);
    if (valid && (declared.empty() || declared == "utf-8")) {
      takeAsItIs();
    } else if (declared == "utf-8" && MostlyUtf8(bytes)) {
      utf8 = RepairedUtf8(bytes);
    } else if (declared.empty() || declared == "utf-8" || !Convert(bytes, declared, budget, utf8)) {
      if (valid) {
        takeAsItIs();
        NoteCharset(budget, CharsetOrigin::kValidUtf8, "utf-8");
      } else if (const std::string detected = DetectedCharset(bytes);
                 !detected.empty() && Convert(bytes, ConverterName(detected), budget, utf8)) {
        NoteCharset(budget, CharsetOrigin::kStatistics, ConverterName(detected));
      } else {
        NoteCharset(budget, CharsetOrigin::kLastResort, "windows-1252");
        if (!Convert(bytes, "windows-1252", budget, utf8)) return Reason::kNotConverted;
      }
    }
  }
  CheckBudget(budget);
  for (size_t at = utf8.find('\0'); at != utf8.npos; at = utf8.find('\0', at)) utf8[at] = ' ';
  return budget.status;
}

}  // namespace

Reason ConvertToUtf8(std::string_view bytes, bool isHtml, ReadingBudget& budget, std::string& utf8,
                     std::string_view serverCharset) {
  return ToUtf8(bytes, nullptr, isHtml, budget, utf8, serverCharset);
}

Reason TurnIntoUtf8(std::string bytes, bool isHtml, ReadingBudget& budget, std::string& utf8,
                    std::string_view serverCharset) {
  return ToUtf8(bytes, &bytes, isHtml, budget, utf8, serverCharset);
}

}  // namespace vela::indexer
