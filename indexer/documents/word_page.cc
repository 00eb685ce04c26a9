#include "indexer/documents/word_page.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "indexer/documents/office_package.h"
#include "indexer/documents/paragraphs.h"
#include "indexer/documents/xml_reading.h"
#include "indexer/words/lower_copy.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr uint8_t kLowestHeading = 6;

struct Style {
  std::string base;  // id of the style on which it rests, or empty
  std::optional<uint8_t> level;
};
using Styles = std::map<std::string, Style, std::less<>>;

// An outline level as it stands in the document: 0 to 8 of headings, 9 of other text.
std::optional<uint8_t> OutlineLevel(std::string_view value) {
  if (value.size() != 1 || !IsDigit(value.front())) return {};
  const auto level = static_cast<uint8_t>(value.front() - '0' + 1);
  return level > kLowestHeading ? uint8_t{0} : level;
}

class StylesReader : public XmlHandler {
 public:
  explicit StylesReader(Styles& filled) : styles_(filled) {}

  void Start(const XmlTag& tag) override {
    const std::string_view value = tag.Value("val");
    if (tag.name() == "style") {
      id_ = tag.Value("styleId");
      at_ = {};
    } else if (tag.name() == "basedOn") {
      at_.base = value;
    } else if (tag.name() == "outlineLvl") {
      at_.level = OutlineLevel(value);
    } else if (tag.name() == "name" && !at_.level.has_value()) {
      at_.level = LevelOfName(LowerAsciiCopy(value));
    }
  }
  void End(std::string_view name) override {
    if (name == "style") styles_.emplace(id_, std::move(at_));
  }
  void Text(std::string_view) override {}

 private:
  // Programs keep the names of these styles in every language.
  static std::optional<uint8_t> LevelOfName(std::string_view name) {
    constexpr std::string_view kHeading = "heading ";
    if (name == "title") return uint8_t{1};
    if (name.size() != kHeading.size() + 1 || !name.starts_with(kHeading)) return {};
    const char level = name.back();
    if (level < '1' || level > '0' + kLowestHeading) return {};
    return static_cast<uint8_t>(level - '0');
  }

  Styles& styles_;
  std::string id_;
  Style at_;
};

uint8_t LevelOfStyle(const Styles& styles, std::string_view id) {
  constexpr int kLongestChain = 20;  // of styles that rest on one another
  for (int i = 0; i < kLongestChain; ++i) {
    const auto found = styles.find(id);
    if (found == styles.end()) return 0;
    if (found->second.level.has_value()) return *found->second.level;
    id = found->second.base;
  }
  return 0;
}

class TextReader : public XmlHandler {
 public:
  TextReader(const Styles& known, Paragraphs& filled) : styles_(known), paragraphs_(filled) {}

  void Start(const XmlTag& tag) override {
    const std::string_view name = tag.name();
    if (leftOut_ != 0 || IsLeftOut(name)) {
      ++leftOut_;
    } else if (name == "p") {
      paragraphs_.Begin();
      runIsHidden_ = false;
    } else if (name == "pStyle") {
      paragraphs_.SetLevel(LevelOfStyle(styles_, tag.Value("val")));
    } else if (name == "outlineLvl") {
      if (const auto level = OutlineLevel(tag.Value("val"))) paragraphs_.SetLevel(*level);
    } else if (name == "r") {
      runIsHidden_ = false;
      isInRun_ = true;
    } else if (name == "vanish") {
      const std::string_view value = tag.Value("val");
      runIsHidden_ = isInRun_ && value != "0" && value != "false" && value != "off";
    } else if (name == "t") {
      isInText_ = true;
    } else if (!runIsHidden_ && (name == "tab" || name == "br" || name == "cr") && isInRun_) {
      paragraphs_.AppendBlank();
    } else if (!runIsHidden_ && name == "noBreakHyphen") {
      paragraphs_.Append("-");
    }
  }
  void End(std::string_view name) override {
    if (leftOut_ != 0) {
      --leftOut_;
    } else if (name == "p") {
      paragraphs_.End();
    } else if (name == "r") {
      isInRun_ = false;
    } else if (name == "t") {
      isInText_ = false;
    }
  }
  void Text(std::string_view text) override {
    if (isInText_ && leftOut_ == 0 && !runIsHidden_) paragraphs_.Append(text);
  }

 private:
  // What was moved away or deleted, the second of two forms of one thing, and the older properties
  // of a changed paragraph.
  static bool IsLeftOut(std::string_view name) {
    return name == "del" || name == "moveFrom" || name == "Fallback" || name == "pPrChange" ||
           name == "rPrChange";
  }

  const Styles& styles_;
  Paragraphs& paragraphs_;
  size_t leftOut_ = 0;  // elements that are open inside of one that is left out, and itself
  bool isInRun_ = false;
  bool runIsHidden_ = false;
  bool isInText_ = false;
};

}  // namespace

Reason ReadWordPage(std::string_view bytes, ReadingBudget& budget, PageContent& page) {
  OfficePackage office;
  Reason reason = OpenOfficePackage(bytes, budget, office, page);
  if (reason != Reason::kNone) return reason;
  const Package& package = office.package;
  Styles styles;
  StylesReader stylesReader(styles);
  const std::string_view stylesPart = TargetOf(office.relationships, "styles");
  if (package.Has(stylesPart)) {
    reason = ReadXmlBeside(package.Part(stylesPart), budget, stylesReader);
    if (reason != Reason::kNone) return reason;
  }
  Paragraphs paragraphs(budget);
  for (const std::string_view part :
       {std::string_view(office.main), TargetOf(office.relationships, "footnotes"),
        TargetOf(office.relationships, "endnotes")}) {
    if (!package.Has(part)) continue;
    TextReader text(styles, paragraphs);
    reason = ReadXml(package.Part(part), budget, text);
    if (reason != Reason::kNone) return reason;
  }
  paragraphs.CopyTo(page);
  return budget.status;
}

}  // namespace vela::indexer
