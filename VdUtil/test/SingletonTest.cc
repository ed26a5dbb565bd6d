#include <VdUtil/Singleton.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::atomic<int> gNConstructed{0};

class Slow : public VdUtil::Singleton<Slow> {
 protected:
  friend class VdUtil::Singleton<Slow>;
  Slow() {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ++gNConstructed;
  }
};

class Moody : public VdUtil::Singleton<Moody> {
 public:
  static int fgNTries;

 protected:
  friend class VdUtil::Singleton<Moody>;
  Moody() {
    if (++fgNTries == 1) throw std::runtime_error("not now");
  }
};

int Moody::fgNTries = 0;

class Farewell : public VdUtil::Singleton<Farewell> {
 protected:
  friend class VdUtil::Singleton<Farewell>;
  Farewell() = default;
  ~Farewell() override { std::fputs("farewell\n", stderr); }
};

}  // namespace

TEST(Singleton, RacingThreadsGetTheSameInstance) {
  std::vector<Slow*> instances(8);
  std::vector<std::thread> threads;
  for (auto& instance : instances)
    threads.emplace_back([&instance] { instance = &Slow::GetInstance(); });
  for (auto& thread : threads)
    thread.join();
  EXPECT_EQ(gNConstructed, 1);
  EXPECT_EQ(instances, std::vector<Slow*>(8, &Slow::GetInstance()));
}

TEST(Singleton, TriesAgainWhenTheConstructorHasThrown) {
  EXPECT_THROW(Moody::GetInstance(), std::runtime_error);
  EXPECT_NO_THROW(Moody::GetInstance());
  EXPECT_EQ(Moody::fgNTries, 2);
}

TEST(Singleton, IsDestroyedAtTheExitAfterNewerHandlers) {
  EXPECT_EXIT(
      {
        Farewell::GetInstance();
        std::atexit([] { std::fputs("handler\n", stderr); });
        std::exit(0);
      },
      testing::ExitedWithCode(0), "handler\nfarewell\n");
}

TEST(Singleton, AddsNoData) { EXPECT_EQ(sizeof(VdUtil::Singleton<Slow>), sizeof(void*)); }

TEST(Singleton, CannotBeCopiedOrMade) {
  EXPECT_FALSE(std::is_copy_constructible<Slow>::value);
  EXPECT_FALSE(std::is_copy_assignable<Slow>::value);
  EXPECT_FALSE(std::is_default_constructible<Slow>::value);
  EXPECT_FALSE(std::is_default_constructible<VdUtil::Singleton<Slow>>::value);
  EXPECT_TRUE(std::has_virtual_destructor<VdUtil::Singleton<Slow>>::value);
}
