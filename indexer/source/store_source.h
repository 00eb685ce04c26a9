// store_source.h: pages that were fetched from the web, or taken out of archives, as a source.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "indexer/source/file_endings.h"
#include "indexer/source/page_store.h"
#include "indexer/source/source.h"

namespace vela::indexer {

// Its items are in ascending byte order of their addresses. The version of an item stands for its
// bytes, which are there to be looked at.
class StoreSource final : public Source {
 public:
  struct Wishes {
    FileEndings endings;       // of names, where a server does not say what it sends
    uint64_t pageLimit = 0;    // bytes
    std::string sought = {};   // see SiteListing
    bool isTemporary = false;  // the store is removed with this
  };

  StoreSource(std::unique_ptr<PageStore> store, std::filesystem::path file, Wishes wishes)
      : store_(std::move(store)), file_(std::move(file)), wishes_(std::move(wishes)) {}
  ~StoreSource() override;

  SiteListing List() override;
  [[nodiscard]] Reason Read(const SourceItem& item, FileContent& content) const override;
  std::string Version(const SourceItem& item) const override;
  Finding WhyNotListed(const std::string& path) const override;

 private:
  std::unique_ptr<PageStore> store_;
  std::filesystem::path file_;  // of the store
  Wishes wishes_;
};

}  // namespace vela::indexer
