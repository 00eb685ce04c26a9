#include "indexer/state/text_list.h"

#include <charconv>
#include <system_error>

namespace vela::indexer {

namespace {

template <typename Number>
std::optional<Number> NumberIn(std::string_view digits) {
  Number number = 0;
  // A number has one form only: what is read back is what was written.
  if (digits.starts_with("-0") || (digits.starts_with('0') && digits.size() > 1)) return {};
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return {};
  return number;
}

}  // namespace

void AppendText(std::string_view text, std::string& list) {
  list.append(std::to_string(text.size())).append(":").append(text);
}

void AppendNumber(int64_t number, std::string& list) { AppendText(std::to_string(number), list); }

std::optional<std::string> TakeText(std::string_view& list) {
  const size_t colon = list.find(':');
  if (colon == list.npos) return {};
  const std::optional<size_t> size = NumberIn<size_t>(list.substr(0, colon));
  list.remove_prefix(colon + 1);
  if (!size.has_value() || *size > list.size()) return {};
  std::string text(list.substr(0, *size));
  list.remove_prefix(*size);
  return text;
}

std::optional<int64_t> TakeNumberText(std::string_view& list) {
  return NumberIn<int64_t>(TakeText(list).value_or(""));
}

}  // namespace vela::indexer
