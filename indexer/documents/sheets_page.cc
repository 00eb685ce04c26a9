#include "indexer/documents/sheets_page.h"

#include <charconv>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "indexer/documents/office_package.h"
#include "indexer/documents/paragraphs.h"
#include "indexer/documents/xml_reading.h"

namespace vela::indexer {

namespace {

struct Sheet {
  std::string name;
  std::string relationship;
};

class SheetList : public XmlHandler {
 public:
  void Start(const XmlTag& tag) override {
    const std::string_view state = tag.Value("state");
    if (tag.name() != "sheet" || state == "hidden" || state == "veryHidden") return;
    sheets.push_back({std::string(tag.Value("name")), std::string(tag.QualifiedValue("id"))});
  }
  void End(std::string_view) override {}
  void Text(std::string_view) override {}

  std::vector<Sheet> sheets;
};

// The texts that cells share, by their numbers.
class SharedTexts : public XmlHandler {
 public:
  explicit SharedTexts(ReadingBudget& taken) : budget_(taken) {}

  void Start(const XmlTag& tag) override {
    if (tag.name() == "si") {
      // What a text costs beside its bytes.
      if (TakeBytes(budget_, sizeof(std::string))) texts.emplace_back();
    } else if (tag.name() == "rPh") {
      ++readings_;
    } else if (tag.name() == "t") {
      isInText_ = true;
    }
  }
  void End(std::string_view name) override {
    if (name == "rPh") --readings_;
    if (name == "t") isInText_ = false;
  }
  void Text(std::string_view text) override {
    if (!isInText_ || readings_ != 0 || texts.empty()) return;
    if (TakeBytes(budget_, text.size())) texts.back() += text;
  }

  std::vector<std::string> texts;

 private:
  ReadingBudget& budget_;
  size_t readings_ = 0;  // open elements that say how a text is spoken
  bool isInText_ = false;
};

class SheetReader : public XmlHandler {
 public:
  SheetReader(const std::vector<std::string>& known, Paragraphs& filled)
      : shared_(known), paragraphs_(filled) {}

  void Start(const XmlTag& tag) override {
    const std::string_view name = tag.name();
    if (name == "row") {
      paragraphs_.Begin();
    } else if (name == "c") {
      type_ = tag.Value("t");
      value_.clear();
    } else if (name == "v" || name == "t") {
      isInValue_ = true;
    } else if (name == "rPh") {
      ++readings_;
    }
  }
  void End(std::string_view name) override {
    if (name == "row") {
      paragraphs_.End();
    } else if (name == "c") {
      AddCell();
    } else if (name == "v" || name == "t") {
      isInValue_ = false;
    } else if (name == "rPh") {
      --readings_;
    }
  }
  void Text(std::string_view text) override {
    constexpr size_t kLimit = 40000;  // more than any cell may hold
    if (isInValue_ && readings_ == 0 && value_.size() < kLimit) value_ += text;
  }

 private:
  void AddCell() {
    if (type_ == "s") {
      size_t number = 0;
      const auto read = std::from_chars(value_.data(), value_.data() + value_.size(), number);
      if (read.ec != std::errc() || number >= shared_.size()) return;
      paragraphs_.Append(shared_[number]);
    } else if (type_ == "str" || type_ == "inlineStr") {
      paragraphs_.Append(value_);
    } else {
      return;
    }
    paragraphs_.AppendBlank();
  }

  const std::vector<std::string>& shared_;
  Paragraphs& paragraphs_;
  std::string type_;  // of the cell that is open
  std::string value_;
  bool isInValue_ = false;
  size_t readings_ = 0;
};

}  // namespace

Reason ReadSheetsPage(std::string_view bytes, ReadingBudget& budget, PageContent& page) {
  OfficePackage office;
  Reason reason = OpenOfficePackage(bytes, budget, office, page);
  if (reason != Reason::kNone) return reason;
  const Package& package = office.package;
  SheetList list;
  reason = ReadXml(package.Part(office.main), budget, list);
  if (reason != Reason::kNone) return reason;
  SharedTexts shared(budget);
  if (const std::string_view part = TargetOf(office.relationships, "sharedStrings");
      package.Has(part)) {
    reason = ReadXml(package.Part(part), budget, shared);
    if (reason != Reason::kNone) return reason;
  }
  Paragraphs paragraphs(budget);
  std::unordered_set<std::string_view> seen;  // a part is read once, however often it is named
  for (const Sheet& sheet : list.sheets) {
    const auto found = office.relationships.find(sheet.relationship);
    if (found == office.relationships.end() || !package.Has(found->second.target) ||
        !seen.insert(found->second.target).second) {
      continue;
    }
    if (!IsGivenSheetName(sheet.name)) {
      paragraphs.Begin(2);
      paragraphs.Append(sheet.name);
      paragraphs.End();
    }
    SheetReader cells(shared.texts, paragraphs);
    reason = ReadXml(package.Part(found->second.target), budget, cells);
    if (reason != Reason::kNone) return reason;
  }
  paragraphs.CopyTo(page);
  return budget.status;
}

}  // namespace vela::indexer
