#include "indexer/documents/epub_page.h"

#include <iterator>
#include <map>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "indexer/documents/document_properties.h"
#include "indexer/documents/package.h"
#include "indexer/documents/xml_reading.h"
#include "indexer/extract/decoding.h"
#include "indexer/extract/html_page.h"
#include "indexer/extract/meta_elements.h"
#include "indexer/extract/xhtml_page.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kContainerPart = "META-INF/container.xml";
constexpr std::string_view kEncryptionPart = "META-INF/encryption.xml";
constexpr std::string_view kPackageMedia = "application/oebps-package+xml";

bool IsWanted(std::string_view name) {
  for (const std::string_view ending : {".xhtml", ".html", ".htm", ".xml", ".opf"}) {
    if (name.ends_with(ending)) return true;
  }
  return false;
}

// References are addresses: what is encoded in them is the name of a part.
std::string PartOf(std::string_view from, std::string_view reference) {
  std::string decoded;
  for (size_t i = 0; i < reference.size(); ++i) {
    const bool isEncoded = reference[i] == '%' && reference.size() - i > 2 &&
                           HexDigitValue(reference[i + 1]) >= 0 &&
                           HexDigitValue(reference[i + 2]) >= 0;
    if (!isEncoded) {
      decoded += reference[i];
      continue;
    }
    decoded +=
        static_cast<char>(HexDigitValue(reference[i + 1]) * 16 + HexDigitValue(reference[i + 2]));
    i += 2;
  }
  return ResolvePart(from, decoded);
}

// Where the book's package document is.
class ContainerReader : public XmlHandler {
 public:
  void Start(const XmlTag& tag) override {
    if (tag.name() != "rootfile" || !part.empty()) return;
    if (tag.Value("media-type") == kPackageMedia) part = PartOf("", tag.Value("full-path"));
  }
  void End(std::string_view) override {}
  void Text(std::string_view) override {}

  std::string part;
};

// The parts that are encrypted; those of fonts often are in books that anyone can read.
class EncryptionReader : public XmlHandler {
 public:
  void Start(const XmlTag& tag) override {
    if (tag.name() == "CipherReference") parts.insert(PartOf("", tag.Value("URI")));
  }
  void End(std::string_view) override {}
  void Text(std::string_view) override {}

  std::unordered_set<std::string> parts;
};

// The package document: properties, parts, and in which order to read them.
class PackageReader : public XmlHandler {
 public:
  PackageReader(std::string_view part, ReadingBudget& budget, PageContent& filled)
      : part_(part), budget_(budget), page_(filled), properties_(filled) {}

  void Start(const XmlTag& tag) override {
    const std::string_view name = tag.name();
    if (name == "meta") {
      isModified_ = tag.Value("property") == "dcterms:modified";
      modified_.clear();
    } else if (name == "item") {
      std::string item = PartOf(part_, tag.Value("href"));
      // The folder of the package may have a long name.
      if (!TakeBytes(budget_, item.size() + kItemBytes)) return;
      items_.emplace(tag.Value("id"), std::move(item));
    } else if (name == "itemref") {
      const auto found = items_.find(tag.Value("idref"));
      if (found != items_.end() && tag.Value("linear") != "no") {
        chapters.emplace_back(found->second);
      }
    } else {
      properties_.Start(tag);
    }
  }
  void End(std::string_view name) override {
    if (name != "meta") {
      properties_.End(name);
    } else if (std::exchange(isModified_, false)) {
      AddMeta("article:modified_time", modified_, page_);
    }
  }
  void Text(std::string_view text) override {
    constexpr size_t kDateLimit = 100;
    if (isModified_ && modified_.size() < kDateLimit) modified_ += text;
    properties_.Text(text);
  }

  std::vector<std::string_view> chapters;  // of items_

 private:
  static constexpr size_t kItemBytes = 128;  // beside its name

  std::string_view part_;
  ReadingBudget& budget_;
  PageContent& page_;
  DocumentProperties properties_;
  std::map<std::string, std::string, std::less<>> items_;  // parts by their ids
  bool isModified_ = false;
  std::string modified_;
};

Reason ReadChapter(std::string_view bytes, ReadingBudget& budget, PageContent& page) {
  std::string text;
  Reason reason = ConvertToUtf8(bytes, true, budget, text);
  if (reason == Reason::kBinary || reason == Reason::kNotConverted) return Reason::kDamaged;
  if (reason != Reason::kNone) return reason;
  PageContent chapter;
  std::string fault;
  const ReadingBudget whole = budget;
  reason = ParseXhtmlPage(text, budget, chapter, fault);
  if (!fault.empty()) {
    budget = whole;
    reason = ParseHtmlPage(text, budget, chapter);
  }
  if (reason == Reason::kNoindex) return Reason::kNone;
  for (TextRun& run : chapter.body) run.anchor.clear();  // of another file
  page.body.insert(page.body.end(), std::make_move_iterator(chapter.body.begin()),
                   std::make_move_iterator(chapter.body.end()));
  return reason;
}

}  // namespace

Reason ReadEpubPage(std::string_view bytes, ReadingBudget& budget, PageContent& page) {
  Package package;
  Reason reason = package.Open(bytes, &IsWanted, budget);
  if (reason != Reason::kNone) return reason;
  ContainerReader container;
  reason = ReadXml(package.Part(kContainerPart), budget, container);
  if (reason != Reason::kNone) return reason;
  PackageReader book(container.part, budget, page);
  reason = ReadXml(package.Part(container.part), budget, book);
  if (reason != Reason::kNone) return reason;
  EncryptionReader encryption;
  if (package.Has(kEncryptionPart)) {
    reason = ReadXml(package.Part(kEncryptionPart), budget, encryption);
    if (reason != Reason::kNone) return reason;
  }
  std::unordered_set<std::string_view> seen;
  for (const std::string_view chapter : book.chapters) {
    if (!package.Has(chapter) || !seen.insert(chapter).second) continue;
    if (encryption.parts.contains(std::string(chapter))) return Reason::kEncrypted;
    reason = ReadChapter(package.Part(chapter), budget, page);
    if (reason != Reason::kNone) return reason;
  }
  return Reason::kNone;
}

}  // namespace vela::indexer
