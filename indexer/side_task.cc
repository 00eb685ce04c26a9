#include "indexer/side_task.h"

#include <system_error>
#include <utility>

namespace vela::indexer {

SideTask::SideTask(bool aside, std::function<void()> work) : work_(std::move(work)) {
  if (aside) {
    try {
      thread_ = std::thread([this] { Run(); });
      return;
    } catch (const std::system_error&) {  // done below
    }
  }
  Run();
}

SideTask::~SideTask() {
  if (thread_.joinable()) thread_.join();
}

void SideTask::Run() noexcept {
  try {
    work_();
  } catch (...) {
    failure_ = std::current_exception();
  }
}

void SideTask::Finish() {
  if (thread_.joinable()) thread_.join();
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

}  // namespace vela::indexer
