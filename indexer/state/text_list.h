// text_list.h: texts one behind the other, each behind its length in decimal digits and ":".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vela::indexer {

void AppendText(std::string_view text, std::string& list);
void AppendNumber(int64_t number, std::string& list);

// Takes the first off; none when there is no whole one, or it is no number.
std::optional<std::string> TakeText(std::string_view& list);
std::optional<int64_t> TakeNumberText(std::string_view& list);

}  // namespace vela::indexer
