#include "output/context_text.h"

#include "text/edit.h"
#include "text/fixed_text.h"
#include "text/run_cut.h"

namespace vela {

namespace {

constexpr size_t kPassageLimit = 2048;  // bytes of a piece, marks included
// The mark that is closed behind the last word may pass the limit.
using Passage = FixedText<kPassageLimit + sizeof "</vela:highlight>">;

constexpr std::string_view kDamagedTextMessage =
    "Critical error with pagetext file. Check that your files are from the same indexing session.";

// How a context stands in the document.
struct ContextForm {
  std::string_view open;
  std::string_view openMark;  // ahead of a matched word
  std::string_view closeMark;
  std::string_view before;  // ahead of each passage
  std::string_view end;     // behind the last
  std::string_view close;
};

constexpr ContextForm kHtmlForm = {.open = "<div class=\"context\">\n",
                                   .openMark = "<span class=\"highlight\">",
                                   .closeMark = "</span>",
                                   .before = " <b>...</b> ",
                                   .end = " <b>...</b>",
                                   .close = "</div>\n"};
constexpr ContextForm kMarkedXmlForm = {.open = "<vela:context>",
                                        .openMark = "<vela:highlight>",
                                        .closeMark = "</vela:highlight>",
                                        .before = " ... ",
                                        .end = " ...",
                                        .close = "</vela:context>\n"};
constexpr ContextForm kPlainXmlForm = {.open = kMarkedXmlForm.open,
                                       .openMark = "",
                                       .closeMark = "",
                                       .before = kMarkedXmlForm.before,
                                       .end = kMarkedXmlForm.end,
                                       .close = kMarkedXmlForm.close};

// Tells by the classes of the reserved word numbers where a blank stands.
class Spacing {
 public:
  explicit Spacing(const Settings& settings)
      : prefixes_(settings.DictReservedPrefixes),
        suffixes_(settings.DictReservedSuffixes),
        noSpaces_(settings.DictReservedNoSpaces),
        cutsRuns_(CutsRuns(settings)) {}

  bool TakesBlank(int32_t word, std::string_view text) {
    const bool isPiece = cutsRuns_ && word > noSpaces_ && RunPieceLength(text) == text.size();
    // Two pieces of a script without blanks; a blank between them is an entry of its own.
    const bool blank = Decide(word) && !(isPiece && afterPiece_);
    afterPiece_ = isPiece;
    previous_ = word;
    hasPrevious_ = true;
    return blank;
  }

 private:
  bool Decide(int32_t word) {
    if (nextWithoutBlank_) {
      nextWithoutBlank_ = false;
      return false;
    }
    if (word <= noSpaces_) {
      if (suffixes_ < word && word <= prefixes_) {
        nextWithoutBlank_ = true;
        return true;
      }
      if (word > prefixes_) nextWithoutBlank_ = true;
      return false;
    }
    return !hasPrevious_ || previous_ <= prefixes_ || previous_ > noSpaces_;
  }

  int32_t prefixes_;
  int32_t suffixes_;
  int32_t noSpaces_;
  bool cutsRuns_;
  int32_t previous_ = 0;
  bool hasPrevious_ = false;
  bool nextWithoutBlank_ = false;
  bool afterPiece_ = false;
};

// Builds the text of a piece, with marks and without.
void BuildPassage(const SnippetSource& source, const SnippetPiece& piece, const ContextForm& form,
                  Passage& marked, Passage& plain) {
  Spacing spacing(source.settings);
  size_t used = 0;
  bool isOpen = false;
  for (int32_t i = 0; i < piece.count; ++i) {
    const SnippetSlot& slot = piece.slots[static_cast<size_t>(i)];
    const bool opens = slot.mark == SlotMark::kWhole || slot.mark == SlotMark::kOpen;
    const bool closes = slot.mark == SlotMark::kWhole || slot.mark == SlotMark::kClose;
    const std::string_view open = opens ? form.openMark : "";
    const std::string_view close = closes ? form.closeMark : "";
    const std::string_view word = slot.word < source.dictionary.size()
                                      ? source.dictionary.DisplayText(slot.word, slot.variant)
                                      : std::string_view();
    const std::string_view blank = spacing.TakesBlank(slot.word, word) ? " " : "";
    const size_t added = blank.size() + open.size() + word.size() + close.size();
    if (used + added > kPassageLimit) break;
    used += added;
    for (std::string_view part : {blank, open, word, close}) Append(marked, part);
    Append(plain, blank);
    Append(plain, word);
    if (opens != closes) isOpen = opens;
  }
  if (isOpen) Append(marked, form.closeMark);
}

// Hands the context to `write`, piece by piece.
template <typename Write>
void WriteContext(const ContextForm& form, const SnippetSource& source, const ResultEntry& entry,
                  std::string_view title, Write write) {
  write(form.open);
  SnippetWalk walk = StartSnippets(source.settings, entry);
  SnippetPiece piece;
  bool isWritten = false;
  while (NextPiece(walk, source, entry, piece) == SnippetStatus::kPiece) {
    for (int32_t i = 0; i < piece.damagedTokens; ++i) write(kDamagedTextMessage);
    Passage marked;
    Passage plain;
    BuildPassage(source, piece, form, marked, plain);
    // A passage that says what the title says is worth nothing.
    if (!isWritten && TrimCharacters(View(plain), " ") == TrimCharacters(title, " ")) break;
    write(form.before);
    write(View(marked));
    isWritten = true;
  }
  if (isWritten) write(form.end);
  write(form.close);
}

}  // namespace

void AppendContextHtml(OutputSections& sections, const SnippetSource& source,
                       const ResultEntry& entry, std::string_view title) {
  WriteContext(kHtmlForm, source, entry, title,
               [&](std::string_view piece) { AppendResultsRaw(sections, piece); });
}

void WriteContextXml(Response& response, const SnippetSource& source, const ResultEntry& entry,
                     std::string_view title) {
  WriteContext(source.settings.XMLHighlight == 1 ? kMarkedXmlForm : kPlainXmlForm, source, entry,
               title, [&](std::string_view piece) { WriteRaw(response, piece); });
}

}  // namespace vela
