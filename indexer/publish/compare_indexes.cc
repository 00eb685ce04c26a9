#include "indexer/publish/compare_indexes.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "format/page_data.h"
#include "index/lookup_file.h"
#include "index/page_data.h"
#include "index/page_info.h"
#include "indexer/publish/former_settings.h"
#include "indexer/site/address.h"
#include "settings/index_directory.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

// What is known of a page: which it is, and what it is like.
struct PagePrint {
  size_t address = 0;
  size_t content = 0;
};

size_t Mixed(size_t print, size_t more) {
  return (print ^ more) * 0x9E3779B97F4A7C15U + (print >> 29);
}

// The page table of an index folder.
class PagesOf {
 public:
  explicit PagesOf(const fs::path& folder) : settings_(ReadFormerSettings(folder)) {
    if (settings_ == nullptr) return;
    OpenIndexDirectory(directory_, folder.string());
    const LookupFile noLookup;
    isRead_ = data_.Open(directory_, kPageDataFileName, false) &&
              LoadPageInfo(pages_, directory_, *settings_, noLookup) == LoadStatus::kOk;
  }

  bool isIndex() const { return settings_ != nullptr; }
  // 0 where its files cannot be read.
  uint32_t count() const {
    return isRead_ ? static_cast<uint32_t>(std::max(pages_.pageCount, 0)) : 0;
  }
  // As a person writes it.
  std::string Address(uint32_t page) const { return PlainAddress(TextsOf(page).url); }
  PagePrint PrintOf(uint32_t page) const {
    const PageTexts texts = TextsOf(page);
    const std::hash<std::string_view> hash;
    size_t content = hash(texts.title);
    for (const std::string_view more :
         {texts.description, texts.image, PageMetaData(pages_, page)}) {
      content = Mixed(content, hash(more));
    }
    content = Mixed(content, PageFileSize(pages_, page));
    content = Mixed(content, static_cast<size_t>(PageDateTime(pages_, page)));
    return {.address = hash(texts.url), .content = content};
  }
  std::vector<PagePrint> Prints() const {
    std::vector<PagePrint> prints(count());
    for (uint32_t page = 0; page < count(); ++page) prints[page] = PrintOf(page);
    std::ranges::sort(prints, {}, &PagePrint::address);
    return prints;
  }

 private:
  PageTexts TextsOf(uint32_t page) const {
    PageTexts texts;
    if (!ReadPageData(data_.bytes(), PageDataOffset(pages_, page), texts)) texts = {};
    return texts;
  }

  std::unique_ptr<Settings> settings_;
  IndexDirectory directory_;
  FileImage data_;
  PageTable pages_;
  bool isRead_ = false;
};

const PagePrint* Find(const std::vector<PagePrint>& prints, size_t address) {
  const auto found = std::ranges::lower_bound(prints, address, {}, &PagePrint::address);
  return found == prints.end() || found->address != address ? nullptr : &*found;
}

void Add(const PagesOf& pages, uint32_t page, ChangedPages& changed) {
  ++changed.count;
  if (changed.examples.size() == ChangedPages::kExampleLimit) return;
  changed.examples.push_back(pages.Address(page));
}

}  // namespace

IndexChanges CompareIndexes(const fs::path& former, const fs::path& fresh) {
  const PagesOf before(former);
  const PagesOf after(fresh);
  IndexChanges changes;
  changes.hasFormer = before.isIndex();
  const std::vector<PagePrint> old = before.Prints();
  for (uint32_t page = 0; page < after.count(); ++page) {
    const PagePrint print = after.PrintOf(page);
    const PagePrint* known = Find(old, print.address);
    if (known == nullptr) {
      Add(after, page, changes.added);
    } else if (known->content != print.content) {
      Add(after, page, changes.changed);
    }
  }
  const std::vector<PagePrint> present = after.Prints();
  for (uint32_t page = 0; page < before.count(); ++page) {
    if (Find(present, before.PrintOf(page).address) == nullptr) Add(before, page, changes.gone);
  }
  return changes;
}

}  // namespace vela::indexer
