#include "request/cgi_form.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "text/ascii.h"
#include "text/numbers.h"

namespace vela {

namespace {

constexpr std::array<std::string_view, 9> kMessages = {
    "The function successfully performed",
    "Out-of-memory error",
    "MIME content type error",
    "Request method error",
    "I/O error",
    "Value was cut short",
    "Value was not a legal type",
    "Value contained no data",
    "No value was submitted",
};

constexpr std::string_view kFormContentType = "application/x-www-form-urlencoded";
constexpr std::string_view kMetacharacters = "&;`'\"|*?~<>^()[]{}$\\";

// The value of a hexadecimal digit. Kept: nothing is checked, other bytes give what the formula
// gives (unit cgi_form_test).
int HexDigit(char c) { return c < 'A' ? c - '0' : (c & 0xDF) - 55; }

// Decodes the value in place: first every "+" becomes a blank, then each "%" and two bytes one
// byte. Digits that are missing at the end count as 0. The C library's fast search passes over
// the rest, because the last value of a request may be decoded once for each "=" in it.
void DecodeValue(char* value) {
  for (char* plus = strchr(value, '+'); plus != nullptr; plus = strchr(plus + 1, '+')) *plus = ' ';
  const char* from = value;
  char* to = value;
  for (;;) {
    const char* const next = strchr(from, '%');
    if (next == nullptr) break;
    const auto kept = static_cast<size_t>(next - from);
    if (to != from) memmove(to, from, kept);
    to += kept;
    from = next + 1;
    int byte = 0;
    for (int digit = 0; digit < 2; ++digit) {
      byte *= 16;
      if (*from != '\0') byte += HexDigit(*from++);
    }
    *to++ = static_cast<char>(byte & 0xFF);
  }
  if (to != from) memmove(to, from, strlen(from) + 1);
}

CgiResult ReadBody(CgiForm& form, const CgiSource& source) {
  const int32_t length = ReadDecimal32(CgiEnv(source, "CONTENT_LENGTH"));
  if (length == 0) return CgiResult::kOk;
  if (length < 0) return CgiResult::kInput;
  if (length == INT32_MAX) return CgiResult::kNoMemory;  // no room for the terminator
  // The announced length is only believed as far as bytes arrive.
  constexpr size_t kPiece = 65536;
  const auto announced = static_cast<size_t>(length);
  size_t filled = 0;
  while (filled < announced) {
    const size_t room = std::min(announced, std::max(kPiece, filled * 2));
    if (form.rawData.size() < room + 1 && !form.rawData.TryResize(room + 1)) {
      return CgiResult::kNoMemory;
    }
    const ssize_t got = read(source.bodyDescriptor, form.rawData.data() + filled, room - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return CgiResult::kInput;
    filled += static_cast<size_t>(got);
  }
  form.rawData[filled] = '\0';
  return CgiSplit(form, filled);
}

CgiResult ReadQueryString(CgiForm& form, const CgiSource& source) {
  const std::string_view query = CgiEnv(source, "QUERY_STRING");
  if (query.empty()) return CgiResult::kOk;
  if (!form.rawData.TryAllocate(query.size() + 1)) return CgiResult::kNoMemory;
  query.copy(form.rawData.data(), query.size());
  return CgiSplit(form, query.size());
}

CgiResult ReadRequest(CgiForm& form, const CgiSource& source) {
  const std::string_view method = CgiEnv(source, "REQUEST_METHOD");
  if (method == "GET") return ReadQueryString(form, source);
  if (method != "POST") return CgiResult::kMethod;
  if (CgiEnv(source, "CONTENT_TYPE") != kFormContentType) return CgiResult::kContentType;
  return ReadBody(form, source);
}

// Blanks, one sign and at least one digit; `end` is set behind the digits.
bool IsNumber(std::string_view value, size_t& end) {
  size_t at = 0;
  while (at < value.size() && value[at] == ' ') ++at;
  if (at < value.size() && (value[at] == '+' || value[at] == '-')) ++at;
  const size_t digits = at;
  while (at < value.size() && IsDigit(value[at])) ++at;
  end = at;
  return at > digits;
}

bool IsBlank(std::string_view value) { return value.find_first_not_of(' ') == value.npos; }

}  // namespace

std::string_view CgiResultMessage(CgiResult result) {
  const auto index = static_cast<size_t>(result);
  return index < kMessages.size() ? kMessages[index] : std::string_view();
}

const char* CgiEnv(const CgiSource& source, const char* name) {
  const char* value = source.environment(name);
  return value == nullptr ? "" : value;
}

CgiResult CgiReadForm(CgiForm& form, const CgiSource& source) {
  form = CgiForm();
  const CgiResult result = ReadRequest(form, source);
  if (result != CgiResult::kOk) form = CgiForm();
  return result;
}

void CgiDiscardBody(const CgiSource& source) {
  char piece[4096];
  int32_t rest = ReadDecimal32(CgiEnv(source, "CONTENT_LENGTH"));
  while (rest > 0) {
    const ssize_t got =
        read(source.bodyDescriptor, piece, std::min(sizeof piece, static_cast<size_t>(rest)));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return;
    rest -= static_cast<int32_t>(got);
  }
}

CgiResult CgiSplit(CgiForm& form, size_t length) {
  char* const data = form.rawData.data();
  // Splitting a decoded value again can only find an "=" that was written as "%3D", so the bytes
  // "=" and "%" bound the number of pairs.
  const auto most = static_cast<size_t>(
      std::count_if(data, data + length, [](char c) { return c == '=' || c == '%'; }));
  if (!form.pairs.TryAllocate(most)) return CgiResult::kNoMemory;
  char* start = data;
  bool isPlain = false;  // whether only "=" is left to look for, so that a row of them costs little
  for (;;) {
    char* const equals = strchr(start, '=');
    if (equals == nullptr) return CgiResult::kOk;
    *equals = '\0';
    char* const value = equals + 1;
    char* const ampersand = isPlain ? nullptr : strchr(value, '&');
    if (ampersand != nullptr) *ampersand = '\0';
    form.pairs[static_cast<size_t>(form.pairCount)] = {start, value};
    ++form.pairCount;
    if (!isPlain) {
      DecodeValue(value);
      isPlain = ampersand == nullptr && strpbrk(value, "&+%") == nullptr;
    }
    start = ampersand != nullptr ? ampersand + 1 : value;
  }
}

const char* CgiFirstValue(CgiForm& form, const char* name) {
  form.cursor = 0;
  return CgiNextValue(form, name);
}

const char* CgiNextValue(CgiForm& form, const char* name) {
  while (form.cursor < form.pairCount) {
    const CgiPair& pair = form.pairs[static_cast<size_t>(form.cursor)];
    ++form.cursor;
    if (strcmp(pair.name, name) == 0) return pair.value;
  }
  return nullptr;
}

CgiResult CgiGetInteger(CgiForm& form, const char* name, int32_t& out, int32_t fallback) {
  out = fallback;
  const char* value = CgiFirstValue(form, name);
  if (value == nullptr) return CgiResult::kAbsent;
  if (IsBlank(value)) return CgiResult::kNoData;
  size_t end = 0;
  if (!IsNumber(value, end)) return CgiResult::kNotANumber;
  out = ReadDecimal32(value);
  return CgiResult::kOk;
}

CgiResult CgiGetReal(CgiForm& form, const char* name, double& out, double fallback) {
  out = fallback;
  const char* value = CgiFirstValue(form, name);
  if (value == nullptr) return CgiResult::kAbsent;
  if (IsBlank(value)) return CgiResult::kNoData;
  size_t end = 0;
  if (!IsNumber(value, end)) return CgiResult::kNotANumber;
  out = strtod(value, nullptr);
  return CgiResult::kOk;
}

CgiResult CgiGetString(CgiForm& form, const char* name, char* out, size_t limit) {
  out[0] = '\0';
  const char* value = CgiFirstValue(form, name);
  if (value == nullptr) return CgiResult::kAbsent;
  const std::string_view text = value;
  out[text.copy(out, limit)] = '\0';
  return text.size() > limit ? CgiResult::kCutShort : CgiResult::kOk;
}

CgiResult CgiGetIntegerList(CgiForm& form, const char* name, std::span<int32_t> out,
                            int32_t maximum, size_t& count) {
  count = 0;
  const char* value = CgiFirstValue(form, name);
  if (value == nullptr) return CgiResult::kAbsent;
  if (*value == '\0') return CgiResult::kNoData;
  const auto isAbove = [maximum](int32_t number) { return maximum != 0 && number > maximum; };
  int32_t number = ReadDecimal32(value);
  if (isAbove(number)) return CgiResult::kNoData;
  if (!out.empty()) out[count++] = number;
  while (count < out.size() && (value = CgiNextValue(form, name)) != nullptr) {
    if (*value == '\0') continue;
    number = ReadDecimal32(value);
    if (!isAbove(number)) out[count++] = number;
  }
  return CgiResult::kOk;
}

size_t CgiCountValues(const CgiForm& form, const char* name) {
  return static_cast<size_t>(
      std::count_if(form.pairs.begin(), form.pairs.begin() + form.pairCount,
                    [name](const CgiPair& pair) { return strcmp(pair.name, name) == 0; }));
}

void CgiRewind(CgiForm& form) { form.cursor = 0; }

bool CgiStep(CgiForm& form) {
  if (form.cursor < form.pairCount) ++form.cursor;
  return form.cursor < form.pairCount;
}

const char* CgiCurrentName(const CgiForm& form) {
  return form.cursor < form.pairCount ? form.pairs[static_cast<size_t>(form.cursor)].name : nullptr;
}

const char* CgiCurrentValue(const CgiForm& form) {
  return form.cursor < form.pairCount ? form.pairs[static_cast<size_t>(form.cursor)].value
                                      : nullptr;
}

void CgiStripMetacharacters(char* text) {
  char* end = std::remove_if(text, text + strlen(text), [](char c) {
    return kMetacharacters.find(c) != kMetacharacters.npos;
  });
  *end = '\0';
}

}  // namespace vela
