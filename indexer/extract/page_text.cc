#include "indexer/extract/page_text.h"

#include <algorithm>
#include <utility>

#include "indexer/words/clean_text.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool IsBlank(std::string_view text) { return text.find_first_not_of(kBlanks) == text.npos; }

// Makes room for `count` more elements. False when the budget refuses.
template <typename Container>
bool MakeRoom(Container& container, size_t count, ReadingBudget& budget) {
  const size_t needed = container.size() + count;
  if (needed <= container.capacity()) return true;
  const size_t room = std::max(needed, container.capacity() * 2);
  if (!TakeBytes(budget, (room - container.capacity()) * sizeof(container[0]))) return false;
  container.reserve(room);
  return true;
}

void Finish(TextRun& run, std::vector<TextRun>& runs, ReadingBudget& budget) {
  CleanText(run.text);
  if (IsBlank(run.text) || !MakeRoom(runs, 1, budget)) return;
  runs.push_back(std::move(run));
}

}  // namespace

PageText::PageText(ReadingBudget& takenFrom) : budget(takenFrom) {
  pieces.push_back({0, 0, kNone, {}});
  last.push_back(0);
}

bool PageText::Store(std::string_view added) {
  if (!MakeRoom(text, added.size(), budget)) return false;
  text += added;
  TakeSteps(budget, added.size());
  return true;
}

// An empty piece at the end of the strand.
bool PageText::AddPiece(Strand strand, TextStyle style) {
  if (!MakeRoom(pieces, 1, budget)) return false;
  const auto added = static_cast<uint32_t>(pieces.size());
  Piece& before = pieces[last[strand]];
  pieces.push_back({text.size(), text.size(), before.next, style});
  before.next = added;
  last[strand] = added;
  return true;
}

void PageText::Append(Strand strand, TextStyle style, std::string_view added) {
  const Piece& at = pieces[last[strand]];
  const bool goesOn = at.end == text.size() && at.style == style;
  if ((!goesOn && !AddPiece(strand, style)) || !Store(added)) return;
  pieces[last[strand]].end = text.size();
  if (hasContent || (hasText && style.share != TextShare::kContent) || IsBlank(added)) return;
  hasText = true;
  hasContent = style.share == TextShare::kContent;
}

void PageText::Break(Strand strand, TextShare share, TextRegion region) {
  const Piece& at = pieces[last[strand]];
  if (at.begin == at.end) return;
  // A blank of the frame goes with it.
  const bool counts = at.style.share != TextShare::kFrame || share == TextShare::kFrame;
  if (counts && text[at.end - 1] == ' ') return;
  TextStyle style = at.style;
  style.share = share;
  style.region = region;
  Append(strand, style, " ");
}

PageText::Place PageText::Mark(Strand strand, TextShare share, TextRegion region) {
  const Place place = last[strand];
  TextStyle style = pieces[place].style;
  style.share = share;
  style.region = region;
  if (AddPiece(strand, style) && Store(" ")) pieces[last[strand]].end = text.size();
  return place;
}

PageText::Strand PageText::StartStrand(Place place) {
  if (!MakeRoom(last, 1, budget)) return kPageStrand;
  last.push_back(place);
  return static_cast<Strand>(last.size() - 1);
}

uint32_t PageText::StartSection(std::string anchor) {
  if (!MakeRoom(anchors, 1, budget)) return 0;
  anchors.emplace_back();
  const auto section = static_cast<uint32_t>(anchors.size());
  SetAnchor(section, std::move(anchor));
  return section;
}

void PageText::SetAnchor(uint32_t section, std::string anchor) {
  if (!TakeBytes(budget, anchor.size())) return;
  anchors[section - 1] = std::move(anchor);
}

bool PageText::HasAnchor(uint32_t section) const { return !anchors[section - 1].empty(); }

void PageText::CopyTo(std::vector<TextRun>& runs, bool withFrame, TextRegion from) {
  TextRun run;
  bool isApart = false;  // something was left out behind the last piece
  uint32_t section = 0;
  for (uint32_t i = 0; i != kNone; i = pieces[i].next) {
    const Piece& piece = pieces[i];
    const TextStyle& style = piece.style;
    if (style.share == TextShare::kFrame && !withFrame) continue;
    if (style.region < from) {
      isApart = piece.begin != piece.end || isApart;
      continue;
    }
    const size_t length = piece.end - piece.begin;
    if (!TakeSteps(budget, length + 1) || !MakeRoom(run.text, length + (isApart ? 1 : 0), budget))
      return;
    if (style.headingLevel != run.headingLevel || style.section != section ||
        style.weight != run.weight) {
      Finish(run, runs, budget);
      section = style.section;
      run = TextRun{{}, style.headingLevel};
      run.weight = style.weight;
      if (section != 0) run.anchor = anchors[section - 1];
    }
    if (isApart && length != 0 && !run.text.empty()) run.text += ' ';
    isApart = isApart && length == 0;
    run.text.append(text, piece.begin, length);
  }
  Finish(run, runs, budget);
}

}  // namespace vela::indexer
