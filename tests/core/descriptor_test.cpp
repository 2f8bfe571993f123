#include "core/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace orvane::test {
namespace {

bool isOpenInProcess(int descriptor) { return fcntl(descriptor, F_GETFD) >= 0; }

int openSomething() { return open("/dev/null", O_RDONLY); }

TEST(DescriptorTest, ClosesWhatItHoldsWhenItGoes) {
  const int value = openSomething();
  ASSERT_GE(value, 0);
  {
    const Descriptor descriptor(value);
    EXPECT_TRUE(descriptor.isOpen());
    EXPECT_EQ(descriptor.get(), value);
    EXPECT_TRUE(isOpenInProcess(value));
  }
  EXPECT_FALSE(isOpenInProcess(value));
}

TEST(DescriptorTest, HoldsNothingByDefault) {
  const Descriptor descriptor;
  EXPECT_FALSE(descriptor.isOpen());
}

TEST(DescriptorTest, MovingHandsTheDescriptorOver) {
  const int value = openSomething();
  Descriptor first(value);
  {
    const Descriptor second(std::move(first));
    EXPECT_EQ(second.get(), value);
    EXPECT_TRUE(isOpenInProcess(value));
  }
  EXPECT_FALSE(isOpenInProcess(value));
}

TEST(DescriptorTest, AssignmentLosesNeitherDescriptor) {
  const int kept = openSomething();
  const int replaced = openSomething();
  {
    Descriptor target(replaced);
    target = Descriptor(kept);
    EXPECT_EQ(target.get(), kept);
    EXPECT_TRUE(isOpenInProcess(kept));
    EXPECT_FALSE(isOpenInProcess(replaced));
  }
  EXPECT_FALSE(isOpenInProcess(kept));
}

TEST(DescriptorTest, ReleaseLeavesItToTheCaller) {
  const int value = openSomething();
  {
    Descriptor descriptor(value);
    EXPECT_EQ(descriptor.release(), value);
    EXPECT_FALSE(descriptor.isOpen());
  }
  EXPECT_TRUE(isOpenInProcess(value));
  close(value);
}

}  // namespace
}  // namespace orvane::test
