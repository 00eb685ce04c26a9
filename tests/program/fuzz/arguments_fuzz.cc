// arguments_fuzz.cc: no query string chooses the index directory through the arguments that web
// servers make of it. Input: the query string.
//
// A visitor writes the query string; what each server makes of it is written here by the servers'
// own rules, and the program must take every such list for the visitor's.
#include <string>
#include <string_view>
#include <vector>

#include "program/fuzz/check.h"
#include "request/script_paths.h"

namespace vela::fuzz {
namespace {

using Arguments = std::vector<std::string>;

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// An escape that is none stays as it stands.
std::string PercentDecoded(std::string_view word) {
  std::string decoded;
  for (size_t i = 0; i < word.size(); ++i) {
    const bool isEscape = word[i] == '%' && i + 2 < word.size() && HexDigit(word[i + 1]) >= 0 &&
                          HexDigit(word[i + 2]) >= 0;
    if (!isEscape) {
      decoded += word[i];
      continue;
    }
    decoded += static_cast<char>(HexDigit(word[i + 1]) * 16 + HexDigit(word[i + 2]));
    i += 2;
  }
  return decoded;
}

// An argument is a C string.
std::string UpToNulByte(const std::string& text) { return text.substr(0, text.find('\0')); }

std::string ShellEscaped(std::string_view word, std::string_view escaped) {
  std::string text;
  for (const char c : word) {
    if (escaped.find(c) != std::string_view::npos) text += '\\';
    text += c;
  }
  return text;
}

std::vector<std::string_view> Words(std::string_view query) {
  std::vector<std::string_view> words;
  for (size_t plus = query.find('+'); plus != query.npos; plus = query.find('+')) {
    words.push_back(query.substr(0, plus));
    query.remove_prefix(plus + 1);
  }
  words.push_back(query);
  return words;
}

// RFC 3875, 4.4: the words, decoded, with no more than that.
Arguments ByTheStandard(std::string_view query) {
  Arguments arguments;
  for (const std::string_view word : Words(query)) {
    arguments.push_back(UpToNulByte(PercentDecoded(word)));
  }
  return arguments;
}

// The same with the shell's characters escaped, as the standard allows; `escaped` chooses them.
Arguments EscapedForAShell(std::string_view query, std::string_view escaped) {
  Arguments arguments;
  for (const std::string_view word : Words(query)) {
    arguments.push_back(ShellEscaped(UpToNulByte(PercentDecoded(word)), escaped));
  }
  return arguments;
}

// Apache: runs of "+" separate as one, shell characters and 0xFF are escaped, and a list is cut
// where it has too many words.
Arguments ByApache(std::string_view query, size_t most) {
  Arguments arguments;
  for (const std::string_view word : Words(query)) {
    if (word.empty() && !arguments.empty()) continue;
    if (arguments.size() == most) break;
    arguments.push_back(
        ShellEscaped(UpToNulByte(PercentDecoded(word)), "&;`'\"|*?~<>^()[]{}$\\\n\xFF"));
  }
  return arguments;
}

// Whether the program passes all of the arguments over: a directory that was chosen stays.
bool ArePassedOver(const Arguments& arguments, std::string_view query) {
  std::vector<const char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
  return pointers.empty() || AreArgumentsOfQuery(pointers, query);
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela::fuzz;
  const std::string_view input = Text(data, size);
  // The query string is a C string itself; with a "=" no server makes arguments of it.
  const std::string_view query = input.substr(0, input.find('\0'));
  if (query.empty() || query.find('=') != query.npos) return 0;

  const Arguments plain = ByTheStandard(query);
  VELA_CHECK(ArePassedOver(plain, query));
  for (size_t most = 1; most < plain.size() && most < 4; ++most) {
    VELA_CHECK(ArePassedOver({plain.begin(), plain.begin() + static_cast<ptrdiff_t>(most)}, query));
  }
  // What a server escapes differs; whatever it is, the list is the visitor's.
  for (const char* escaped : {"", "\\", ";&|<>()$`\\\"' \t\n", "/Ia.", "\\/"}) {
    VELA_CHECK(ArePassedOver(EscapedForAShell(query, escaped), query));
  }
  VELA_CHECK(ArePassedOver(ByApache(query, 1000), query));
  VELA_CHECK(ArePassedOver(ByApache(query, 2), query));

  // An owner's own arguments are none of the query's, unless the visitor typed these very words.
  const char* const owners[] = {"/I", "/srv/an index"};
  if (PercentDecoded(query).find("/srv/an index") == std::string::npos) {
    VELA_CHECK(!vela::AreArgumentsOfQuery(owners, query));
  }
  return 0;
}
