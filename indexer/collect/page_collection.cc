#include "indexer/collect/page_collection.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "format/page_data.h"
#include "format/word_map.h"
#include "indexer/collect/meta_values.h"
#include "indexer/config/extensions.h"
#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

constexpr size_t kPageLimit = kPageNumberLimit;
// Of the memory, what the collected postings may take even when the vocabulary has used it up.
constexpr size_t kLeastPostingBytes = size_t{1} << 20;

std::string EncodedMetaValues(const Page& page, PageCollection& collection) {
  const std::vector<FieldRule>& fields = collection.input.config.fields;
  for (size_t i = 0; i < fields.size(); ++i) {
    if (collection.usedFields[i]) continue;
    const std::string name = LowerUtf8Copy(fields[i].meta);
    collection.usedFields[i] = !MetaContent(page.content, name).empty();
  }
  std::vector<Finding> findings;
  std::string values = EncodeMetaValues(collection.input.config.fields, collection.input.charset,
                                        page.content.metas, findings);
  for (const Finding& finding : findings) {
    AddLeftOut(collection.metaValues, finding.reason, page.facts.path, finding.where,
               finding.subject);
  }
  return values;
}

void CheckRoomForPage(const PageCollection& collection) {
  if (collection.pages.size() < kPageLimit) return;
  throw IndexError(ExitStatus::kFailed,
                   "The site has more than 16,777,215 pages, the most that one index can hold. "
                   "Index its parts into several folders.");
}

// The scripts concerned are those of UTF-8 alone, as for the search.
RunCut RunCutOf(const CollectionInput& input) {
  const bool cutsPieces = input.charset.utf8() && ExtensionValue(input.config, "CutRuns") != 0;
  return cutsPieces ? RunCut::kPieces : RunCut::kWords;
}

// Cuts the page's words and hands their tokens and postings on. False: it was stopped.
[[nodiscard]] bool AddWords(const Page& page, const std::string& addressText,
                            PageCollection& collection) {
  const auto number = static_cast<uint32_t>(collection.pages.size());
  const PageTexts texts = {
      .content = page.content, .title = page.facts.title, .addressText = addressText};
  const bool isWhole = CutPage(texts, number,
                               {.forms = collection.forms,
                                .vocabulary = collection.vocabulary,
                                .signs = collection.signs,
                                .sink = collection.input.sink,
                                .runs = collection.runs,
                                .endsHeadings = collection.endsHeadings,
                                .stop = collection.input.stop},
                               collection.tokens);
  if (!isWhole) return false;
  const size_t memory = collection.input.memory;
  const size_t taken = MemoryOf(collection.vocabulary);
  collection.postings.SetMemory(std::max(kLeastPostingBytes, memory - std::min(memory, taken)));
  const PageTokens& tokens = collection.tokens;
  for (const Posting& posting : tokens.postings) collection.postings.Add(posting);
  if (collection.input.sections) {
    AddSections(texts, tokens, number, collection.tokenCount, collection.input.charset,
                collection.sections);
  }
  collection.pages.push_back({.firstToken = collection.tokenCount,
                              .bodyWords = tokens.bodyWords,
                              .titleWords = tokens.titleWords,
                              .linkShare = page.content.linkShare});
  collection.tokenCount += tokens.tokenCount;
  if (CountsLinkTexts(collection.input.config)) {
    collection.linkTexts.Add(
        LinkWordsOf(page, collection.input.base, collection.forms, collection.runs));
  }
  return true;
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
void LeaveOutCopy(const std::string& address, PageCollection& collection) {
  const std::vector<std::string> names = NamesOf(address, address);
  std::string categories =
      collection.rules.CategoriesOf({.base = collection.input.base, .all = names});
  if (categories.find_first_not_of('\0') == categories.npos) return;
  collection.copies.push_back({.address = address, .categories = std::move(categories)});
}

}  // namespace

PageCollection::PageCollection(const CollectionInput& collectionInput,
                               const std::filesystem::path& folder)
    : input(collectionInput),
      addresses(input.base),
      forms(input.charset, input.config.stemming),
      runs(RunCutOf(input)),
      endsHeadings(ExtensionValue(input.config, "Passages") != 0),
      postings(folder, input.memory),
      rules(input.config),
      usedFields(input.config.fields.size()) {}

Reason AddPage(const Page& page, PageCollection& collection, PageEntry& entry) {
  const PageFacts& facts = page.facts;
  std::string address;
  const Reason reason = collection.addresses.Choose(facts.address, facts.canonical, address);
  if (reason != Reason::kNone) {
    LeaveOutCopy(facts.address, collection);
    return reason;
  }
  const std::string stored = StoredAddress(address);
  if (stored.size() > kAddressLimit) return Reason::kAddressTooLong;
  const auto number = static_cast<uint32_t>(collection.pages.size());
  const std::optional<uint32_t> equal = collection.equal.EqualTo(page, number);
  for (const std::string& each : {address, facts.address}) {
    collection.addresses.Note(each, equal.value_or(number));
  }
  if (equal.has_value()) {
    LeaveOutCopy(facts.address, collection);
    return Reason::kEqual;
  }
  std::string image = StoredAddress(facts.image);
  if (image.size() > kAddressLimit) image.clear();

  SiteRules::Outcome outcome = collection.rules.Apply(
      {.base = collection.input.base, .all = NamesOf(facts.address, address)});
  entry = {
      .address = stored,
      .title = facts.title,
      .description = page.content.description,
      .image = std::move(image),
      .fileSize = facts.fileSize,
      .time = facts.time,
      .boost = outcome.boost,
      .fileType = facts.fileType,
      .categories = std::move(outcome.categories),
      .metaValues = EncodedMetaValues(page, collection),
      .hasTitleMass = ExtensionValue(collection.input.config, "Ranking") != 0,
  };
  CheckRoomForPage(collection);
  collection.fileDates.AddPage(number, facts);
  if (!AddWords(page, AddressText(address, collection.input.base), collection)) {
    return Reason::kStopped;
  }
  if (collection.input.config.suggestions) {
    collection.suggestions.AddPage(page.content, facts.title);
  }
  collection.sourceBytes += facts.fileSize;
  return Reason::kNone;
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
