#include "indexer/documents/old_slides_page.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/compound_builder.h"

namespace vela::indexer {
namespace {

using support::CompoundOf;
using support::LittleEndian;

std::string Record(uint32_t type, const std::string& content, uint32_t begin = 0) {
  return LittleEndian(begin, 2) + LittleEndian(type, 2) +
         LittleEndian(static_cast<uint32_t>(content.size()), 4) + content;
}
std::string Holding(uint32_t type, const std::string& records, uint32_t instance = 0) {
  return Record(type, records, instance << 4 | 15);
}
std::string Narrow(const std::string& text) { return Record(4008, text); }
std::string Wide(const std::u16string& text) {
  std::string bytes;
  for (const char16_t c : text) bytes += LittleEndian(c, 2);
  return Record(4000, bytes);
}
std::string Kind(uint32_t kind) { return Record(3999, LittleEndian(kind, 4)); }
std::string SlideReference(uint32_t reference) {
  return Record(1011, LittleEndian(reference, 4) + std::string(16, '\0'));
}
// A shape with a text; `placeholder` is its kind, 0 for none.
std::string Shape(const std::string& text, uint32_t placeholder = 0) {
  std::string facts;
  if (placeholder != 0) {
    facts = Record(3011, LittleEndian(0, 4) + LittleEndian(placeholder, 4));
  }
  return Holding(0xF004, Holding(0xF011, facts) + Holding(0xF00D, text));
}
std::string Slide(const std::string& shapes, bool isHidden = false) {
  const std::string info = Record(
      1017, std::string(10, '\0') + LittleEndian(isHidden ? 4 : 0, 2) + std::string(4, '\0'));
  return Holding(1006, info + Holding(1036, Holding(0xF003, shapes)));
}

// A presentation: the outline of its slides and, as references 2, 3 ..., the slides.
struct Show {
  std::string outline;
  std::vector<std::string> slides;
  std::string otherLists = {};
  uint32_t token = 0xE391C05F;

  std::string document = {};
  std::string user = {};

  void Build() {
    document.clear();
    std::string places;
    const auto put = [this, &places](const std::string& record) {
      places += LittleEndian(static_cast<uint32_t>(document.size()), 4);
      document += record;
    };
    put(Holding(1000, otherLists + Holding(4080, outline, 0)));
    for (const std::string& slide : slides) put(slide);
    AddEdit(1, static_cast<uint32_t>(1 + slides.size()), places, 0);
  }
  // Says where the references from `first` on are.
  void AddEdit(uint32_t first, uint32_t count, const std::string& places, uint32_t before) {
    const auto directory = static_cast<uint32_t>(document.size());
    document += Record(6002, LittleEndian(count << 20 | first, 4) + places);
    const auto edit = static_cast<uint32_t>(document.size());
    document +=
        Record(4085, std::string(8, '\0') + LittleEndian(before, 4) + LittleEndian(directory, 4) +
                         LittleEndian(1, 4) + std::string(8, '\0'));
    user = Record(4086, LittleEndian(20, 4) + LittleEndian(token, 4) + LittleEndian(edit, 4) +
                            std::string(8, '\0'));
  }
  std::string File(const std::string& folder = {}) const {
    return CompoundOf(
        {{folder + "Current User", user}, {folder + "PowerPoint Document", document}});
  }
};

Reason Read(const std::string& file, PageContent& page, const ReadingLimits& limits = {}) {
  ReadingBudget budget = StartReading(limits, file.size());
  return ReadOldSlidesPage(file, budget, page);
}

// "2 Heading|Text": the runs of a page, each behind its heading level; or why there is none.
std::string RunsOf(const std::string& file) {
  PageContent page;
  const Reason reason = Read(file, page);
  if (reason != Reason::kNone) return std::string(ReasonCode(reason));
  std::string all;
  for (const TextRun& run : page.body) {
    all += all.empty() ? "" : "|";
    if (run.headingLevel != 0) all += std::to_string(run.headingLevel) + " ";
    all += run.text.substr(0, run.text.find_last_not_of(' ') + 1);
  }
  return all;
}

Show TwoSlides() {
  Show show{
      .outline = SlideReference(2) + Kind(6) + Narrow("The show") + Kind(1) +
                 Narrow("First.\rSecond.") + SlideReference(3) + Kind(0) + Wide(u"Łódź"),
      .slides = {Slide(Shape(Narrow("Boxed."))), Slide(Shape(Wide(u"\U0001F600 at\vends.")))}};
  show.Build();
  return show;
}

constexpr char kTwoSlides[] = "1 The show|First. Second. Boxed.|2 Łódź|😀 at ends.";

TEST(OldSlidesPage, TakesTheOutlineAndTheTextBoxesOfEachSlide) {
  EXPECT_EQ(RunsOf(TwoSlides().File()), kTwoSlides);
}

TEST(OldSlidesPage, TakesLargeStreamsAndThoseOfTheFolderForPowerPoint97) {
  Show show = TwoSlides();
  show.document.resize(200000);
  EXPECT_EQ(RunsOf(show.File()), kTwoSlides);
  EXPECT_EQ(RunsOf(show.File("PP97_DUALSTORAGE/")), kTwoSlides);
  EXPECT_EQ(RunsOf(show.File("Embedded/")), "damaged");
}

TEST(OldSlidesPage, LeavesOutWhatNobodyReadsOnASlide) {
  Show show{.outline = SlideReference(2) + Narrow("shown.") + SlideReference(3) + Narrow("hidden."),
            .slides = {Slide(Shape(Narrow("7 July."), 7) + Shape(Narrow("page."), 8) +
                             Shape(Narrow("foot."), 9) + Shape(Narrow("head."), 10) +
                             Shape(Narrow("*")) + Shape(Narrow("body."), 14)),
                       Slide(Shape(Narrow("in the hidden.")), true)},
            .otherLists = Holding(4080, Narrow("of a master."), 1) +
                          Holding(4080, Narrow("of a list of notes."), 2)};
  show.Build();
  EXPECT_EQ(RunsOf(show.File()), "shown. body.");
}

TEST(OldSlidesPage, TakesTheNotesBehindTheirSlide) {
  const auto withNotes = [](const std::string& text, uint32_t notes, bool isHidden) {
    const std::string facts =
        Record(1007, std::string(16, '\0') + LittleEndian(notes, 4) + std::string(4, '\0'));
    std::string slide = Slide(Shape(Narrow(text)), isHidden);
    slide = slide.substr(8);
    return Holding(1006, facts + slide);
  };
  const auto notesReference = [](uint32_t reference, uint32_t number) {
    return Record(1011,
                  LittleEndian(reference, 4) + std::string(8, '\0') + LittleEndian(number, 4));
  };
  const auto notes = [](const std::string& text) {
    return Holding(1008, Holding(1036, Shape(Narrow("12"), 8) + Shape(Narrow(text), 12)));
  };
  Show show{
      .outline = SlideReference(2) + SlideReference(3) + SlideReference(4),
      .slides = {withNotes("One.", 700, false), withNotes("Two.", 0, false),
                 withNotes("Hidden.", 701, true), notes("Said to one."), notes("Said to nobody.")},
      .otherLists = Holding(4080, notesReference(5, 700) + notesReference(6, 701), 2)};
  show.Build();
  EXPECT_EQ(RunsOf(show.File()), "One. Said to one. Two.");
}

TEST(OldSlidesPage, OfASlideThatWasChangedTheLastFormCounts) {
  Show show{.outline = SlideReference(2), .slides = {Slide(Shape(Narrow("Before.")))}};
  show.Build();
  const auto firstEdit = static_cast<uint32_t>(show.document.size() - 36);
  const std::string place = LittleEndian(static_cast<uint32_t>(show.document.size()), 4);
  show.document += Slide(Shape(Narrow("After.")));
  show.AddEdit(2, 1, place, firstEdit);
  EXPECT_EQ(RunsOf(show.File()), "After.");
}

TEST(OldSlidesPage, SaysWhatItCannotRead) {
  Show show = TwoSlides();
  show.token = 0xF3D1C4DF;
  show.Build();
  EXPECT_EQ(RunsOf(show.File()), "encrypted");
  EXPECT_EQ(RunsOf("no presentation"), "damaged");
  EXPECT_EQ(RunsOf(CompoundOf({{"WordDocument", "text"}})), "damaged");
  show = TwoSlides();
  show.user.clear();
  EXPECT_EQ(RunsOf(show.File()), "damaged");
}

TEST(OldSlidesPage, ASlideIsReadOnce) {
  std::string outline;
  for (int i = 0; i < 1000; ++i) outline += SlideReference(2);
  Show show{.outline = outline, .slides = {Slide(Shape(Narrow("Again.")))}};
  show.Build();
  EXPECT_EQ(RunsOf(show.File()), "Again.");
}

TEST(OldSlidesPage, GroupsInGroupsEnd) {
  std::string shapes = Shape(Narrow("Deep."));
  for (int i = 0; i < 20; ++i) shapes = Holding(0xF003, shapes);
  Show show{.outline = SlideReference(2), .slides = {Slide(shapes)}};
  show.Build();
  EXPECT_EQ(RunsOf(show.File()), "Deep.");
  for (int i = 0; i < 10000; ++i) shapes = Holding(0xF003, shapes);
  show.slides = {Slide(shapes + Shape(Narrow("Beside.")))};
  show.Build();
  EXPECT_EQ(RunsOf(show.File()), "Beside.");
}

TEST(OldSlidesPage, TakesNoMoreMemoryThanItMay) {
  Show show = TwoSlides();
  show.document.resize(200000);
  PageContent page;
  EXPECT_EQ(Read(show.File(), page, {.bytes = 1000, .factor = 0}), Reason::kMarkupTooLarge);
}

TEST(OldSlidesPage, PlacesThatManyEditsShareAreCounted) {
  constexpr uint32_t kEdits = 100;
  constexpr uint32_t kRuns = 1000;  // of no places
  Show show = TwoSlides();
  const auto shared = static_cast<uint32_t>(show.document.size());
  show.document += Record(6002, std::string(kRuns * 4, '\0'));
  auto before = static_cast<uint32_t>(shared - 36);
  for (uint32_t i = 0; i < kEdits; ++i) {
    const auto edit = static_cast<uint32_t>(show.document.size());
    show.document +=
        Record(4085, std::string(8, '\0') + LittleEndian(before, 4) + LittleEndian(shared, 4) +
                         LittleEndian(1, 4) + std::string(8, '\0'));
    before = edit;
  }
  show.user.replace(16, 4, LittleEndian(before, 4));
  const std::string file = show.File();
  ReadingBudget budget = StartReading({}, file.size());
  PageContent page;
  EXPECT_EQ(ReadOldSlidesPage(file, budget, page), Reason::kNone);
  EXPECT_EQ(RunsOf(file), kTwoSlides);
  EXPECT_GT(budget.steps, uint64_t{kEdits} * kRuns);
}

// All that the header names of the table, and all that a sector of more of it names, which goes on
// in itself, is the last sector, of two bytes: it adds nothing.
TEST(OldSlidesPage, ATableThatDoesNotGrowEnds) {
  std::string file = TwoSlides().File().substr(0, 68) + LittleEndian(0, 8);
  for (int i = 0; i < 109; ++i) file += LittleEndian(1, 4);
  for (int i = 0; i < 127; ++i) file += LittleEndian(1, 4);
  file += LittleEndian(0, 4) + "xx";
  EXPECT_EQ(RunsOf(file), "damaged");
}

// What the sectors are is told by the file: with any of its bytes changed, or cut anywhere, the
// reading ends.
TEST(OldSlidesPage, EndsWhateverIsDamaged) {
  const std::string whole = TwoSlides().File();
  for (size_t at = 0; at < whole.size(); ++at) {
    for (const char value : {'\0', '\1', '\x7F', '\xFF'}) {
      std::string file = whole;
      file[at] = value;
      PageContent page;
      (void)Read(file, page);
    }
  }
  for (size_t size = 0; size < whole.size(); size += 7) {
    PageContent page;
    (void)Read(whole.substr(0, size), page);
  }
  // All sectors lead to the first one, in which all that counts stands.
  Show large = TwoSlides();
  large.document.resize(200000);
  std::string file = large.File();
  const std::string_view lastEntry("\xFF\xFF\xFF\xFF", 4);
  for (size_t at = file.size() - 2048; at < file.size(); at += 4) {
    if (file.compare(at, 4, lastEntry) != 0) file.replace(at, 4, LittleEndian(0, 4));
  }
  EXPECT_EQ(RunsOf(file), kTwoSlides);
}

}  // namespace
}  // namespace vela::indexer
