#include "platform/serial_queue.h"

#include <csignal>
#include <system_error>
#include <utility>

#include "platform/platform.h"

namespace orvane::platform {

SerialQueue::SerialQueue(std::string label) : label_(std::move(label)) {}

SerialQueue::~SerialQueue() {
  drain();
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void SerialQueue::submit(std::function<void()> task) {
  {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    startThread();
  }
  changed_.notify_all();
}

void SerialQueue::drain() {
  std::unique_lock lock(mutex_);
  startThread();
  while (!thread_.joinable() && !tasks_.empty()) {
    const std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    task();
  }
  changed_.wait(lock, [this] { return tasks_.empty() && !busy_; });
}

// Starts the thread if there is work and none yet. Called with the mutex held.
void SerialQueue::startThread() {
  if (thread_.joinable() || tasks_.empty()) return;
  try {
    thread_ = std::thread([this] { run(); });
  } catch (const std::system_error&) {
    // The tasks wait; whoever calls next tries again.
  }
}

void SerialQueue::run() {
  nameThread(label_.c_str());
  // Signals are for the main thread; and a write of a task to a pipe without a reader is an error, not the end.
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || !tasks_.empty(); });
    if (tasks_.empty()) return;
    const std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    busy_ = true;
    lock.unlock();
    task();
    lock.lock();
    busy_ = false;
    changed_.notify_all();
  }
}

}  // namespace orvane::platform
