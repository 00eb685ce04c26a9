#include "indexer/collect/page_collection.h"

#include <algorithm>

#include "indexer/collect/category_set.h"
#include "indexer/collect/meta_values.h"
#include "indexer/extract/decoding.h"
#include "indexer/extract/html_page.h"
#include "indexer/extract/page_date.h"
#include "indexer/extract/plain_text_page.h"
#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/source/file_reading.h"
#include "indexer/words/clean_text.h"

namespace vela::indexer {

namespace {

constexpr uint64_t kMegabyte = uint64_t{1} << 20;
constexpr size_t kMaxPages = (size_t{1} << 24) - 1;  // a page number has 24 bits
// Of --memory, what the collected postings may take even when the vocabulary has used it up.
constexpr size_t kMinPostingBytes = size_t{1} << 20;
constexpr size_t kExampleLimit = 60;  // bytes of a value that the summary shows

std::string PageTitle(const PageContent& content, const std::string& path) {
  if (!content.title.empty()) return content.title;
  const TextRun* best = nullptr;
  for (const TextRun& run : content.body) {
    if (run.headingLevel == 0) continue;
    if (best == nullptr || run.headingLevel < best->headingLevel) best = &run;
  }
  if (best != nullptr) return CollapseBlanks(best->text);
  std::string name = path.substr(path.rfind('/') + 1);
  CleanText(name);
  return name;
}

// The address from which the page's links are resolved.
std::string LinkBase(const PageContent& content, const std::string& own) {
  const std::string from = content.base.empty() ? own : ResolveAddress(own, content.base);
  return from.empty() ? own : from;
}

// Whether `from` was left out as a copy of `own`, or of a copy of it: one of them must stay.
bool LeadsBack(const std::unordered_map<std::string, std::string>& copies, const std::string& from,
               const std::string& own) {
  constexpr int kMostSteps = 100;
  auto copy = copies.find(from);
  for (int step = 0; step < kMostSteps && copy != copies.end(); ++step) {
    if (copy->second == own) return true;
    copy = copies.find(copy->second);
  }
  return false;
}

// The address to store for the page, or an empty text and the reason to leave the page out.
std::string ChooseAddress(const PageContent& content, const std::string& own,
                          PageCollection& collection, Reason& reason) {
  if (content.canonical.empty()) return own;
  std::string canonical = AsEncoded(ResolveAddress(LinkBase(content, own), content.canonical));
  // An address elsewhere names the original of a copy: here the copy is what visitors can reach.
  if (canonical.empty() || !IsBelow(canonical, collection.input.base)) return own;
  canonical = InSpellingOf(collection.input.base, canonical);
  if (canonical == own) return own;
  const bool isFile = collection.siteAddresses.contains(canonical);
  if (isFile && LeadsBack(collection.copies, canonical, own)) return own;
  if (isFile || !collection.usedAddresses.insert(canonical).second) {
    if (isFile) collection.copies.emplace(own, canonical);
    reason = Reason::kCopy;
    return {};
  }
  return canonical;
}

// The address of the picture that stands for the page; empty when it has none that can be linked.
std::string PageImage(const PageContent& content, const std::string& own) {
  const std::string_view image = MetaContent(content, "og:image");
  if (image.empty()) return {};
  std::string address = StoredAddress(ResolveAddress(LinkBase(content, own), image));
  if (address.size() > kMaxAddressBytes) address.clear();
  return address;
}

// Fills what the owner's configuration makes of the page.
void Configure(const PageContent& content, const PageAddresses& addresses, const std::string& path,
               PageCollection& collection, PageEntry& entry) {
  const SiteConfig& config = collection.input.options.config;
  entry.categories = CategorySet(config.categories, addresses);
  collection.usedCategories.resize(entry.categories.size());
  std::ranges::transform(
      entry.categories, collection.usedCategories, collection.usedCategories.begin(),
      [](char one, char all) {
        return static_cast<char>(static_cast<unsigned>(one) | static_cast<unsigned>(all));
      });
  std::vector<Finding> findings;
  entry.metaValues =
      EncodeMetaValues(config.fields, collection.input.charset, content.metas, findings);
  for (const Finding& finding : findings) {
    std::string example = path;
    const bool isLong = finding.subject.size() > kExampleLimit;
    example.append(" (\"").append(isLong ? "..." : finding.subject).append("\")");
    AddLeftOut(collection.metaValues, finding.reason, example, finding.where);
  }
  bool boosted = false;
  for (size_t i = 0; i < config.boosts.size(); ++i) {
    const BoostRule& boost = config.boosts[i];
    // Behind the first that fits, a look only for whether the owner must be told about the rule.
    if (boosted && collection.usedBoosts[i]) continue;
    if (!FitsAnyPattern(addresses, boost.pages)) continue;
    collection.usedBoosts[i] = true;
    if (!boosted) entry.boost = boost.tenths;
    boosted = true;
  }
}

// Cuts the page's words and hands them on.
void AddWords(const PageContent& content, const PageEntry& entry, const std::string& addressText,
              PageCollection& collection) {
  const auto number = static_cast<uint32_t>(collection.pages.size());
  CutPage(content, entry.title, addressText, number, collection.forms, collection.vocabulary,
          collection.words);
  const size_t memory = collection.input.options.memoryMegabytes * kMegabyte;
  const size_t taken = MemoryOf(collection.vocabulary);
  collection.postings.SetMemory(std::max(kMinPostingBytes, memory - std::min(memory, taken)));
  for (const Posting& posting : collection.words.postings) collection.postings.Add(posting);
  collection.pages.push_back(
      {collection.pageText.tokenCount(), collection.words.bodyWords, collection.words.titleWords});
  collection.pageText.AddPage(collection.words.tokens);
}

}  // namespace

PageCollection::PageCollection(const SiteInput& siteInput, const std::filesystem::path& folder)
    : input(siteInput),
      forms(input.charset, input.options.config.stemming),
      postings(folder, input.options.memoryMegabytes * kMegabyte),
      pageText(folder),
      pageTable(folder / "vela_pageinfo.vdat", folder / "vela_pagedata.vdat", input.charset),
      usedBoosts(input.options.config.boosts.size()) {}

Reason AddFile(const SiteFile& file, PageCollection& collection) {
  const SiteInput& input = collection.input;
  const SiteConfig& config = input.options.config;
  FileContent bytes;
  Reason reason = ReadRegularFile((input.site / file.path).string(),
                                  input.options.maxFileMegabytes * kMegabyte, bytes);
  if (reason != Reason::kNone) return reason;
  const bool isHtml = file.kind == FileKind::kHtml;
  std::string text;
  reason = ConvertToUtf8(bytes.bytes, isHtml, text);
  if (reason != Reason::kNone) return reason;
  bytes.bytes = {};

  PageContent content;
  if (isHtml) {
    reason = ParseHtmlPage(text, content);
    if (reason != Reason::kNone) return reason;
  } else {
    ParseTextPage(text, content);
  }
  text = {};
  if (content.body.empty() && content.title.empty() && content.description.empty()) {
    return Reason::kNoText;
  }
  const std::string own = PageAddress(input.base, file.path);
  const std::string address = ChooseAddress(content, own, collection, reason);
  if (reason != Reason::kNone) return reason;
  PageEntry entry;
  entry.address = StoredAddress(address);
  if (entry.address.size() > kMaxAddressBytes) return Reason::kAddressTooLong;
  entry.title = PageTitle(content, file.path);
  entry.description = content.description;
  if (config.images) entry.image = PageImage(content, own);
  entry.fileSize = bytes.size;
  entry.time = PageDate(content, bytes.modifiedTime, config.dates);
  entry.fileType = isHtml ? FileType::kHtml : FileType::kText;
  std::vector<std::string> addresses = {address};
  if (own != address) addresses.push_back(own);
  Configure(content, {input.base, addresses}, file.path, collection, entry);

  if (collection.pages.size() >= kMaxPages) {
    throw IndexError(ExitStatus::kFailed,
                     "The site has more than 16,777,215 pages, the most that one index can hold. "
                     "Index its parts into several folders.");
  }
  AddWords(content, entry, AddressText(address, input.base), collection);
  NotePage(collection.recommended, addresses, collection.pageTable.AddPage(entry));
  if (config.suggestions) collection.suggestions.AddPage(content, entry.title);
  collection.sourceBytes += bytes.size;
  return Reason::kNone;
}

std::vector<Finding> UnusedRules(const PageCollection& collection) {
  const SiteConfig& config = collection.input.options.config;
  std::vector<Finding> unused;
  for (size_t c = 0; c < config.categories.size(); ++c) {
    if (HasCategory(collection.usedCategories, c)) continue;
    unused.push_back({Reason::kUnusedCategory, {}, config.categories[c].name});
  }
  for (size_t i = 0; i < config.boosts.size(); ++i) {
    if (collection.usedBoosts[i]) continue;
    unused.push_back({Reason::kUnusedBoost, config.boosts[i].where, {}});
  }
  return unused;
}

}  // namespace vela::indexer
