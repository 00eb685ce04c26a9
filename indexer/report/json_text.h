// json_text.h: objects of a report in JSON.
//
// Of what is no UTF-8 in a text the bytes stay as they are: whoever writes the file repairs them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vela::indexer {

// A text in quotes.
void AppendJsonText(std::string_view text, std::string& out);

// "name":VALUE behind "{" or another member.
void AppendMember(std::string_view name, std::string_view text, std::string& out);
void AppendMember(std::string_view name, uint64_t number, std::string& out);
// A number of seconds, to the thousandth.
void AppendSeconds(std::string_view name, double seconds, std::string& out);

}  // namespace vela::indexer
