#include "indexer/build_index.h"

#include <algorithm>
#include <filesystem>
#include <unordered_map>
#include <unordered_set>

#include "indexer/address.h"
#include "indexer/charset.h"
#include "indexer/dictionary_writer.h"
#include "indexer/embedded_files.h"
#include "indexer/file_reading.h"
#include "indexer/html_page.h"
#include "indexer/index_error.h"
#include "indexer/index_folder.h"
#include "indexer/page_table_writer.h"
#include "indexer/page_text_writer.h"
#include "indexer/page_words.h"
#include "indexer/settings_writer.h"
#include "indexer/symbols.h"
#include "indexer/text_page.h"
#include "indexer/word_map_writer.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kMegabyte = uint64_t{1} << 20;
constexpr size_t kMaxPages = (size_t{1} << 24) - 1;  // a page number has 24 bits
constexpr uint64_t kMaxPosition = (uint64_t{1} << 40) - 1;
// Of --memory, what the collected postings may take even when the vocabulary has used it up.
constexpr size_t kMinPostingBytes = size_t{1} << 20;
constexpr std::string_view kTemplateName = "search_template.html";

std::string ReadConfigurationFile(const std::string& path, const char* option) {
  FileContent content;
  constexpr uint64_t kLargest = 4 * kMegabyte;
  // The owner's own file: a link is as good as the file.
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  const std::string reason =
      error ? "no such file" : ReadSiteFile(real.string(), kLargest, content);
  if (!reason.empty()) {
    throw IndexError(ExitStatus::kFailed,
                     std::string("Cannot use ") + path + " for " + option + ": " + reason + ".");
  }
  return std::move(content.bytes);
}

std::string LoadLanguage(const std::string& language) {
  if (language.find('/') != language.npos || language.ends_with(".vlang")) {
    return CheckedLanguage(ReadConfigurationFile(language, "--language"), language);
  }
  const EmbeddedFile* file = FindEmbeddedFile(language + ".vlang");
  if (file == nullptr) {
    std::string names;
    for (const EmbeddedFile& each : EmbeddedFiles()) {
      if (!each.name.ends_with(".vlang")) continue;
      names += (names.empty() ? "" : ", ") + std::string(each.name.substr(0, each.name.size() - 6));
    }
    throw IndexError(ExitStatus::kUsage, "There is no built-in language \"" + language +
                                             "\". Give one of " + names +
                                             ", or the path of a .vlang file.");
  }
  return CheckedLanguage(file->content, language);
}

// True when `inner` is `outer` or lies in it; both absolute and resolved.
bool IsWithin(const fs::path& inner, const fs::path& outer) {
  const auto [outerEnd, rest] =
      std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
  (void)rest;
  return outerEnd == outer.end();
}

fs::path ResolvedSite(const std::string& site) {
  std::error_code error;
  fs::path resolved = fs::canonical(site, error);
  if (error || !fs::is_directory(resolved)) {
    throw IndexError(ExitStatus::kFailed, "Cannot read the site folder " + site + ": " +
                                              (error ? error.message() : "it is no folder") +
                                              ". Check --site.");
  }
  return resolved;
}

// Everything that grows while pages are read.
struct Collection {
  Vocabulary vocabulary;
  PostingRuns postings;
  PageTextWriter pageText;
  PageTableWriter pageTable;
  std::vector<PageFacts> pages;
  std::unordered_set<std::string> siteAddresses;  // of all files of the walk
  std::unordered_set<std::string> usedAddresses;  // canonical ones that are none of those
  PageWords words;
};

std::string FileTitle(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string PageTitle(const PageContent& content, const std::string& path) {
  if (!content.title.empty()) return content.title;
  const TextRun* best = nullptr;
  for (const TextRun& run : content.body) {
    if (run.headingLevel == 0) continue;
    if (best == nullptr || run.headingLevel < best->headingLevel) best = &run;
  }
  if (best != nullptr) return CollapseBlanks(best->text);
  std::string name = FileTitle(path);
  CleanText(name);
  return name;
}

// The address to store for the page, or an empty text and the reason to leave the page out.
std::string ChooseAddress(const PageContent& content, const std::string& own,
                          const std::string& base, Collection& collection, std::string& reason) {
  if (content.canonical.empty()) return own;
  const std::string from = content.base.empty() ? own : ResolveAddress(own, content.base);
  std::string canonical = ResolveAddress(from.empty() ? own : from, content.canonical);
  // An address elsewhere names the original of a copy: here the copy is what visitors can reach.
  if (canonical.empty() || canonical == own || !IsBelow(canonical, base)) return own;
  if (collection.siteAddresses.contains(canonical) ||
      !collection.usedAddresses.insert(canonical).second) {
    reason = "copy of another page (canonical address)";
    return {};
  }
  return canonical;
}

// Reads one file into the collection. Returns the reason when it is left out.
std::string AddFile(const fs::path& site, const SiteFile& file, const std::string& base,
                    const Options& options, Collection& collection, IndexSummary& summary) {
  FileContent bytes;
  std::string reason =
      ReadSiteFile((site / file.path).string(), options.maxFileMegabytes * kMegabyte, bytes);
  if (!reason.empty()) return reason;
  const bool isHtml = file.kind == FileKind::kHtml;
  std::string text;
  reason = ConvertToUtf8(bytes.bytes, isHtml, text);
  if (!reason.empty()) return reason;
  bytes.bytes = {};

  PageContent content;
  if (isHtml) {
    reason = ParseHtmlPage(text, content);
    if (!reason.empty()) return reason;
    if (content.noindex) return "noindex";
  } else {
    ParseTextPage(text, content);
  }
  text = {};
  if (content.body.empty() && content.title.empty() && content.description.empty()) {
    return "no text";
  }
  const std::string address =
      ChooseAddress(content, PageAddress(base, file.path), base, collection, reason);
  if (!reason.empty()) return reason;
  PageEntry entry;
  entry.address = StoredAddress(address);
  if (entry.address.size() > kMaxAddressBytes) return "address too long";
  entry.title = PageTitle(content, file.path);
  entry.description = content.description;
  entry.fileSize = bytes.size;
  entry.modifiedTime = bytes.modifiedTime;
  entry.fileType = isHtml ? FileType::kHtml : FileType::kText;

  if (collection.pages.size() >= kMaxPages) {
    throw IndexError(ExitStatus::kFailed,
                     "The site has more than 16,777,215 pages, the most that one index can hold. "
                     "Index its parts into several folders.");
  }
  const auto number = static_cast<uint32_t>(collection.pages.size());
  CutPage(content, entry.title, AddressText(address, base), number, collection.vocabulary,
          collection.words);
  const size_t memory = options.memoryMegabytes * kMegabyte;
  const size_t taken = MemoryOf(collection.vocabulary);
  collection.postings.SetMemory(std::max(kMinPostingBytes, memory - std::min(memory, taken)));
  for (const Posting& posting : collection.words.postings) collection.postings.Add(posting);
  collection.pages.push_back(
      {collection.pageText.tokenCount(), collection.words.bodyWords, collection.words.titleWords});
  collection.pageText.AddPage(collection.words.tokens);
  collection.pageTable.AddPage(entry);
  summary.sourceBytes += bytes.size;
  return {};
}

void CheckStop(const volatile std::sig_atomic_t& stop) {
  if (stop != 0) {
    throw IndexError(ExitStatus::kInterrupted, "Interrupted: the index was not changed.");
  }
}

// The template of the command line, else the one that the index has (it is carried over), else the
// default.
void WriteTemplate(const std::string& given, const IndexFolder& folder) {
  std::string_view content = given;
  if (given.empty()) {
    if (folder.OldHas(std::string(kTemplateName))) return;
    content = FindEmbeddedFile(kTemplateName)->content;
  }
  OutFile file(folder.fresh() / kTemplateName);
  file.Write(content);
  file.Finish();
}

}  // namespace

IndexSummary BuildIndex(const Options& options, Progress& progress,
                        const volatile std::sig_atomic_t& stop) {
  const std::string base = CheckedBaseUrl(options.baseUrl);
  const fs::path site = ResolvedSite(options.site);
  const std::string language = LoadLanguage(options.language);
  const std::string pageTemplate =
      options.templateFile.empty() ? "" : ReadConfigurationFile(options.templateFile, "--template");
  IndexFolder folder(options.out);
  if (IsWithin(site, folder.target())) {
    throw IndexError(ExitStatus::kUsage,
                     "--out is replaced as a whole and must not hold the site "
                     "itself. Give a folder of its own for the index.");
  }
  const fs::path& fresh = folder.fresh();

  IndexSummary summary;
  progress.Begin("Looking for pages", 0);
  const std::vector<SiteFile> files =
      WalkSite(site, {options.exclude, folder.target()}, summary.skipped);

  Collection collection{{},
                        PostingRuns(fresh, options.memoryMegabytes * kMegabyte),
                        PageTextWriter(fresh),
                        PageTableWriter(fresh / "vela_pageinfo.vdat", fresh / "vela_pagedata.vdat"),
                        {},
                        {},
                        {},
                        {}};
  for (const SiteFile& file : files) {
    collection.siteAddresses.insert(PageAddress(base, file.path));
  }
  progress.Begin("Reading pages", files.size());
  uint64_t done = 0;
  for (const SiteFile& file : files) {
    CheckStop(stop);
    const std::string reason = AddFile(site, file, base, options, collection, summary);
    if (!reason.empty()) AddSkipped(summary.skipped, reason, file.path);
    progress.Step(++done);
  }
  if (collection.pages.empty()) {
    std::string why;
    for (const auto& [reason, group] : summary.skipped.byReason) {
      why += "\n  left out: " + std::to_string(group.count) + " (" + reason + ")";
    }
    throw IndexError(ExitStatus::kNothing, "No page to index was found in " + site.string() +
                                               ". The files must be HTML or text." + why);
  }
  collection.words = {};

  const Vocabulary& vocabulary = collection.vocabulary;
  IndexFacts facts;
  facts.pages = collection.pages.size();
  facts.tokenBytes = TokenBytes(ReservedLimits().limit + 1 + vocabulary.words.size());
  if (facts.tokenBytes > 5 || collection.pageText.tokenCount() * facts.tokenBytes > kMaxPosition) {
    throw IndexError(ExitStatus::kFailed,
                     "The site holds more text than one index can address. "
                     "Index its parts into several folders.");
  }
  progress.Begin("Sorting words", 0);
  summary.runs = collection.postings.runCount();
  const WordMapResult wordMap = WriteWordMap(fresh / "vela_wordmap.vdat", collection.postings,
                                             vocabulary, collection.pages, facts.tokenBytes);
  CheckStop(stop);
  progress.Begin("Writing the index", 0);
  const std::vector<uint32_t> order = DictionaryOrder(vocabulary);
  facts.dictionary =
      WriteDictionary(fresh / "vela_dictionary.vdat", vocabulary, order, wordMap.offsets);
  summary.occurrences = collection.pageText.tokenCount();
  const uint64_t textBytes =
      collection.pageText.Finish(fresh / "vela_pagetext.vdat", order, facts.tokenBytes);
  const PageTableWriter::Sizes table = collection.pageTable.Finish();
  facts.pageInfoBytes = table.infoBytes;
  const uint64_t settingsBytes = WriteSettings(fresh / "settings.vdat", facts, language);
  WriteTemplate(pageTemplate, folder);
  CheckStop(stop);
  folder.Commit();

  summary.pages = facts.pages;
  summary.words = vocabulary.words.size();
  summary.indexBytes = wordMap.fileBytes + facts.dictionary.fileBytes + textBytes +
                       table.infoBytes + table.dataBytes + settingsBytes;
  progress.Clear();
  return summary;
}

std::string SummaryText(const IndexSummary& summary, const Options& options, double seconds) {
  char time[40];
  snprintf(time, sizeof time, "%.1f seconds", seconds);
  std::string text = "Indexed " + CountText(summary.pages) +
                     (summary.pages == 1 ? " page" : " pages") + " with " +
                     CountText(summary.words) + " different words in " + time + ".\n";
  text += "Read " + BytesText(summary.sourceBytes) + ", wrote " + BytesText(summary.indexBytes) +
          " to " + options.out + ".\n";
  if (summary.runs != 0) {
    text += "The memory for words was full " + CountText(summary.runs) +
            " times; more of it (--memory) makes this faster.\n";
  }
  if (summary.skipped.total != 0) {
    text += "Left out " + CountText(summary.skipped.total) +
            (summary.skipped.total == 1 ? " file:\n" : " files:\n");
    for (const auto& [reason, group] : summary.skipped.byReason) {
      text += "  " + CountText(group.count) + "  " + reason + ": ";
      for (size_t i = 0; i < group.examples.size(); ++i) {
        text += (i == 0 ? "" : ", ") + group.examples[i];
      }
      text += group.count > group.examples.size() ? ", ...\n" : "\n";
    }
  }
  return text;
}

}  // namespace vela::indexer
