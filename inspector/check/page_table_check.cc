#include "inspector/check/page_table_check.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "format/keyword_line.h"
#include "format/page_data.h"
#include "format/page_info.h"
#include "format/recommended.h"
#include "format/word_weight.h"
#include "index/byte_cursor.h"
#include "index/meta_data.h"
#include "inspector/check/stored_texts.h"
#include "inspector/findings/plain_text.h"
#include "text/numbers.h"

namespace vela::inspector {

namespace {

std::string_view StatusText(LoadStatus status) {
  switch (status) {
    case LoadStatus::kOk:
    case LoadStatus::kPlaceholder:
      break;
    case LoadStatus::kCannotOpen:
      return "it cannot be opened";
    case LoadStatus::kNoMemory:
      return "NumPages or PageInfoSize is none";
    case LoadStatus::kTooShort:
      return "it is shorter than PageInfoSize";
    case LoadStatus::kRecordBeyondEnd:
      return "it has fewer records than NumPages, or one with a wrong length";
    case LoadStatus::kSlackAtEnd:
      return "it has more records than NumPages, or one with a wrong length";
  }
  return {};
}

class InfoCheck {
 public:
  explicit InfoCheck(const CheckInput& input)
      : input_(input),
        settings_(input.index.settings),
        pages_(input.index.pages),
        layout_(pages_.big ? kBigPageInfo : kSmallPageInfo) {}

  // The places in the page data that records name go to `claimed`.
  void Run(std::vector<uint64_t>& claimed) {
    const uint32_t count = PageCount(input_.index);
    input_.progress.Begin(kPageInfoFileName, count);
    size_t at = 0;
    for (uint32_t page = 0; page < count; ++page) {
      input_.progress.Step(page);
      const auto length =
          static_cast<size_t>(ReadLittleEndian(pages_.image, at, layout_.lengthWidth));
      page_ = page;
      at_ = at;
      CheckRecord(length);
      claimed.push_back(PageDataOffset(pages_, page));
      at += length;
    }
  }

 private:
  void Add(Fault fault, const std::string& detail) {
    input_.findings.Add(fault, kPageInfoFileName, Byte(at_),
                        "page " + std::to_string(page_) + ": " + detail);
  }

  void CheckRecord(size_t length) {
    const size_t tail = settings_.Ranking == 1 ? kTitleMassWidth : 0;
    if (length < layout_.fixedSize + pages_.categoryBytes + tail) {
      return Add(Fault::kWrongForm,
                 "a record of " + CountOfText(length, "byte", "bytes") + " is too short");
    }
    if (!IsLineStart(input_.index.pageData.bytes(), PageDataOffset(pages_, page_))) {
      Add(Fault::kBadReference, "no line of the page data begins at byte " +
                                    std::to_string(PageDataOffset(pages_, page_)));
    }
    CheckCategories();
    CheckFields(tail);
  }

  void CheckCategories() {
    for (size_t bit = static_cast<size_t>(std::max(settings_.NumCats, 0));
         bit < 8 * pages_.categoryBytes; ++bit) {
      if (PageCategoryBit(pages_, page_, CategoryByte(bit), CategoryBit(bit))) {
        Add(Fault::kBadCategory, "category " + std::to_string(bit));
      }
    }
  }

  void CheckFields(size_t tail) {
    ByteCursor cursor{PageMetaData(pages_, page_)};
    for (const MetaFieldDef& field : settings_.metaFields) {
      if (!UsesMetaFields(settings_)) break;
      const MetaData data = TakeMetaData(cursor, field);
      const auto isNone = [&field](int32_t choice) { return choice >= field.numValues; };
      const bool isBeyond =
          (field.type == kMetaDropDown && data.hasValue && isNone(data.number)) ||
          (field.type == kMetaMultiple && std::ranges::any_of(data.indexes, [&](char c) {
             return isNone(static_cast<unsigned char>(c));
           }));
      if (isBeyond) Add(Fault::kBadField, "no value of the list of " + Quoted(View(field.name)));
      if (!IsCleanText(data.text, IsUtf8(settings_))) {
        Add(Fault::kBadText, "its value of " + Quoted(View(field.name)));
      }
    }
    if (cursor.bad) return Add(Fault::kBadField, "the record ends in the values of its fields");
    if (cursor.rest.size() != tail) {
      Add(Fault::kBadField, CountOfText(cursor.rest.size(), "byte", "bytes") +
                                " behind its fields instead of " + std::to_string(tail));
    }
  }

  const CheckInput& input_;
  const Settings& settings_;
  const PageTable& pages_;
  const PageInfoLayout& layout_;
  uint32_t page_ = 0;
  size_t at_ = 0;  // of its record
};

void CheckInfo(const CheckInput& input, std::vector<uint64_t>& claimed) {
  const OpenedIndex& index = input.index;
  if (index.pagesStatus != LoadStatus::kOk) {
    input.findings.Add(Fault::kUnreadable, kPageInfoFileName, kWholeFile,
                       std::string(StatusText(index.pagesStatus)));
    input.findings.SetUnusable();
    return;
  }
  if (index.pages.file.bytes().size() != index.pages.image.size()) {
    input.findings.Add(Fault::kWrongSize, kPageInfoFileName, Byte(index.pages.image.size()),
                       CountOfText(index.pages.file.bytes().size(), "byte", "bytes") +
                           ", but PageInfoSize is " + std::to_string(index.settings.PageInfoSize));
  }
  InfoCheck(input).Run(claimed);
}

// The lines of the recommended pages; their places go to `claimed`.
void CheckRecommended(const CheckInput& input, std::vector<uint64_t>& claimed) {
  const OpenedIndex& index = input.index;
  const Settings& settings = index.settings;
  FileImage file;
  const auto add = [&](Fault fault, Place place, std::string detail) {
    input.findings.Add(fault, kRecommendedFileName, place, std::move(detail));
  };
  if (!file.Open(index.directory, kRecommendedFileName, false)) {
    if (settings.Recommended == 1) {
      add(Fault::kMissing, kWholeFile, {});
      input.findings.SetUnusable();
    }
    return;
  }
  NumberedLines lines{file.bytes()};
  std::string_view line;
  while (lines.Next(line)) {
    const Place place = Line(lines.number);
    if (line.size() + 1 > KeywordLineLimit(settings.MaxKeyWordLineLen)) {
      add(Fault::kTooLong, place,
          CountOfText(line.size() + 1, "byte", "bytes") + ", more than MaxKeyWordLineLen lets be");
    }
    const size_t blank = line.rfind(' ');
    if (!lines.isWhole || blank == line.npos || blank == 0 || !IsDecimal(line.substr(blank + 1))) {
      add(Fault::kWrongForm, place, Quoted(line));
      continue;
    }
    const std::string_view keywords = line.substr(0, blank);
    if (keywords.size() > kRecommendedKeywordsLimit) {
      add(Fault::kTooLong, place, CountOfText(keywords.size(), "byte", "bytes") + " of keywords");
    }
    if (!IsCleanText(keywords, IsUtf8(settings))) add(Fault::kBadText, place, Quoted(keywords));
    const int64_t offset = ReadDecimal64(line.substr(blank + 1));
    if (offset < 0 || !IsLineStart(index.pageData.bytes(), static_cast<uint64_t>(offset))) {
      add(Fault::kBadReference, place,
          "no line of the page data begins at byte " + std::to_string(offset));
      continue;
    }
    claimed.push_back(static_cast<uint64_t>(offset));
  }
  if (static_cast<int64_t>(lines.number) != settings.NumRecommended) {
    add(Fault::kWrongCount, kWholeFile,
        CountOfText(lines.number, "line", "lines") + ", but NumRecommended is " +
            std::to_string(settings.NumRecommended));
  }
}

class DataCheck {
 public:
  explicit DataCheck(const CheckInput& input)
      : input_(input), file_(input.index.pageData.bytes()) {}

  // `claimed`: the places of lines that somebody names, ascending.
  void Run(const std::vector<uint64_t>& claimed) {
    input_.progress.Begin(kPageDataFileName, file_.size());
    NumberedLines lines{file_};
    std::string_view line;
    auto next = claimed.begin();
    for (uint64_t at = 0; lines.Next(line); at = file_.size() - lines.rest.size()) {
      number_ = lines.number;
      input_.progress.Step(at);
      while (next != claimed.end() && *next < at) ++next;
      if (next == claimed.end() || *next != at) {
        Add(Fault::kUnclaimed, "no page and nothing recommended has this line");
      }
      CheckLine(line, lines.isWhole);
    }
  }

 private:
  void Add(Fault fault, std::string detail) {
    input_.findings.Add(fault, kPageDataFileName, Line(number_), std::move(detail));
  }

  void CheckLine(std::string_view line, bool isWhole) {
    if (line.size() + 1 > kPageDataLineLimit) {
      Add(Fault::kTooLong, CountOfText(line.size() + 1, "byte", "bytes"));
    }
    const auto ends = static_cast<size_t>(std::ranges::count(line, kPageDataFieldEnd));
    if (ends != kPageDataFields || !line.ends_with(kPageDataFieldEnd) || !isWhole) {
      return Add(Fault::kWrongForm, Quoted(line));
    }
    constexpr std::string_view kNames[kPageDataFields] = {"address", "title", "description",
                                                          "picture"};
    for (size_t field = 0; field < kPageDataFields; ++field) {
      const std::string_view text = line.substr(0, line.find(kPageDataFieldEnd));
      line.remove_prefix(text.size() + 1);
      CheckText(text, kNames[field]);
      const bool isAddress = field == 0 || field + 1 == kPageDataFields;
      if (isAddress && text.size() > kAddressLimit) {
        Add(Fault::kTooLong,
            "the " + std::string(kNames[field]) + ": " + CountOfText(text.size(), "byte", "bytes"));
      }
      if (field == 0 && text.empty()) Add(Fault::kWrongForm, "no address");
    }
  }

  void CheckText(std::string_view text, std::string_view name) {
    if (!IsCleanText(text, IsUtf8(input_.index.settings))) {
      Add(Fault::kBadText, "the " + std::string(name) + ", " + Quoted(text));
    }
    if (HasMarkup(text)) {
      Add(Fault::kUnsafeText, "the " + std::string(name) + ", " + Quoted(text));
    }
  }

  const CheckInput& input_;
  std::string_view file_;
  uint64_t number_ = 0;  // of the line
};

// No two pages have one line or one address.
void CheckOnce(const CheckInput& input) {
  std::unordered_set<std::string_view> addresses;
  for (uint32_t page = 0; page < PageCount(input.index); ++page) {
    const std::string_view address = TextsOf(input.index, page).url;
    if (address.empty() || addresses.insert(address).second) continue;
    input.findings.Add(Fault::kRepeated, kPageDataFileName, kWholeFile,
                       "the address of page " + std::to_string(page) + ", " + Quoted(address));
  }
}

}  // namespace

void CheckPageTable(const CheckInput& input) {
  std::vector<uint64_t> claimed;
  CheckInfo(input, claimed);
  CheckRecommended(input, claimed);
  if (!input.index.pageData.isOpen()) {
    input.findings.Add(Fault::kMissing, kPageDataFileName, kWholeFile, {});
    input.findings.SetUnusable();
    return;
  }
  std::ranges::sort(claimed);
  DataCheck(input).Run(claimed);
  CheckOnce(input);
}

}  // namespace vela::inspector
