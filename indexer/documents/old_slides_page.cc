#include "indexer/documents/old_slides_page.h"

#include <cstdint>
#include <set>
#include <string>
#include <unordered_map>

#include "indexer/documents/compound_file.h"
#include "indexer/documents/paragraphs.h"
#include "indexer/words/encode_character.h"

namespace vela::indexer {

namespace {

// A record: two bytes, the lower four bits 15 when it holds records, the others its instance; two
// bytes its type; four bytes how many follow.
constexpr size_t kRecordHead = 8;
constexpr uint32_t kHoldsRecords = 15;
constexpr size_t kNestingLimit = 40;  // groups of shapes in one another

enum RecordType : uint16_t {
  kSlide = 1006,
  kSlideFacts = 1007,
  kNotes = 1008,
  kSlideReference = 1011,
  kSlideShowInfo = 1017,
  kDrawing = 1036,
  kPlaceholder = 3011,
  kTextKind = 3999,
  kWideText = 4000,    // UTF-16
  kNarrowText = 4008,  // the same without its upper bytes, which are 0
  kSlideList = 4080,
  kEdit = 4085,
  kShape = 0xF004,
  kShapeText = 0xF00D,
  kShapeFacts = 0xF011,
};
constexpr uint32_t kEncryptedToken = 0xF3D1C4DF;
constexpr uint32_t kOfSlides = 0;  // instances of lists; 1 is of masters
constexpr uint32_t kOfNotes = 2;
constexpr uint32_t kHiddenFlag = 4;
constexpr uint32_t kTitle = 0;
constexpr uint32_t kCentredTitle = 6;

bool IsFurniture(uint32_t placeholder) { return placeholder >= 7 && placeholder <= 10; }

struct Record {
  uint16_t type = 0;
  uint16_t instance = 0;
  bool holdsRecords = false;
  std::string_view content;
};

// Takes the next record off `rest`; the last one may be cut.
bool TakeRecord(std::string_view& rest, Record& record) {
  if (rest.size() < kRecordHead) return false;
  const uint32_t begin = NumberAt(rest, 0, 2);
  record.holdsRecords = (begin & 15) == kHoldsRecords;
  record.instance = static_cast<uint16_t>(begin >> 4);
  record.type = static_cast<uint16_t>(NumberAt(rest, 2, 2));
  const uint32_t length = NumberAt(rest, 4, 4);
  rest.remove_prefix(kRecordHead);
  record.content = rest.substr(0, length);
  rest.remove_prefix(record.content.size());
  return true;
}

void AppendCharacter(std::string& text, char32_t c) {
  char encoded[kCharacterBytesLimit];
  text.append(encoded, EncodeCharacter(c, encoded));
}

class SlideShow {
 public:
  // `document` and `budget` must outlive this.
  SlideShow(std::string_view document, ReadingBudget& budget)
      : document_(document), budget_(budget), paragraphs_(budget) {}

  Reason Read(uint32_t lastEdit, PageContent& page);

 private:
  bool ReadEdits(uint32_t lastEdit);
  bool RecordAt(uint32_t offset, Record& record) const;
  void ReadNotesList(std::string_view list);
  void ReadSlideList(std::string_view list);
  void StartSlide(uint32_t reference);
  void EndSlide();
  bool TakePart(uint32_t reference, uint16_t type, Record& part);
  void AddDrawing(std::string_view parts);
  void AddShapes(std::string_view records, size_t depth);
  void AddTexts(std::string_view records);
  void AddText(const Record& record, uint32_t kind);

  std::string_view document_;
  ReadingBudget& budget_;
  Paragraphs paragraphs_;
  uint32_t documentReference_ = 0;
  std::unordered_map<uint32_t, uint32_t> places_;  // of a reference
  std::unordered_map<uint32_t, uint32_t> notes_;   // references, by their numbers
  std::set<uint32_t> read_;                        // references of slides and notes
  std::string_view slide_;                         // the one whose outline is read
  uint32_t notesOfSlide_ = 0;                      // their number
  bool isHidden_ = false;
};

bool SlideShow::RecordAt(uint32_t offset, Record& record) const {
  if (offset >= document_.size()) return false;
  std::string_view rest = document_.substr(offset);
  return TakeRecord(rest, record);
}

// Each time a presentation is saved, what has changed may be put behind the rest, with the places
// of that; the last edit leads to the one before it.
bool SlideShow::ReadEdits(uint32_t lastEdit) {
  uint32_t edit = lastEdit;
  Record record;
  while (RecordAt(edit, record) && record.type == kEdit) {
    const uint32_t before = NumberAt(record.content, 8, 4);
    const uint32_t directory = NumberAt(record.content, 12, 4);
    if (documentReference_ == 0) documentReference_ = NumberAt(record.content, 16, 4);
    if (!RecordAt(directory, record)) return false;
    std::string_view places = record.content;
    // Any number of edits may have the same places.
    while (places.size() >= 4 && TakeSteps(budget_, 1)) {
      const uint32_t run = NumberAt(places, 0, 4);
      places.remove_prefix(4);
      const uint32_t first = run & 0xFFFFF;
      for (uint32_t i = 0; i < run >> 20 && places.size() >= 4; ++i) {
        if (!TakeSteps(budget_, 1)) return false;
        const bool isNew = places_.emplace(first + i, NumberAt(places, 0, 4)).second;
        if (isNew && !TakeBytes(budget_, 32)) return false;
        places.remove_prefix(4);
      }
    }
    if (before >= edit) break;  // they go backwards, and so they end
    edit = before;
  }
  return documentReference_ != 0;
}

void SlideShow::AddText(const Record& record, uint32_t kind) {
  const size_t width = record.type == kWideText ? 2 : 1;
  const uint8_t level = kind == kCentredTitle ? 1 : kind == kTitle ? 2 : 0;
  std::string text;
  const auto end = [&] {
    // A star stands where the number of the slide is shown, or the date.
    if (!text.empty() && text != "*") {
      paragraphs_.Begin(level);
      paragraphs_.Append(text);
      paragraphs_.End();
    }
    text.clear();
  };
  for (size_t at = 0; at + width <= record.content.size(); at += width) {
    char32_t c = NumberAt(record.content, at, width);
    if (c >= 0xD800 && c < 0xE000) {
      const uint32_t low = NumberAt(record.content, at + 2, 2);
      if (c < 0xDC00 && low >= 0xDC00 && low < 0xE000) {
        c = 0x10000 + ((c & 0x3FF) << 10 | (low & 0x3FF));
        at += 2;
      } else {
        c = 0xFFFD;
      }
    }
    if (c == '\r') {
      end();
    } else {
      AppendCharacter(text, c);
    }
  }
  if (TakeSteps(budget_, record.content.size())) end();
}

// The texts among `records`, those of a text box.
void SlideShow::AddTexts(std::string_view records) {
  uint32_t kind = UINT32_MAX;
  Record record;
  while (TakeRecord(records, record) && TakeSteps(budget_, 1)) {
    if (record.type == kTextKind) kind = NumberAt(record.content, 0, 4);
    if (record.type == kWideText || record.type == kNarrowText) AddText(record, kind);
  }
}

void SlideShow::AddShapes(std::string_view records, size_t depth) {
  Record record;
  while (TakeRecord(records, record) && TakeSteps(budget_, 1)) {
    if (record.type == kShape) {
      bool isFurniture = false;
      std::string_view text;
      std::string_view parts = record.content;
      for (Record part; TakeRecord(parts, part) && TakeSteps(budget_, 1);) {
        if (part.type == kShapeText) text = part.content;
        if (part.type != kShapeFacts) continue;
        std::string_view facts = part.content;
        for (Record fact; TakeRecord(facts, fact) && TakeSteps(budget_, 1);) {
          if (fact.type == kPlaceholder) isFurniture = IsFurniture(NumberAt(fact.content, 4, 1));
        }
      }
      if (!isFurniture) AddTexts(text);
    } else if (record.holdsRecords && depth < kNestingLimit) {
      AddShapes(record.content, depth + 1);
    }
  }
}

// The slide or the notes of that reference, once: a list that has it twice would be read as often.
bool SlideShow::TakePart(uint32_t reference, uint16_t type, Record& part) {
  const auto place = places_.find(reference);
  return place != places_.end() && TakeBytes(budget_, 48) && read_.insert(reference).second &&
         RecordAt(place->second, part) && part.type == type;
}

void SlideShow::StartSlide(uint32_t reference) {
  slide_ = {};
  notesOfSlide_ = 0;
  isHidden_ = false;
  Record slide;
  if (!TakePart(reference, kSlide, slide)) return;
  slide_ = slide.content;
  std::string_view parts = slide_;
  for (Record part; TakeRecord(parts, part) && TakeSteps(budget_, 1);) {
    if (part.type == kSlideShowInfo) isHidden_ = NumberAt(part.content, 10, 1) & kHiddenFlag;
    if (part.type == kSlideFacts) notesOfSlide_ = NumberAt(part.content, 16, 4);
  }
}

void SlideShow::AddDrawing(std::string_view parts) {
  for (Record part; TakeRecord(parts, part) && TakeSteps(budget_, 1);) {
    if (part.type == kDrawing) AddShapes(part.content, 0);
  }
}

void SlideShow::EndSlide() {
  if (isHidden_) return;
  AddDrawing(slide_);
  const auto reference = notes_.find(notesOfSlide_);
  Record notes;
  if (reference != notes_.end() && TakePart(reference->second, kNotes, notes)) {
    AddDrawing(notes.content);
  }
}

void SlideShow::ReadNotesList(std::string_view list) {
  for (Record record; TakeRecord(list, record) && TakeSteps(budget_, 1);) {
    if (record.type != kSlideReference || !TakeBytes(budget_, 32)) continue;
    notes_.emplace(NumberAt(record.content, 12, 4), NumberAt(record.content, 0, 4));
  }
}

void SlideShow::ReadSlideList(std::string_view list) {
  uint32_t kind = UINT32_MAX;
  Record record;
  while (TakeRecord(list, record) && TakeSteps(budget_, 1)) {
    if (record.type == kSlideReference) {
      EndSlide();
      StartSlide(NumberAt(record.content, 0, 4));
      kind = UINT32_MAX;
    } else if (record.type == kTextKind) {
      kind = NumberAt(record.content, 0, 4);
    } else if ((record.type == kWideText || record.type == kNarrowText) && !isHidden_) {
      AddText(record, kind);
    }
  }
  EndSlide();
}

Reason SlideShow::Read(uint32_t lastEdit, PageContent& page) {
  Record document;
  if (!ReadEdits(lastEdit) || !places_.contains(documentReference_) ||
      !RecordAt(places_[documentReference_], document)) {
    return budget_.status == Reason::kNone ? Reason::kDamaged : budget_.status;
  }
  // The list of notes stands behind that of the slides.
  for (const uint32_t instance : {kOfNotes, kOfSlides}) {
    std::string_view parts = document.content;
    for (Record part; TakeRecord(parts, part) && TakeSteps(budget_, 1);) {
      if (part.type != kSlideList || part.instance != instance) continue;
      instance == kOfNotes ? ReadNotesList(part.content) : ReadSlideList(part.content);
    }
  }
  paragraphs_.CopyTo(page);
  return budget_.status;
}

}  // namespace

Reason ReadOldSlidesPage(std::string_view bytes, ReadingBudget& budget, PageContent& page) {
  CompoundFile file;
  const Reason reason = file.Open(bytes, budget);
  if (reason != Reason::kNone) return reason;
  // A file for both PowerPoint 95 and 97 has the streams of the latter in a folder.
  for (const std::string folder : {"PP97_DUALSTORAGE/", ""}) {
    const std::string user = file.Stream(folder + "Current User", budget);
    const std::string document = file.Stream(folder + "PowerPoint Document", budget);
    if (budget.status != Reason::kNone) return budget.status;
    if (user.empty() || document.empty()) continue;
    // A record: its size, a token, and where the last edit stands.
    if (NumberAt(user, kRecordHead + 4, 4) == kEncryptedToken) return Reason::kEncrypted;
    return SlideShow(document, budget).Read(NumberAt(user, kRecordHead + 8, 4), page);
  }
  return Reason::kDamaged;
}

}  // namespace vela::indexer
