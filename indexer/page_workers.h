// page_workers.h: the pages of the site are made into blocks by several threads and joined by one,
// in the order of the site's list, whichever is ready first.
#pragma once

#include <cstddef>
#include <functional>

#include "indexer/collect/page_block.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Makes the item of that number into a block: kNone, or why it is left out. May throw; what is
// thrown ends the run when it is the turn of that item.
using MakeBlock = std::function<Reason(size_t item, PageBlock& block)>;
// Takes the items one by one, from 0 on.
using UseBlock = std::function<void(size_t item, Reason reason, PageBlock& block)>;

struct PageWork {
  size_t items = 0;
  unsigned jobs = 1;        // threads that make blocks; 1: it is all done by the one that asks
  size_t waitingBytes = 0;  // of blocks that are ready before their turn, nearly
};

// Calls `newMaker` for each thread, and its results by that thread alone; `use` by the calling one.
// Where no more threads can be had the work is done by fewer.
void ForEachBlock(const PageWork& work, const std::function<MakeBlock()>& newMaker,
                  const UseBlock& use);

}  // namespace vela::indexer
