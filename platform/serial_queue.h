// A queue that runs its tasks one after another, in the order of their submission, on a thread of its own.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace orvane::platform {

class SerialQueue {
 public:
  /// `label` names the queue's thread, in reverse-DNS form. The thread starts with the first task.
  explicit SerialQueue(std::string label);

  /// Waits until what is still pending has run, then ends the thread.
  ~SerialQueue();

  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  /// Adds `task`, which must not throw, and returns at once. Where the system has no thread to give, the task waits
  /// for a later submit, drain or the end, whichever comes first.
  void submit(std::function<void()> task);

  /// Waits until every task submitted so far has run.
  void drain();

 private:
  void startThread();
  void run();

  std::string label_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  bool busy_ = false;
  bool ending_ = false;
  std::thread thread_;
};

}  // namespace orvane::platform
