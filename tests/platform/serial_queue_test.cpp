#include "platform/serial_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <vector>

namespace orvane::platform {
namespace {

TEST(SerialQueueTest, RunsTasksInOrderOnOneOtherThread) {
  std::vector<int> order;
  std::vector<std::thread::id> threads;
  SerialQueue queue("com.orvane.test");
  for (int i = 0; i < 1000; ++i) {
    queue.submit([&, i] {
      order.push_back(i);
      threads.push_back(std::this_thread::get_id());
    });
  }
  queue.drain();
  ASSERT_EQ(order.size(), 1000U);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
  for (const std::thread::id id : threads) {
    EXPECT_EQ(id, threads.front());
    EXPECT_NE(id, std::this_thread::get_id());
  }
}

TEST(SerialQueueTest, SubmitDoesNotWait) {
  std::promise<void> gate;
  std::atomic<bool> ran = false;
  SerialQueue queue("com.orvane.test");
  queue.submit([&] { gate.get_future().wait(); });
  queue.submit([&] { ran = true; });
  EXPECT_FALSE(ran);
  gate.set_value();
  queue.drain();
  EXPECT_TRUE(ran);
}

TEST(SerialQueueTest, EndRunsWhatIsPending) {
  std::promise<void> gate;
  int count = 0;
  {
    SerialQueue queue("com.orvane.test");
    queue.submit([&] { gate.get_future().wait(); });
    for (int i = 0; i < 100; ++i) queue.submit([&] { ++count; });
    gate.set_value();
  }
  EXPECT_EQ(count, 100);
}

TEST(SerialQueueTest, UnusedQueueEndsAndDrainsAtOnce) {
  SerialQueue queue("com.orvane.test");
  queue.drain();
}

TEST(SerialQueueTest, TakesTasksFromManyThreads) {
  int count = 0;
  SerialQueue queue("com.orvane.test");
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      for (int j = 0; j < 250; ++j) queue.submit([&] { ++count; });
    });
  }
  for (std::thread& thread : threads) thread.join();
  queue.drain();
  EXPECT_EQ(count, 2000);
}

TEST(SerialQueueTest, DrainCoversTheRunningTask) {
  SerialQueue queue("com.orvane.test");
  std::atomic<bool> done = false;
  std::promise<void> started;
  queue.submit([&] {
    started.set_value();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    done = true;
  });
  started.get_future().wait();
  queue.drain();
  EXPECT_TRUE(done);
}

}  // namespace
}  // namespace orvane::platform
