#include "indexer/collect/page_collection.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "format/page_data.h"
#include "format/word_map.h"
#include "indexer/config/extensions.h"
#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/words/stored_text.h"

namespace vela::indexer {

namespace {

constexpr size_t kPageLimit = kPageNumberLimit;
// What the collected postings may take even when the rest has used the memory up, as a part of it,
// and the most that pays: beyond that, runs are long enough for the disk.
constexpr size_t kLeastPostingPart = 8;
constexpr size_t kMostPostingBytes = size_t{64} << 20;

void NoteMetaValues(const PageBlock& page, PageCollection& collection) {
  for (size_t i = 0; i < collection.usedFields.size() && i < page.usedFields.size(); ++i) {
    collection.usedFields[i] = collection.usedFields[i] || page.usedFields[i];
  }
  for (const Finding& finding : page.metaFaults) {
    AddLeftOut(collection.metaValues, finding.reason, page.facts.path, finding.where,
               finding.subject);
  }
}

void CheckRoomForPage(const PageCollection& collection) {
  if (collection.pages.size() < kPageLimit) return;
  throw IndexError(ExitStatus::kFailed,
                   "The site has more than 16,777,215 pages, the most that one index can hold. "
                   "Index its parts into several folders.");
}

// What postings may take beside the rest.
size_t PostingMemory(const PageCollection& collection) {
  const size_t memory = collection.input.memory;
  const size_t ofPictures =
      collection.pictures.has_value() ? collection.pictures->texts.memory() : 0;
  const size_t taken = MemoryOf(collection.vocabulary) + collection.linkTexts.memory() +
                       ofPictures + collection.suggestions.memory() + collection.pages.memory() +
                       collection.addresses.memory() + collection.equal.memory() +
                       collection.similar.memory();
  return std::clamp(memory - std::min(memory, taken), memory / kLeastPostingPart,
                    kMostPostingBytes);
}

// What the pages before say of the picture `page`, beside what it says itself.
std::vector<std::string> PictureTextsFor(const PageBlock& page, const PageCollection& collection) {
  std::vector<std::string> texts;
  if (!collection.pictures.has_value() || page.facts.fileType != FileType::kPicture) return texts;
  for (const std::string& text : collection.pictures->texts.Of(page.facts.address)) {
    const std::string stored = StoredText(text, collection.input.charset);
    if (stored != page.facts.title && stored != page.description) texts.push_back(text);
  }
  return texts;
}

// Hands the page's tokens and postings on. `address` is the one that it is indexed under.
void AddWords(const PageBlock& page, const std::string& address, PageCollection& collection,
              std::span<const std::string> pictureTexts = {}) {
  const auto number = static_cast<uint32_t>(collection.pages.size());
  const auto chosen = std::ranges::find(page.addresses, address, &AddressBlock::address);
  const PageWords& ofAddress =
      chosen != page.addresses.end() ? chosen->words : page.addresses.front().words;
  PageWords ofTexts;
  if (!pictureTexts.empty()) collection.pictures->cutter.CutNames({}, pictureTexts, ofTexts);
  PageTokens& tokens = collection.tokens;
  JoinWords({&page.words, &ofTexts, &ofAddress}, number,
            {.vocabulary = collection.vocabulary,
             .signs = collection.signs,
             .sink = collection.input.sink},
            tokens);
  collection.postings.SetMemory(PostingMemory(collection));
  for (const Posting& posting : tokens.postings) collection.postings.Add(posting);
  AddSections(page.sections, collection.tokenCount, page.words.bodyTokens, collection.sections);
  collection.pages.push_back({.firstToken = collection.tokenCount,
                              .bodyWords = page.words.bodyWords,
                              .titleWords = page.words.titleWords,
                              .linkShare = page.linkShare});
  collection.tokenCount += tokens.tokenCount;
  if (CountsLinkTexts(collection.input.config)) collection.linkTexts.Add(page.linkWords);
  if (collection.pictures.has_value()) collection.pictures->texts.Add(page.pictureTexts);
}

// The addresses by which rules may name a page: those of its file, of the folder whose index page
// it is, and the one that it is indexed under.
std::vector<std::string> NamesOf(const std::string& own, const std::string& indexed) {
  std::vector<std::string> names = {own};
  if (indexed != own) names.push_back(indexed);
  std::string folder = FolderOfIndexPage(own);
  if (!folder.empty() && folder != indexed) names.push_back(std::move(folder));
  return names;
}

// Leaves a page out for another one, which stands for it from now on.
void LeaveOutCopy(const PageFacts& facts, PageCollection& collection) {
  const std::string& address = facts.address;
  const std::vector<std::string> names = NamesOf(address, address);
  std::string categories =
      collection.rules.CategoriesOf({.base = collection.input.base, .all = names}, facts.language);
  if (categories.find_first_not_of('\0') == categories.npos) return;
  collection.copies.push_back({.address = address, .categories = std::move(categories)});
}

bool ComparesPages(const PageCollection& collection) {
  return collection.input.config.nearDuplicates != NearDuplicates::kKeep;
}

// The page before that says nearly the same, where somebody asks.
std::optional<uint32_t> SimilarTo(const PagePrints& page, const PageCollection& collection) {
  if (!page.isComparable || !ComparesPages(collection)) return std::nullopt;
  return collection.similar.SimilarTo(page.similar);
}

// Texts of pictures are short and few: what is known of the words before is worth little memory.
CutRules RulesForPictures(const CollectionInput& input) {
  CutRules rules = CutRulesOf(input.config, input.charset);
  rules.memory = size_t{1} << 20;
  return rules;
}

// AddPage, for a page of which others say `pictureTexts`.
Reason AddWith(std::span<const std::string> pictureTexts, const PageBlock& page,
               PageCollection& collection, PageEntry& entry) {
  const PageFacts& facts = page.facts;
  std::string address;
  const Reason reason = collection.addresses.Choose(facts.address, facts.canonical, address);
  if (reason != Reason::kNone) {
    LeaveOutCopy(facts, collection);
    return reason;
  }
  const std::string stored = StoredAddress(address);
  if (stored.size() > kAddressLimit) return Reason::kAddressTooLong;
  const auto number = static_cast<uint32_t>(collection.pages.size());
  const std::optional<uint32_t> similar = SimilarTo(page.prints, collection);
  const bool leavesOutSimilar =
      similar.has_value() && collection.input.config.nearDuplicates == NearDuplicates::kLeaveOut;
  // A page that is left out for a similar one is the original of none.
  const uint32_t standing = leavesOutSimilar ? *similar : number;
  const std::optional<uint32_t> equal =
      collection.equal.EqualTo(page.prints, facts.fileType, standing);
  for (const std::string& each : {address, facts.address}) {
    collection.addresses.Note(each, equal.value_or(standing));
  }
  if (equal.has_value() || leavesOutSimilar) {
    LeaveOutCopy(facts, collection);
    return equal.has_value() ? Reason::kEqual : Reason::kSimilar;
  }
  if (page.prints.isComparable && ComparesPages(collection)) {
    collection.similar.Add(page.prints.similar, number);
  }
  SiteRules::Outcome outcome = collection.rules.Apply(
      {.base = collection.input.base, .all = NamesOf(facts.address, address)}, facts.language);
  entry = {
      .address = stored,
      .title = facts.title,
      .description = page.description,
      .image = facts.image,
      .fileSize = facts.fileSize,
      .time = facts.time,
      .boost = outcome.boost,
      .fileType = facts.fileType,
      .similarTo = similar,
      .language = facts.language,
      .categories = std::move(outcome.categories),
      .metaValues = page.metaValues,
      .hasTitleMass = ExtensionValue(collection.input.config, "Ranking") != 0,
  };
  CheckRoomForPage(collection);
  collection.fileDates.AddPage(number, facts);
  CountContent(page.use, collection.content);
  NoteMetaValues(page, collection);
  if (entry.description.empty() && !pictureTexts.empty()) {
    entry.description =
        StoredText(pictureTexts.front(), kPageDescriptionLimit, collection.input.charset);
  }
  AddWords(page, address, collection, pictureTexts);
  if (collection.input.config.suggestions) collection.suggestions.AddPage(page.suggestions);
  collection.sourceBytes += facts.fileSize;
  return Reason::kNone;
}

// A picture that says nothing of itself has the first of `texts`, which others say of it, as its
// title, in the place of the name of its file.
Reason AddSilentPicture(std::span<const std::string> texts, const PageBlock& page,
                        PageCollection& collection, PageEntry& entry) {
  if (texts.empty()) return Reason::kNoText;
  const CollectionInput& input = collection.input;
  PageBlock titled = page;
  titled.facts.title = StoredText(texts.front(), kPageTitleLimit, input.charset);
  collection.pictures->cutter.CutNames(texts.front(), {}, titled.words);
  if (input.config.suggestions) titled.suggestions = SuggestionsOf(PageContent(), texts.front());
  return AddWith(texts.subspan(1), titled, collection, entry);
}

}  // namespace

SitePictures::SitePictures(const CollectionInput& input)
    : cutter(input.charset, input.config.stemming, RulesForPictures(input)) {}

PageCollection::PageCollection(const CollectionInput& collectionInput,
                               const std::filesystem::path& folder)
    : input(collectionInput),
      addresses(input.base),
      forms(input.charset, input.config.stemming),
      postings(folder, input.memory),
      sections(folder),
      rules(input.config),
      usedFields(input.config.fields.size()) {
  if (IndexesPictures(input.config)) pictures.emplace(input);
}

void AddPictures(const ItemList& items, PageCollection& collection) {
  if (!collection.pictures.has_value()) return;
  for (const SourceItem& item : items) {
    if (item.type == FileType::kPicture) collection.pictures->texts.AddPicture(item.address);
  }
}

Reason AddPage(const PageBlock& page, PageCollection& collection, PageEntry& entry) {
  const std::vector<std::string> texts = PictureTextsFor(page, collection);
  if (page.isSilent) return AddSilentPicture(texts, page, collection, entry);
  return AddWith(texts, page, collection, entry);
}

void AddSectionPage(const PageBlock& section, const PageEntry& page, PageCollection& collection,
                    PageEntry& entry) {
  const std::string address = SectionAddress(PlainAddress(page.address), section.anchor);
  entry = page;
  // The maker leaves room for it; of a kept block that is not to be relied on.
  const std::string stored = StoredAddress(address);
  if (stored.size() <= kAddressLimit) entry.address = stored;
  entry.title = section.facts.title;
  entry.description = section.description;
  entry.metaValues = section.metaValues;
  entry.similarTo.reset();
  CheckRoomForPage(collection);
  collection.fileDates.AddPage(static_cast<uint32_t>(collection.pages.size()), section.facts);
  AddWords(section, address, collection);
  if (collection.input.config.suggestions) collection.suggestions.AddPage(section.suggestions);
}

void EndJoining(PageCollection& collection) {
  collection.equal = EqualPages();
  collection.similar = SimilarPages();
  collection.pictures.reset();
  collection.vocabulary.table = NumberTable();
  collection.tokens = PageTokens();
}

std::vector<MoreCategories> CategoriesOfCopies(PageCollection& collection) {
  std::vector<MoreCategories> more;
  for (CopyLeftOut& copy : std::exchange(collection.copies, {})) {
    const std::optional<uint32_t> page = collection.addresses.PageAt(copy.address);
    if (!page.has_value()) continue;
    collection.rules.UseCategories(copy.categories);
    more.push_back({.page = *page, .categories = std::move(copy.categories)});
  }
  return more;
}

std::vector<Finding> UnusedFields(const PageCollection& collection) {
  std::vector<Finding> unused;
  const std::vector<FieldRule>& fields = collection.input.config.fields;
  for (size_t i = 0; i < fields.size(); ++i) {
    if (!collection.usedFields[i]) unused.push_back({Reason::kUnusedField, {}, fields[i].name});
  }
  return unused;
}

}  // namespace vela::indexer
