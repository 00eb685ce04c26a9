#include "indexer/side_task.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace vela::indexer {
namespace {

TEST(SideTask, IsDoneWhenItIsFinished) {
  for (const bool aside : {false, true}) {
    std::thread::id by;
    SideTask task(aside, [&] { by = std::this_thread::get_id(); });
    task.Finish();
    EXPECT_EQ(by == std::this_thread::get_id(), !aside);
    EXPECT_NE(by, std::thread::id());
  }
}

TEST(SideTask, ThrowsWhatTheWorkThrew) {
  for (const bool aside : {false, true}) {
    SideTask task(aside, [] { throw std::runtime_error("no room"); });
    EXPECT_THROW(task.Finish(), std::runtime_error);
    task.Finish();  // told already
  }
}

TEST(SideTask, EndsBeforeWhatItWorksOn) {
  bool done = false;
  {
    const SideTask task(true, [&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      done = true;
    });
  }
  EXPECT_TRUE(done);
}

}  // namespace
}  // namespace vela::indexer
