#include "indexer/collect/page_block.h"

#include "format/page_data.h"
#include "indexer/collect/meta_values.h"
#include "indexer/collect/site_habits.h"
#include "indexer/config/extensions.h"
#include "indexer/site/address.h"
#include "indexer/site/canonical_addresses.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/stored_text.h"

namespace vela::indexer {

namespace {

CutRules CutRulesOf(const BlockInput& input) {
  // The scripts concerned are those of UTF-8 alone, as for the search.
  const bool cutsPieces = input.charset.utf8() && ExtensionValue(input.config, "CutRuns") != 0;
  return {.runs = cutsPieces ? RunCut::kPieces : RunCut::kWords,
          .endsHeadings = ExtensionValue(input.config, "Passages") != 0,
          .memory = input.memory,
          .stop = input.stop};
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
  for (const PageSuggestions::Text& each : block.suggestions.texts) {
    bytes += sizeof each + each.text.capacity();
  }
  bytes += block.use.selectors.capacity() * sizeof(uint32_t);
  const RunningText& running = block.suggestions.running;
  return bytes + running.words.capacity() * sizeof(RunningText::Word) + running.texts.capacity() +
         running.sequence.capacity();
}

BlockMaker::BlockMaker(const BlockInput& input)
    : input_(input),
      hasSections_(ExtensionValue(input.config, "SectionLinks") != 0),
      rules_(CutRulesOf(input)),
      linkForms_(input.charset, input.config.stemming),
      cutter_(input.charset, input.config.stemming, rules_) {}

Reason BlockMaker::Make(const Page& page, PageBlock& block) {
  const SiteHabits& habits = input_.config.habits;
  if (!ChangesPage(habits, page)) return MakeOf(page, {}, block);
  const Page seen = AsSeen(habits, page);
  return MakeOf(seen, TakenOffTitle(page.facts.title, seen.facts.title), block);
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
    block.linkWords = LinkWordsOf(page, input_.base, linkForms_, rules_.runs);
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
