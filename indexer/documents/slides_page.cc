#include "indexer/documents/slides_page.h"

#include <string>
#include <unordered_set>
#include <vector>

#include "indexer/documents/office_package.h"
#include "indexer/documents/paragraphs.h"
#include "indexer/documents/xml_reading.h"

namespace vela::indexer {

namespace {

// Which slides there are, in their order: the ids of their relationships.
class SlideList : public XmlHandler {
 public:
  void Start(const XmlTag& tag) override {
    if (tag.name() == "sldId") ids.emplace_back(tag.QualifiedValue("id"));
  }
  void End(std::string_view) override {}
  void Text(std::string_view) override {}

  std::vector<std::string> ids;
};

// A slide, or the notes of the speaker to one.
class SlideReader : public XmlHandler {
 public:
  explicit SlideReader(Paragraphs& filled) : paragraphs_(filled) {}

  void Start(const XmlTag& tag) override {
    const std::string_view name = tag.name();
    if (name == "sld") {
      isHidden_ = tag.Value("show") == "0" || tag.Value("show") == "false";
    } else if (name == "Fallback") {
      ++fallbacks_;
    } else if (name == "sp") {
      level_ = 0;
      isFurniture_ = false;
    } else if (name == "ph") {
      StartPlaceholder(tag.Value("type"));
    } else if (name == "p") {
      paragraphs_.Begin(level_);
    } else if (name == "t") {
      isInText_ = true;
    } else if ((name == "br" || name == "tab") && isShown()) {
      paragraphs_.AppendBlank();
    }
  }
  void End(std::string_view name) override {
    if (name == "Fallback") {
      --fallbacks_;
    } else if (name == "sp") {
      level_ = 0;
      isFurniture_ = false;
    } else if (name == "p") {
      paragraphs_.End();
    } else if (name == "t") {
      isInText_ = false;
    }
  }
  void Text(std::string_view text) override {
    if (isInText_ && isShown()) paragraphs_.Append(text);
  }
  bool isHidden() const { return isHidden_; }

 private:
  void StartPlaceholder(std::string_view type) {
    if (type == "ctrTitle") level_ = 1;
    if (type == "title") level_ = 2;
    isFurniture_ = type == "sldNum" || type == "dt" || type == "ftr" || type == "hdr";
  }
  bool isShown() const { return !isHidden_ && !isFurniture_ && fallbacks_ == 0; }

  Paragraphs& paragraphs_;
  uint8_t level_ = 0;         // of the paragraphs of the shape that is open
  bool isFurniture_ = false;  // that shape stands on every slide
  bool isHidden_ = false;
  bool isInText_ = false;
  size_t fallbacks_ = 0;  // second forms of what was told that are open
};

// What the speaker says to the slide of that part. Notes that are damaged are none.
Reason ReadNotes(const Package& package, std::string_view slide, ReadingBudget& budget,
                 std::unordered_set<std::string>& seen, Paragraphs& paragraphs) {
  Relationships ofSlide;
  const Reason reason = ReadRelationships(package, slide, budget, ofSlide);
  if (reason != Reason::kNone) return reason == Reason::kDamaged ? Reason::kNone : reason;
  const std::string_view notes = TargetOf(ofSlide, "notesSlide");
  if (!package.Has(notes) || !seen.emplace(notes).second) return Reason::kNone;
  SlideReader reader(paragraphs);
  return ReadXmlBeside(package.Part(notes), budget, reader);
}

}  // namespace

Reason ReadSlidesPage(std::string_view bytes, ReadingBudget& budget, PageContent& page) {
  OfficePackage office;
  Reason reason = OpenOfficePackage(bytes, budget, office, page);
  if (reason != Reason::kNone) return reason;
  SlideList slides;
  reason = ReadXml(office.package.Part(office.main), budget, slides);
  if (reason != Reason::kNone) return reason;
  Paragraphs paragraphs(budget);
  std::unordered_set<std::string> seen;  // each part is read once, however often it is named
  for (const std::string& id : slides.ids) {
    const auto found = office.relationships.find(id);
    if (found == office.relationships.end() || !office.package.Has(found->second.target) ||
        !seen.insert(found->second.target).second) {
      continue;
    }
    SlideReader slide(paragraphs);
    reason = ReadXml(office.package.Part(found->second.target), budget, slide);
    if (reason == Reason::kNone && !slide.isHidden()) {
      reason = ReadNotes(office.package, found->second.target, budget, seen, paragraphs);
    }
    if (reason != Reason::kNone) return reason;
  }
  paragraphs.CopyTo(page);
  return budget.status;
}

}  // namespace vela::indexer
