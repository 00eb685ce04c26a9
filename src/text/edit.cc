#include "text/edit.h"

#include <algorithm>
#include <cstring>

#include "text/lower.h"
#include "text/owned_array.h"

namespace vela {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

}  // namespace

std::string_view TrimCharacters(std::string_view text, std::string_view characters) {
  const size_t first = text.find_first_not_of(characters);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(characters) - first + 1);
}

std::string_view TrimAll(std::string_view text) { return TrimCharacters(text, kBlanks); }

std::string_view TrimWhitespace(std::string_view text) {
  const std::string_view trimmed = TrimAll(text);
  return trimmed.empty() ? text : trimmed;
}

void ReplaceCharacters(char* text, size_t length, std::string_view from, std::string_view to) {
  for (size_t k = 0; k < from.size(); ++k) {
    std::replace(text, text + length, from[k], to[k]);
  }
}

bool ReplaceAll(char* text, size_t* length, size_t capacity, char* scratch, std::string_view from,
                std::string_view to) {
  if (from.empty() || from == to) return true;
  const std::string_view view(text, *length);
  size_t at = view.find(from);
  if (at == view.npos) return true;
  size_t written = 0;
  size_t copied = 0;
  const auto put = [&](std::string_view piece) {
    if (piece.size() >= capacity - written) return false;  // room for the terminator, too
    piece.copy(scratch + written, piece.size());
    written += piece.size();
    return true;
  };
  while (at != view.npos) {
    if (at > copied && !put(view.substr(copied, at - copied))) return false;
    if (!put(to)) return false;
    copied = at + from.size();
    at = view.find(from, at + 1);
  }
  if (copied < view.size() && !put(view.substr(copied))) return false;
  memcpy(text, scratch, written);
  text[written] = '\0';
  *length = written;
  return true;
}

size_t FindNoCase(std::string_view text, std::string_view word, bool utf8, size_t limit) {
  if (limit > 0) text = text.substr(0, limit);
  if (word.size() > text.size()) return text.npos;
  char onStack[8192];
  OwnedArray<char> onHeap;
  char* copies = onStack;
  if (text.size() + word.size() > sizeof onStack) {
    if (!onHeap.TryAllocate(text.size() + word.size())) return text.npos;
    copies = onHeap.data();
  }
  char* loweredText = copies;
  char* loweredWord = copies + text.size();
  text.copy(loweredText, text.size());
  word.copy(loweredWord, word.size());
  LowerText(loweredText, text.size(), utf8);
  LowerText(loweredWord, word.size(), utf8);
  return std::string_view(loweredText, text.size()).find({loweredWord, word.size()});
}

}  // namespace vela
