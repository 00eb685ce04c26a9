#include "request/script_paths.h"

#include <unistd.h>

#include "text/percent_code.h"

namespace vela {

namespace {

constexpr size_t kDirectoryArgumentLimit = 260;

// Takes the next byte off a percent-encoded word.
char TakeDecoded(std::string_view& word) {
  const int code = ReadPercentCode(word);
  const char decoded = code < 0 ? word[0] : static_cast<char>(code);
  word.remove_prefix(code < 0 ? 1 : kPercentCodeLength);
  return decoded;
}

// Whether `argument` is the word, percent-decoded. Some servers put a backslash before characters
// that mean something to a shell.
bool IsDecodedWord(std::string_view argument, std::string_view word) {
  while (!word.empty()) {
    const char decoded = TakeDecoded(word);
    if (argument.size() > 1 && argument[0] == '\\' && argument[1] == decoded) {
      argument.remove_prefix(1);
    }
    if (!argument.starts_with(decoded)) return false;
    argument.remove_prefix(1);
  }
  return argument.empty();
}

}  // namespace

void SplitProgramPath(ScriptPaths& paths, std::string_view programPath) {
  size_t separator = programPath.rfind('\\');
  if (separator == programPath.npos) separator = programPath.rfind('/');
  if (separator != programPath.npos) {
    Set(paths.scriptFileName, programPath.substr(separator + 1));
    Set(paths.scriptDirectory, programPath.substr(0, separator));
    return;
  }
  Set(paths.scriptFileName, programPath);
  if (getcwd(paths.scriptDirectory.bytes, sizeof paths.scriptDirectory.bytes) == nullptr) {
    Clear(paths.scriptDirectory);
  }
}

void ReadDirectorySwitch(ScriptPaths& paths, std::span<const char* const> arguments) {
  for (size_t i = 0; i + 1 < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (argument.size() < 2 || argument[0] != '/' || ToUpperAscii(argument[1]) != 'I') continue;
    const std::string_view directory = arguments[i + 1];
    if (directory.size() < kDirectoryArgumentLimit) Set(paths.scriptDirectory, directory);
  }
}

bool AreArgumentsOfQuery(std::span<const char* const> arguments, std::string_view queryString) {
  if (queryString.empty() || queryString.find('=') != queryString.npos) return false;
  for (const char* argument : arguments) {
    if (queryString.data() == nullptr) return false;  // more arguments than words
    const size_t end = queryString.find('+');
    if (!IsDecodedWord(argument, queryString.substr(0, end))) return false;
    queryString = end == queryString.npos ? std::string_view() : queryString.substr(end + 1);
  }
  return !arguments.empty();
}

}  // namespace vela
