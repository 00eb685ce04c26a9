#include "indexer/source/media_type.h"

#include <algorithm>
#include <iterator>

#include "indexer/words/lower_copy.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

// What servers call a file of which they know nothing.
constexpr std::string_view kUnknown[] = {"", "application/octet-stream", "application/x-download",
                                         "binary/octet-stream"};

constexpr std::string_view kFurniture[] = {
    "text/css",
    "text/javascript",
    "application/javascript",
    "application/x-javascript",
    "application/xml",
    "text/xml",
    "application/json",
    "application/manifest+json",
    "application/wasm",
    "application/rss+xml",
    "application/atom+xml",
};

std::string_view TakeParameter(std::string_view& rest) {
  bool isQuoted = false;
  size_t end = 0;
  for (; end < rest.size() && (isQuoted || rest[end] != ';'); ++end) {
    if (rest[end] == '"') isQuoted = !isQuoted;
  }
  const std::string_view parameter = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return TrimAll(parameter);
}

std::optional<FileType> TypeOfName(std::string_view path, const FileEndings& endings) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const size_t dot = name.rfind('.');
  if (dot == name.npos) return {};
  const std::string ending = LowerAsciiCopy(name.substr(dot + 1));
  for (size_t type = 0; type < kFileTypeCount; ++type) {
    if (std::ranges::find(endings[type], ending) != endings[type].end()) {
      return static_cast<FileType>(type);
    }
  }
  return {};
}

}  // namespace

MediaType ReadMediaType(std::string_view field) {
  constexpr std::string_view kCharset = "charset=";
  constexpr size_t kNameLimit = 100;
  MediaType type;
  type.name = LowerAsciiCopy(TakeParameter(field).substr(0, kNameLimit));
  while (!field.empty()) {
    const std::string parameter = LowerAsciiCopy(TakeParameter(field));
    if (!parameter.starts_with(kCharset) || !type.charset.empty()) continue;
    std::string_view value = std::string_view(parameter).substr(kCharset.size());
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
      value = value.substr(1, value.size() - 2);
    }
    type.charset = TrimAll(value.substr(0, kNameLimit));
  }
  return type;
}

std::optional<FileType> PageType(std::string_view mediaType, std::string_view path,
                                 const FileEndings& endings) {
  const bool isUnknown = std::ranges::find(kUnknown, mediaType) != std::end(kUnknown);
  const std::optional<FileType> known = TypeOfMedia(mediaType);
  if (!known.has_value() && !isUnknown) return {};
  // Servers that know no more send Markdown and subtitles as text.
  const std::optional<FileType> named = TypeOfName(path, endings);
  const bool isNamedText = named == FileType::kMarkdown || named == FileType::kSubtitles;
  if (isUnknown || (known == FileType::kText && isNamedText)) return named;
  if (endings[static_cast<size_t>(*known)].empty()) return {};  // the owner leaves it out
  return known;
}

bool IsXmlType(std::string_view mediaType) { return mediaType == "application/xhtml+xml"; }

bool IsFurnitureType(std::string_view mediaType) {
  return mediaType.starts_with("image/") || mediaType.starts_with("font/") ||
         std::ranges::find(kFurniture, mediaType) != std::end(kFurniture);
}

}  // namespace vela::indexer
