#include "indexer/documents/open_document_page.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>
#include <utility>

#include "indexer/documents/document_properties.h"
#include "indexer/documents/office_package.h"
#include "indexer/documents/package.h"
#include "indexer/documents/paragraphs.h"
#include "indexer/documents/xml_reading.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kContentPart = "content.xml";
constexpr std::string_view kPropertiesPart = "meta.xml";
constexpr std::string_view kManifestPart = "META-INF/manifest.xml";

bool IsWanted(std::string_view name) {
  return name == kContentPart || name == kPropertiesPart || name == kManifestPart;
}

// The parts of an encrypted document are listed with how to decrypt them.
class ManifestReader : public XmlHandler {
 public:
  void Start(const XmlTag& tag) override {
    if (tag.name() == "encryption-data") isEncrypted = true;
  }
  void End(std::string_view) override {}
  void Text(std::string_view) override {}

  bool isEncrypted = false;
};

class ContentReader : public XmlHandler {
 public:
  explicit ContentReader(Paragraphs& filled) : paragraphs_(filled) {}

  void Start(const XmlTag& tag) override {
    const std::string_view name = tag.name();
    NoteHiding(tag);
    if (leftOut_ != 0 || IsLeftOut(tag) || IsHidden(tag)) {
      ++leftOut_;
    } else if (name == "p") {
      paragraphs_.Begin(frameLevel_);
    } else if (name == "h") {
      paragraphs_.Begin(HeadingLevel(tag.Value("outline-level")));
    } else if (name == "s" || name == "tab" || name == "line-break") {
      paragraphs_.AppendBlank();
    } else if (name == "frame") {
      frameLevel_ = tag.Value("class") == "title" ? 2 : 0;
    } else if (name == "spreadsheet") {
      isSpreadsheet_ = true;
    } else if (name == "table" && isSpreadsheet_ && !IsGivenSheetName(tag.Value("name"))) {
      paragraphs_.Begin(2);
      paragraphs_.Append(tag.Value("name"));
      paragraphs_.End();
    }
  }
  void End(std::string_view name) override {
    if (name == "style") style_.clear();
    if (leftOut_ != 0) {
      --leftOut_;
    } else if (name == "p" || name == "h") {
      paragraphs_.End();
    } else if (name == "frame") {
      frameLevel_ = 0;
    }
  }
  void Text(std::string_view text) override {
    if (leftOut_ == 0) paragraphs_.Append(text);
  }

 private:
  static std::string StyleKey(std::string_view family, std::string_view name) {
    return std::string(family).append(" ").append(name);
  }
  // The document's own styles stand before its text. Those of hidden sheets and slides say so, and
  // those of hidden text.
  void NoteHiding(const XmlTag& tag) {
    const std::string_view name = tag.name();
    if (name == "style") style_ = StyleKey(tag.Value("family"), tag.Value("name"));
    const bool hides = (name == "text-properties" && tag.Value("display") == "none") ||
                       (name == "table-properties" && tag.Value("display") == "false") ||
                       (name == "drawing-page-properties" && tag.Value("visibility") == "hidden");
    if (hides && !style_.empty()) hidden_.insert(style_);
  }
  bool IsHidden(const XmlTag& tag) const {
    constexpr std::pair<std::string_view, std::string_view> kFamilies[] = {
        {"p", "paragraph"}, {"h", "paragraph"},       {"span", "text"},
        {"table", "table"}, {"page", "drawing-page"},
    };
    if (hidden_.empty()) return false;
    const auto* family =
        std::ranges::find(kFamilies, tag.name(), [](const auto& e) { return e.first; });
    return family != std::end(kFamilies) &&
           hidden_.contains(StyleKey(family->second, tag.Value("style-name")));
  }
  static bool IsLeftOut(const XmlTag& tag) {
    constexpr std::string_view kElements[] = {
        "tracked-changes", "annotation",  "note-citation", "ruby-text",        "forms",
        "scripts",         "binary-data", "desc",          "automatic-styles", "event-listeners",
        "page-number",
    };
    constexpr std::string_view kFrames[] = {"header", "footer", "date-time", "page-number"};
    if (std::ranges::find(kElements, tag.name()) != std::end(kElements)) return true;
    return tag.name() == "frame" &&
           std::ranges::find(kFrames, tag.Value("class")) != std::end(kFrames);
  }
  static uint8_t HeadingLevel(std::string_view outline) {
    constexpr uint8_t kLowest = 6;
    if (outline.size() != 1 || !IsDigit(outline.front()) || outline.front() == '0') return 1;
    return std::min(static_cast<uint8_t>(outline.front() - '0'), kLowest);
  }

  Paragraphs& paragraphs_;
  size_t leftOut_ = 0;      // elements that are open inside of one that is left out, and itself
  uint8_t frameLevel_ = 0;  // of the paragraphs in the frame that is open
  bool isSpreadsheet_ = false;
  std::string style_;                       // StyleKey of the one that is told; or empty
  std::unordered_set<std::string> hidden_;  // styles of what nobody sees
};

}  // namespace

Reason ReadOpenDocumentPage(std::string_view bytes, ReadingBudget& budget, PageContent& page) {
  Package package;
  Reason reason = package.Open(bytes, &IsWanted, budget);
  if (reason != Reason::kNone) return reason;
  ManifestReader manifest;
  DocumentProperties properties(page);
  Paragraphs paragraphs(budget);
  ContentReader content(paragraphs);
  if (package.Has(kManifestPart)) {
    reason = ReadXmlBeside(package.Part(kManifestPart), budget, manifest);
    if (manifest.isEncrypted) return Reason::kEncrypted;
  }
  if (reason == Reason::kNone && package.Has(kPropertiesPart)) {
    reason = ReadXmlBeside(package.Part(kPropertiesPart), budget, properties);
  }
  if (reason == Reason::kNone) reason = ReadXml(package.Part(kContentPart), budget, content);
  if (reason != Reason::kNone) return reason;
  paragraphs.CopyTo(page);
  return budget.status;
}

}  // namespace vela::indexer
