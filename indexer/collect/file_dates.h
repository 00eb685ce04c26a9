// file_dates.h: whether the times of the site's files tell when its pages were written.
//
// Where a site is copied, unpacked or generated as a whole, its files are all of one day, which
// says nothing of the pages. Only when all are read is that known.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "indexer/extract/page.h"

namespace vela::indexer {

// A page whose date is that of its file, and the one that it has without.
struct FileDate {
  uint32_t page = 0;
  int64_t ownTime = 0;  // seconds since 1970; 0 for none
};

class FileDates {
 public:
  // Takes in the page of that number.
  void AddPage(uint32_t number, const PageFacts& page);

  // The day, as in "2026-03-05" (UTC), on which more than half of the pages' files were changed;
  // empty when there is none.
  std::string SharedDay() const;

  // Calls `use` for every page whose date is that of its file, in ascending order.
  template <typename Use>
  void ForEachPage(Use use) const {
    size_t other = 0;
    for (uint32_t page = 0; page < isDated_.size(); ++page) {
      if (!isDated_[page]) continue;
      const bool hasOwn = other < owns_.size() && owns_[other].page == page;
      use(hasOwn ? owns_[other++] : FileDate{.page = page});
    }
  }

 private:
  std::vector<bool> isDated_;                    // by page: its date is that of its file
  std::vector<FileDate> owns_;                   // of those, the few that have a date of their own
  std::unordered_map<int64_t, uint64_t> files_;  // by the day since 1970
  uint64_t count_ = 0;                           // of all pages whose file says when it was changed
};

}  // namespace vela::indexer
