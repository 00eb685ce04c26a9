// merged_parts.h: the parts of a site (site_part.h), read by other runs, as one source of pages.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "indexer/publish/run_lock.h"
#include "indexer/source/database.h"
#include "indexer/source/source.h"
#include "indexer/state/page_row.h"
#include "indexer/state/site_part.h"

namespace vela::indexer {

class MergedParts final : public Source {
 public:
  // Opens the folders that runs of all parts had for their state. Throws IndexError, kUsage, where
  // they are not the parts of one site, each once, all complete; kBusy while a run is filling one.
  explicit MergedParts(const std::vector<std::string>& folders);

  // What they know of the whole site, but for their own numbers.
  const PartNotes& notes() const { return notes_; }

  // Throws IndexError, kUsage, unless the parts were made by the program and the wishes of that
  // fingerprint.
  void CheckVersion(const Fingerprint& version) const;

  // The whole site's; once. Throws IndexError where an item is in no part.
  SiteListing List() override;
  // What became of an item of the list, by its number. Any number of threads may call it at once.
  // Throws IndexError when the part is damaged.
  void Take(size_t item, ItemOutcome& outcome) const;

  // Nothing is read: what became of all items is known.
  [[nodiscard]] Reason Read(const SourceItem& item, FileContent& content) const override;
  std::string Version(const SourceItem& item) const override;

 private:
  struct Part {
    std::filesystem::path folder;
    std::unique_ptr<RunLock> lock;  // where one can be had
    std::string form;
    // Connections that nobody uses now.
    std::vector<std::unique_ptr<Database>> readers;
  };
  struct Known {
    uint32_t part = 0;
    KeptOutcome outcome;
  };

  std::filesystem::path FileOf(size_t part) const { return parts_[part].folder / kPageStateName; }
  PartNotes OpenPart(const std::string& folder);

  PartNotes notes_;
  ItemList items_;
  std::vector<Known> known_;  // beside the items
  mutable std::mutex mutex_;  // of the readers
  mutable std::vector<Part> parts_;
};

}  // namespace vela::indexer
