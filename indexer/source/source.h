// source.h: where pages come from: a folder, a crawl, an archive.
#pragma once

#include <string>
#include <vector>

#include "indexer/report/left_out.h"
#include "indexer/report/reason.h"
#include "indexer/source/file_reading.h"
#include "indexer/source/item_list.h"
#include "indexer/source/source_item.h"

namespace vela::indexer {

struct SiteListing {
  ItemList items;               // in the order that gives pages their numbers
  LeftOut leftOut;              // what might have been pages
  LeftOut otherKinds;           // `where` is the ending, with its dot; empty for none
  std::vector<Finding> unused;  // rules of the owner's that left nothing out
  // Where pages were looked for and what would be one, for the message that there is none:
  // "in /srv/site. Pages are files that end in .html."
  std::string sought;
};

class Source {
 public:
  Source() = default;
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  virtual ~Source() = default;

  // Lists what may be pages. The same content gives the same list. Throws IndexError.
  virtual SiteListing List() = 0;

  // Reads an item of the list. What it holds is in `content` when kNone is returned. Any number of
  // threads may call it at once. Throws std::bad_alloc when there is no memory.
  [[nodiscard]] virtual Reason Read(const SourceItem& item, FileContent& content) const = 0;

  // A text that is another one where what Read gives may be another, found without reading where
  // that can be. Asked before Read, it stands for what that gives or for something older. Empty:
  // not known. Any number of threads may call it at once.
  virtual std::string Version(const SourceItem& item) const = 0;

  // Why what an owner asks for is not in the list, nor among what is left out there. The path is
  // as that of an item.
  virtual Finding WhyNotListed(const std::string&) const { return {Reason::kFileNotFound, {}, {}}; }
};

}  // namespace vela::indexer
