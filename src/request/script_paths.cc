#include "request/script_paths.h"

#include <unistd.h>

#include <algorithm>

#include "text/ascii.h"
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

// What is left of a word or an argument, read as runs of backslashes with one other byte behind
// each.
struct BackslashRun {
  size_t count = 0;
  char next = '\0';  // the byte behind the run; NUL at the end
};

BackslashRun TakeRun(std::string_view& argument) {
  BackslashRun run;
  run.count = std::min(argument.find_first_not_of('\\'), argument.size());
  argument.remove_prefix(run.count);
  if (argument.empty()) return run;
  run.next = argument[0];
  argument.remove_prefix(1);
  return run;
}

// The same of a word that is still encoded. A NUL ends it, as it ends an argument.
BackslashRun TakeDecodedRun(std::string_view& word) {
  BackslashRun run;
  while (!word.empty()) {
    const char decoded = TakeDecoded(word);
    if (decoded != '\\') {
      run.next = decoded;
      break;
    }
    ++run.count;
  }
  return run;
}

// Whether `argument` is the word, percent-decoded and cut at its first NUL. Some servers put a
// backslash before characters that mean something to a shell: any byte may have one, so that of n
// backslashes n to 2n come, and one more where another byte follows.
bool IsDecodedWord(std::string_view argument, std::string_view word) {
  for (;;) {
    const BackslashRun given = TakeRun(argument);
    const BackslashRun made = TakeDecodedRun(word);
    const size_t most = 2 * made.count + (made.next == '\0' ? 0 : 1);
    if (given.next != made.next || given.count < made.count || given.count > most) return false;
    if (made.next == '\0') return true;
  }
}

bool DecodesToNothing(std::string_view word) { return word.empty() || TakeDecoded(word) == '\0'; }

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
  bool anyLeft = true;  // a query ends with a word, an empty one behind a last "+"
  for (const char* argument : arguments) {
    bool isWord = false;
    while (anyLeft && !isWord) {
      const size_t end = queryString.find('+');
      const std::string_view word = queryString.substr(0, end);
      anyLeft = end != queryString.npos;
      queryString = anyLeft ? queryString.substr(end + 1) : std::string_view();
      isWord = IsDecodedWord(argument, word);
      if (!isWord && !DecodesToNothing(word)) return false;
    }
    if (!isWord) return false;
  }
  return !arguments.empty();
}

}  // namespace vela
