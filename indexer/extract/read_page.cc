#include "indexer/extract/read_page.h"

#include <utility>

#include "indexer/extract/declared_facts.h"
#include "indexer/extract/file_types.h"
#include "indexer/extract/page_date.h"
#include "indexer/site/address.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/detected_language.h"
#include "indexer/words/lower_copy.h"
#include "text/percent_code.h"

namespace vela::indexer {

namespace {

// "b c.html" of "a/b c.html" and of "https://x.example/a/b%20c.html?d", "a" of the folder
// "https://x.example/a/".
std::string FileName(std::string_view path) {
  const bool isAddress = path.find("://") != path.npos;
  if (isAddress) path = path.substr(0, path.find('?'));
  if (isAddress && path.ends_with('/')) path.remove_suffix(1);
  path.remove_prefix(path.rfind('/') + 1);
  std::string name;
  for (size_t i = 0; i < path.size(); ++i) {
    const int code = isAddress ? ReadPercentCode(path.substr(i)) : -1;
    name += code < 0 ? path[i] : static_cast<char>(code);
    if (code >= 0) i += kPercentCodeLength - 1;
  }
  CleanText(name);
  return name;
}

// The page's own title, else its heading, else the file's name.
std::string PageTitle(const PageContent& content, const std::string& path) {
  if (!content.title.empty()) return content.title;
  std::string heading = HeadingTitle(content);
  return heading.empty() ? FileName(path) : heading;
}

// The address from which the page's links are resolved.
std::string LinkBase(const PageContent& content, const std::string& own) {
  const std::string from = content.base.empty() ? own : ResolveAddress(own, content.base);
  return from.empty() ? own : from;
}

std::string CanonicalAddress(const PageContent& content, const std::string& own) {
  if (content.canonical.empty()) return {};
  return AsEncoded(ResolveAddress(LinkBase(content, own), content.canonical));
}

std::string PageImage(const PageContent& content, const SourceItem& item) {
  const std::string& own = item.address;
  if (item.type == FileType::kPicture) return own;
  const std::string_view image = FactOf(content, PageFact::kImage);
  return image.empty() ? std::string() : ResolveAddress(LinkBase(content, own), image);
}

// Leaves those that lead somewhere on the web, with their whole addresses.
void ResolveLinks(const std::string& own, PageContent& content) {
  const std::string from = LinkBase(content, own);
  const auto resolve = [&from](auto& links) {
    for (auto& link : links) link.address = AsEncoded(ResolveAddress(from, link.address));
    std::erase_if(links, [](const auto& link) { return link.address.empty(); });
  };
  resolve(content.links);
  resolve(content.pictures);
}

// The text with which the page begins, enough to tell its language by.
std::string LanguageSample(const PageContent& content) {
  std::string sample;
  for (const TextRun& run : content.body) {
    if (sample.size() >= kLanguageSampleBytes) break;
    sample.append(run.text, 0, kLanguageSampleBytes).append(" ");
  }
  return sample;
}

// A page may be sent for readers of several languages; then that says nothing.
std::string PageLanguage(const PageContent& content, bool recognises) {
  if (!content.language.empty()) return content.language;
  const std::string declared = LowerAsciiCopy(FactOf(content, PageFact::kLanguage));
  std::string code = declared.substr(0, declared.find_first_of("-_"));
  if (IsLanguageCode(code)) return code;
  return recognises ? DetectedLanguage(LanguageSample(content)) : std::string();
}

// Whether the page is there to lead on to another one: it refreshes to an address and says next to
// nothing, such as "Redirecting" with a link.
bool IsRefreshStub(const PageContent& content) {
  constexpr size_t kTextLimit = 200;  // bytes
  const std::string refresh = LowerAsciiCopy(MetaContent(content, "http-equiv:refresh"));
  if (refresh.find("url") == refresh.npos) return false;
  size_t bytes = 0;
  for (const TextRun& run : content.body) bytes += run.text.size();
  return bytes <= kTextLimit;
}

}  // namespace

std::string HeadingTitle(const PageContent& content) {
  const TextRun* best = nullptr;
  for (const TextRun& run : content.body) {
    if (run.headingLevel == 0) continue;
    if (best == nullptr || run.headingLevel < best->headingLevel) best = &run;
  }
  return best == nullptr ? std::string() : CollapseBlanks(best->text);
}

Reason ReadPage(const SourceItem& item, FileContent file, const PageWishes& wishes,
                const ReadingLimits& limits, Page& page) {
  page = Page();
  ReadingBudget budget = StartReading(limits, file.bytes.size());
  const uint64_t fileSize = file.size;
  const int64_t fileTime = file.modifiedTime;
  const ContentChoice& choice =
      wishes.content == nullptr ? PlainContentChoice() : wishes.content->Of(item.address);
  const Reason reason =
      ReadContent(item, std::move(file), wishes.documents, choice, budget, page.content);
  if (reason != Reason::kNone) return reason;
  const PageContent& content = page.content;
  // Others may say something of a picture.
  if (!SaysAnything(content) && item.type != FileType::kPicture) return Reason::kNoText;
  if (IsRefreshStub(content)) return Reason::kRefresh;
  ResolveLinks(item.address, page.content);
  AddFacts(page.content);
  page.facts = {
      .path = item.path,
      .address = item.address,
      .canonical = CanonicalAddress(content, item.address),
      .title = PageTitle(content, item.path),
      .image = wishes.images ? PageImage(content, item) : std::string(),
      .language = PageLanguage(content, wishes.recognisesLanguages),
      .fileSize = fileSize,
      .time = PageDate(content, fileTime, wishes.dates),
      .ownTime = PageDate(content, 0, wishes.dates),
      .fileTime = fileTime,
      .fileType = item.type,
  };
  return Reason::kNone;
}

}  // namespace vela::indexer
