#include "indexer/collect/meta_values.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "format/meta_fields.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/stored_text.h"
#include "text/ascii.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

// "$", "EUR", the bytes of other currency signs, and blanks.
bool IsCurrencyByte(char c) {
  return c == '$' || c == ' ' || IsUpper(c) || static_cast<unsigned char>(c) >= 0x80;
}

void AppendNumber(int32_t number, std::string& out) {
  auto bits = static_cast<uint32_t>(number);
  for (size_t i = 0; i < kMetaNumberWidth; ++i) {
    out += static_cast<char>(bits & 0xFF);
    bits >>= 8;
  }
}

// The place of `text` in the list, without regard to case; -1 when it is not there.
int FindListValue(const FieldRule& field, std::string_view text) {
  const std::string wanted = LowerUtf8Copy(text);
  for (size_t i = 0; i < field.values.size(); ++i) {
    if (LowerUtf8Copy(field.values[i]) == wanted) return static_cast<int>(i);
  }
  return -1;
}

bool ReadWholeNumber(std::string_view text, int32_t& number) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number != kNoMetaNumber;
}

// One field of one page.
struct FieldInput {
  const FieldRule& field;
  const IndexCharset& charset;
  std::vector<std::string_view> contents;  // trimmed, none empty, in the order of the page
  std::vector<Finding>& findings;

  void LeaveOut(std::string_view text, Reason reason) const {
    findings.push_back({reason, field.name, std::string(text)});
  }
};

void AppendListIndexes(const FieldInput& in, std::string& out) {
  std::string indexes;
  for (std::string_view content : in.contents) {
    while (!content.empty()) {
      const size_t end = std::min(content.find_first_of(",;"), content.size());
      const std::string_view text = TrimAll(content.substr(0, end));
      content.remove_prefix(std::min(end + 1, content.size()));
      if (text.empty()) continue;
      const int index = FindListValue(in.field, text);
      if (index < 0) {
        in.LeaveOut(text, Reason::kNotInList);
      } else if (indexes.find(static_cast<char>(index)) == indexes.npos) {
        indexes += static_cast<char>(index);
      }
    }
  }
  out += static_cast<char>(indexes.size());
  out += indexes;
}

void AppendValue(const FieldInput& in, std::string& out) {
  const std::string_view text = in.contents.empty() ? std::string_view() : in.contents.front();
  switch (in.field.kind) {
    case kMetaNumeric:
    case kMetaMoney: {
      const bool money = in.field.kind == kMetaMoney;
      int32_t number = kNoMetaNumber;
      if (!text.empty() && !(money ? ReadAmount(text, number) : ReadWholeNumber(text, number))) {
        in.LeaveOut(text, money ? Reason::kNoAmount : Reason::kNoWholeNumber);
        number = kNoMetaNumber;
      }
      AppendNumber(number, out);
      break;
    }
    case kMetaDropDown: {
      const int index = text.empty() ? -1 : FindListValue(in.field, text);
      if (index < 0 && !text.empty()) in.LeaveOut(text, Reason::kNotInList);
      out += static_cast<char>(index < 0 ? kNoMetaChoice : index);
      break;
    }
    case kMetaMultiple:
      AppendListIndexes(in, out);
      break;
    default:
      out += StoredElementText(text, kFieldTextLimit, in.charset);
      out += kMetaTextEnd;
      break;
  }
}

}  // namespace

bool ReadAmount(std::string_view text, int32_t& hundredths) {
  bool negative = false;
  // The currency may stand before or behind the sign of the number.
  while (!text.empty() && !IsDigit(text.front())) {
    const char c = text.front();
    if (c == '-' && !negative) {
      negative = true;
    } else if (!IsCurrencyByte(c) && c != '+') {
      return false;
    }
    text.remove_prefix(1);
  }
  if (text.empty()) return false;
  int64_t value = 0;
  size_t at = 0;
  for (; at < text.size() && IsDigit(text[at]); ++at) {
    value = value * 10 + (text[at] - '0');
    if (value > std::numeric_limits<int32_t>::max()) return false;
  }
  value *= 100;
  if (at < text.size() && (text[at] == '.' || text[at] == ',')) {
    const std::string_view decimals = text.substr(at + 1);
    const size_t count = std::min(decimals.find_first_not_of("0123456789"), decimals.size());
    if (count < 1 || count > 2) return false;
    value += (decimals[0] - '0') * 10 + (count > 1 ? decimals[1] - '0' : 0);
    at += 1 + count;
  }
  if (!std::ranges::all_of(text.substr(at), IsCurrencyByte)) return false;
  if (negative) value = -value;
  if (value > std::numeric_limits<int32_t>::max() || value <= kNoMetaNumber) return false;
  hundredths = static_cast<int32_t>(value);
  return true;
}

std::string EncodeMetaValues(const std::vector<FieldRule>& fields, const IndexCharset& charset,
                             std::span<const MetaElement> elements,
                             std::vector<Finding>& findings) {
  std::string out;
  for (const FieldRule& field : fields) {
    FieldInput in{.field = field, .charset = charset, .contents = {}, .findings = findings};
    const std::string name = LowerUtf8Copy(field.meta);
    for (const auto& [elementName, content] : elements) {
      const std::string_view text = TrimAll(content);
      if (elementName == name && !text.empty()) in.contents.push_back(text);
    }
    AppendValue(in, out);
  }
  return out;
}

}  // namespace vela::indexer
