// side_task.h: work that goes on beside other work.
#pragma once

#include <exception>
#include <functional>
#include <thread>

namespace vela::indexer {

class SideTask {
 public:
  // Begins `work` in a thread of its own; where `aside` is false, or no thread can be had, it is
  // done here and now. What it refers to must outlive this.
  SideTask(bool aside, std::function<void()> work);
  ~SideTask();
  SideTask(const SideTask&) = delete;
  SideTask& operator=(const SideTask&) = delete;

  // Waits for its end. Throws what it threw, once.
  void Finish();

 private:
  void Run() noexcept;

  std::function<void()> work_;
  std::exception_ptr failure_;
  std::thread thread_;
};

}  // namespace vela::indexer
