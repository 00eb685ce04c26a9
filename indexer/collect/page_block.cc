#include "indexer/collect/page_block.h"

#include <algorithm>
#include <utility>

#include "format/page_data.h"
#include "indexer/collect/meta_values.h"
#include "indexer/collect/section_pages.h"
#include "indexer/collect/site_habits.h"
#include "indexer/config/extensions.h"
#include "indexer/site/address.h"
#include "indexer/site/canonical_addresses.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/stored_text.h"

namespace vela::indexer {

namespace {

CutRules CutRulesOf(const BlockInput& input) {
  CutRules rules = CutRulesOf(input.config, input.charset);
  rules.memory = input.memory;
  rules.stop = input.stop;
  return rules;
}

// What of `title` is not in `seen`: the names around it, or all of it.
std::string TakenOffTitle(const std::string& title, const std::string& seen) {
  const size_t at = title.find(seen);
  if (at == title.npos) return title;
  return title.substr(0, at) + title.substr(at + seen.size());
}

void AddMetaValues(const Page& page, const BlockInput& input, PageBlock& block) {
  for (const FieldRule& field : input.config.fields) {
    block.usedFields.push_back(!MetaContent(page.content, LowerUtf8Copy(field.meta)).empty());
  }
  block.metaValues =
      EncodeMetaValues(input.config.fields, input.charset, page.content.metas, block.metaFaults);
}

// The number of words beyond which the sections of the page are pages of their own; 0: they are
// none.
uint32_t SectionWords(const SiteConfig& config, const ContentUse& use) {
  const bool hasRule = use.rule != 0 && use.rule <= config.contentRules.size();
  return (hasRule ? config.contentRules[use.rule - 1] : config.content).sectionWords;
}

// Whether every anchor has room behind each address of the page.
bool HasRoomForAnchors(const PageBlock& block) {
  return std::ranges::all_of(block.addresses, [](const AddressBlock& each) {
    return StoredAddress(each.address).size() + SectionAddressBytes() <= kAddressLimit;
  });
}

}  // namespace

size_t MemoryOf(const PageBlock& block) {
  constexpr size_t kFewTexts = 1000;  // addresses, title and the like
  size_t bytes = sizeof block + kFewTexts + block.description.capacity() +
                 block.metaValues.capacity() + MemoryOf(block.words);
  for (const AddressBlock& each : block.addresses) bytes += MemoryOf(each.words);
  for (const PageSection& each : block.sections) {
    bytes += sizeof each + each.anchor.capacity() + each.heading.capacity();
  }
  bytes += block.linkWords.capacity() * sizeof(LinkWord);
  for (const PictureText& each : block.pictureTexts) bytes += sizeof each + each.text.capacity();
  for (const PageSuggestions::Text& each : block.suggestions.texts) {
    bytes += sizeof each + each.text.capacity();
  }
  for (const PageBlock& each : block.pieces) bytes += MemoryOf(each);
  bytes += block.use.selectors.capacity() * sizeof(uint32_t);
  const RunningText& running = block.suggestions.running;
  return bytes + running.words.capacity() * sizeof(RunningText::Word) + running.texts.capacity() +
         running.sequence.capacity();
}

CutRules CutRulesOf(const SiteConfig& config, const IndexCharset& charset) {
  // The scripts concerned are those of UTF-8 alone, as for the search.
  const bool cutsPieces = charset.utf8() && ExtensionValue(config, "CutRuns") != 0;
  return {.runs = cutsPieces ? RunCut::kPieces : RunCut::kWords,
          .endsHeadings = ExtensionValue(config, "Passages") != 0};
}

BlockMaker::BlockMaker(const BlockInput& input)
    : input_(input),
      hasSections_(ExtensionValue(input.config, "SectionLinks") != 0),
      rules_(CutRulesOf(input)),
      links_(input.base, input.charset, input.config.stemming, rules_.runs),
      cutter_(input.charset, input.config.stemming, rules_) {}

Reason BlockMaker::Make(const Page& page, PageBlock& block) {
  const SiteHabits& habits = input_.config.habits;
  Reason reason = Reason::kNone;
  if (!ChangesPage(habits, page)) {
    reason = MakeWhole(page, {}, block);
  } else {
    const Page seen = AsSeen(habits, page);
    reason = MakeWhole(seen, TakenOffTitle(page.facts.title, seen.facts.title), block);
  }
  block.isSilent = !SaysAnything(page.content) && page.facts.fileType == FileType::kPicture;
  return reason;
}

Reason BlockMaker::MakeWhole(const Page& page, const std::string& takenOff, PageBlock& block) {
  const uint32_t words = SectionWords(input_.config, page.content.use);
  if (words == 0) return MakeOf(page, takenOff, block);
  Page first = page;
  std::vector<SectionPage> sections = TakeSections(first, words);
  const Reason reason = MakeOf(sections.empty() ? page : first, takenOff, block);
  if (reason != Reason::kNone || sections.empty()) return reason;
  if (!HasRoomForAnchors(block)) return MakeOf(page, takenOff, block);
  block.prints = PrintsOf(page);  // by which copies of the whole are known
  for (const SectionPage& section : sections) {
    PageBlock piece;
    const Reason ofPiece = MakeOf(section.page, takenOff, piece);
    if (ofPiece != Reason::kNone) return ofPiece;
    piece.anchor = section.anchor;
    piece.sections.clear();           // its address leads there already
    piece.suggestions.title.clear();  // it is offered as a heading
    block.pieces.push_back(std::move(piece));
  }
  return Reason::kNone;
}

// `takenOff`: words that the page is found by beside its own, as by those of its address.
Reason BlockMaker::MakeOf(const Page& page, const std::string& takenOff, PageBlock& block) {
  block = PageBlock();
  block.facts = page.facts;
  const PageFacts& facts = page.facts;
  block.facts.title = StoredText(facts.title, kPageTitleLimit, input_.charset);
  block.description = StoredText(page.content.description, kPageDescriptionLimit, input_.charset);
  block.facts.image = StoredAddress(facts.image);
  if (block.facts.image.size() > kAddressLimit) block.facts.image.clear();
  block.linkShare = page.content.linkShare;
  block.markupFault = page.content.markupFault;
  block.use = page.content.use;
  block.prints = PrintsOf(page);
  AddMetaValues(page, input_, block);

  const PageTexts texts = {.content = page.content, .title = facts.title};
  RunningText* running = nullptr;
  if (input_.config.suggestions) {
    block.suggestions = SuggestionsOf(page.content, facts.title);
    running = &block.suggestions.running;
  }
  if (!cutter_.Cut(texts, block.words, running)) return Reason::kStopped;
  if (hasSections_) {
    block.sections = SectionsOf(texts, block.words, cutter_.sections(), input_.charset);
  }
  if (CountsLinkTexts(input_.config)) {
    block.linkWords = links_.WordsOf(page);
  }
  if (!page.content.pictures.empty()) {
    block.pictureTexts = PictureTextsOf(page, input_.base, input_.config.endings);
  }
  block.addresses.push_back({.address = facts.address, .words = {}});
  std::string other = OtherAddress(input_.base, facts.address, facts.canonical);
  if (!other.empty()) block.addresses.push_back({.address = std::move(other), .words = {}});
  for (AddressBlock& each : block.addresses) {
    std::string text = AddressText(each.address, input_.base);
    if (!takenOff.empty()) text.append(" ").append(takenOff);
    if (!cutter_.CutAddress(text, each.words)) {
      return Reason::kStopped;
    }
  }
  return Reason::kNone;
}

}  // namespace vela::indexer
