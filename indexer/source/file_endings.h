// file_endings.h: by what files are known to be pages, and of which type: the endings of their
// names, and the media types that web servers send with them.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "format/page_info.h"

namespace vela::indexer {

// What follows the last dot of a name, in lower case, for each FileType.
using FileEndings = std::array<std::vector<std::string>, kFileTypeCount>;

inline constexpr std::string_view kHtmlEndings[] = {"html", "htm", "xhtml", "xht", "shtml"};
// Of those, what web servers send as XML, whoever gave them.
inline constexpr std::string_view kXmlEndings[] = {"xhtml", "xht"};
inline constexpr std::string_view kTextEndings[] = {"txt", "text"};
inline constexpr std::string_view kMarkdownEndings[] = {"md", "markdown"};
inline constexpr std::string_view kSubtitleEndings[] = {"vtt", "srt"};
inline constexpr std::string_view kPdfEndings[] = {"pdf"};
inline constexpr std::string_view kWordEndings[] = {"docx", "docm", "dotx"};
inline constexpr std::string_view kSlidesEndings[] = {"pptx", "pptm", "ppsx"};
inline constexpr std::string_view kSheetsEndings[] = {"xlsx", "xlsm"};
inline constexpr std::string_view kOpenDocumentEndings[] = {"odt", "ott", "odp", "otp", "ods"};
inline constexpr std::string_view kEpubEndings[] = {"epub"};
inline constexpr std::string_view kRichTextEndings[] = {"rtf"};
inline constexpr std::string_view kOldWordEndings[] = {"doc"};
inline constexpr std::string_view kOldSlidesEndings[] = {"ppt", "pps"};
inline constexpr std::string_view kOldSheetsEndings[] = {"xls"};

inline constexpr std::string_view kHtmlMedia[] = {"text/html", "application/xhtml+xml"};
inline constexpr std::string_view kTextMedia[] = {"text/plain"};
inline constexpr std::string_view kMarkdownMedia[] = {"text/markdown", "text/x-markdown"};
inline constexpr std::string_view kSubtitleMedia[] = {"text/vtt", "application/x-subrip"};
inline constexpr std::string_view kPdfMedia[] = {"application/pdf", "application/x-pdf"};
inline constexpr std::string_view kWordMedia[] = {
    "application/vnd.openxmlformats-officedocument.wordprocessingml.document",
    "application/vnd.openxmlformats-officedocument.wordprocessingml.template",
    "application/vnd.ms-word.document.macroenabled.12"};
inline constexpr std::string_view kSlidesMedia[] = {
    "application/vnd.openxmlformats-officedocument.presentationml.presentation",
    "application/vnd.openxmlformats-officedocument.presentationml.slideshow",
    "application/vnd.ms-powerpoint.presentation.macroenabled.12"};
inline constexpr std::string_view kSheetsMedia[] = {
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet",
    "application/vnd.ms-excel.sheet.macroenabled.12"};
inline constexpr std::string_view kOpenDocumentMedia[] = {
    "application/vnd.oasis.opendocument.text", "application/vnd.oasis.opendocument.text-template",
    "application/vnd.oasis.opendocument.presentation",
    "application/vnd.oasis.opendocument.spreadsheet"};
inline constexpr std::string_view kEpubMedia[] = {"application/epub+zip"};
inline constexpr std::string_view kRichTextMedia[] = {"application/rtf", "text/rtf"};
inline constexpr std::string_view kOldWordMedia[] = {"application/msword"};
inline constexpr std::string_view kOldSlidesMedia[] = {"application/vnd.ms-powerpoint"};
inline constexpr std::string_view kOldSheetsMedia[] = {"application/vnd.ms-excel"};

struct FileTypeEndings {
  FileType type;
  std::string_view key;  // of [site] in the configuration, where an owner gives others
  std::span<const std::string_view> endings;
  std::span<const std::string_view> media;  // in lower case, without parameters
};

inline constexpr FileTypeEndings kFileTypeEndings[] = {
    {FileType::kHtml, "html", kHtmlEndings, kHtmlMedia},
    {FileType::kText, "text", kTextEndings, kTextMedia},
    {FileType::kMarkdown, "markdown", kMarkdownEndings, kMarkdownMedia},
    {FileType::kSubtitles, "subtitles", kSubtitleEndings, kSubtitleMedia},
    {FileType::kPdf, "pdf", kPdfEndings, kPdfMedia},
    {FileType::kWord, "docx", kWordEndings, kWordMedia},
    {FileType::kSlides, "pptx", kSlidesEndings, kSlidesMedia},
    {FileType::kSheets, "xlsx", kSheetsEndings, kSheetsMedia},
    {FileType::kOpenDocument, "opendocument", kOpenDocumentEndings, kOpenDocumentMedia},
    {FileType::kEpub, "epub", kEpubEndings, kEpubMedia},
    {FileType::kRichText, "rtf", kRichTextEndings, kRichTextMedia},
    {FileType::kOldWord, "doc", kOldWordEndings, kOldWordMedia},
    {FileType::kOldSlides, "ppt", kOldSlidesEndings, kOldSlidesMedia},
    {FileType::kOldSheets, "xls", kOldSheetsEndings, kOldSheetsMedia},
    // Where an owner wants them; of folders alone, as no crawl keeps them.
    {FileType::kPicture, "pictures", {}, {}},
};

constexpr bool EachTypeHasItsEndings() {
  for (size_t i = 0; i < std::size(kFileTypeEndings); ++i) {
    if (kFileTypeEndings[i].type != static_cast<FileType>(i)) return false;
  }
  return std::size(kFileTypeEndings) == kFileTypeCount;
}
static_assert(EachTypeHasItsEndings());

// Those that hold when the owner gives none.
inline FileEndings DefaultFileEndings() {
  FileEndings all;
  for (const FileTypeEndings& row : kFileTypeEndings) {
    all[static_cast<size_t>(row.type)].assign(row.endings.begin(), row.endings.end());
  }
  return all;
}

// The type of what a server sends as `media`, in lower case and without parameters; none when it is
// no page.
constexpr std::optional<FileType> TypeOfMedia(std::string_view media) {
  for (const FileTypeEndings& row : kFileTypeEndings) {
    if (std::ranges::find(row.media, media) != row.media.end()) return row.type;
  }
  return {};
}

}  // namespace vela::indexer
