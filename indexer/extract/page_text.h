// page_text.h: the text of a page in reading order, gathered in the order of its markup. The two
// differ where a table holds text outside of its cells: browsers show that before the table.
//
// Text goes to the end of a strand. The page is one strand; what a table puts out is another, which
// ends where the table begins. A strand is a chain of pieces; all pieces are one chain, in reading
// order, so that nothing is moved when a strand grows in the middle of the page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

// How a part of a page counts as its text.
enum class TextShare : uint8_t {
  kContent,
  kHeadline,  // a heading of the page that stands in its frame: text, but alone it is no content
  kFrame,     // surrounds the content: text only where there is no content
};

// How near a part of a page is to what the page is about. Of some pages only the text from one of
// these on counts.
enum class TextRegion : uint8_t {
  kPage,
  kMain,    // in what the page calls its main part
  kChosen,  // in an element that the owner chose
};
inline constexpr size_t kTextRegionCount = 3;

struct TextStyle {
  uint8_t headingLevel = 0;  // 1 to 6; 0 outside of headings
  TextShare share = TextShare::kContent;
  uint32_t section = 0;  // which heading or defined term of the page (PageText::StartSection)
  TextRegion region = TextRegion::kPage;
  uint8_t weight = kWeightOfHeading;  // see TextRun
  bool operator==(const TextStyle&) const = default;
};

class PageText {
 public:
  using Strand = uint32_t;
  using Place = uint32_t;  // between two pieces
  static constexpr Strand kPageStrand = 0;

  // `takenFrom` must outlive this. When it refuses memory, text is dropped.
  explicit PageText(ReadingBudget& takenFrom);

  void Append(Strand strand, TextStyle style, std::string_view text);
  // A word that the strand ends with does not go on. Nothing at the beginning of a page. The blank
  // between is of that share and region.
  void Break(Strand strand, TextShare share, TextRegion region = TextRegion::kPage);

  // Where the strand ends now; what is appended to it later stands behind, and goes on with no word
  // from before.
  Place Mark(Strand strand, TextShare share, TextRegion region = TextRegion::kPage);
  // A new strand that ends at `place`, which must be no strand's already.
  Strand StartStrand(Place place);

  // A heading or a defined term begins: its number for TextStyle. What an address leads to it by,
  // `anchor`, may be empty and be given later.
  uint32_t StartSection(std::string anchor);
  void SetAnchor(uint32_t section, std::string anchor);
  bool HasAnchor(uint32_t section) const;

  // Whether anything but blanks was appended, or was appended as content.
  bool HasText() const { return hasText; }
  bool HasContent() const { return hasContent; }

  // Appends the text to `runs`, clean (see CleanText) and without runs of nothing but blanks. What
  // is outside of the region `from` and those after it is left out.
  void CopyTo(std::vector<TextRun>& runs, bool withFrame, TextRegion from = TextRegion::kPage);

 private:
  struct Piece {
    size_t begin;  // in `text`
    size_t end;
    uint32_t next;
    TextStyle style;
  };
  static constexpr uint32_t kNone = UINT32_MAX;

  bool Store(std::string_view added);
  bool AddPiece(Strand strand, TextStyle style);

  ReadingBudget& budget;
  std::string text;  // in the order of the markup
  std::vector<Piece> pieces;
  std::vector<uint32_t> last;        // of each strand its last piece
  std::vector<std::string> anchors;  // of each section, from number 1 on
  bool hasText = false;
  bool hasContent = false;
};

}  // namespace vela::indexer
