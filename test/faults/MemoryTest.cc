// Resident memory of programs that run for long. STN_LONG in the environment asks for the full numbers.

#include "EventFiles.h"

#include <StnEvent/StnRunHeader.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr const char* kName = "memory.root";

long GetResidentKilobytes() {
  std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen("/proc/self/statm", "r"), std::fclose);
  long total = 0, resident = 0;
  if (!file || std::fscanf(file.get(), "%ld %ld", &total, &resident) != 2) return 0;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

int GetNumber(int in_short, int in_full) { return std::getenv("STN_LONG") ? in_full : in_short; }

/// Does something `n` times, and tells by how much memory has grown after the first `n_before`.
template <typename Work>
long GetGrowth(int n, int n_before, Work work) {
  long begin = 0;
  for (int i = 0; i < n; ++i) {
    if (i == n_before) begin = GetResidentKilobytes();
    work(i);
  }
  const long growth = GetResidentKilobytes() - begin;
  testing::Test::RecordProperty("times", n);
  testing::Test::RecordProperty("begin_kB", static_cast<int>(begin));
  testing::Test::RecordProperty("growth_kB", static_cast<int>(growth));
  std::printf("%d times: %ld kB, and %ld kB more at the end\n", n, begin, growth);
  return growth;
}

class MemoryTest : public testing::Test {
 protected:
  void SetUp() override {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer keeps what is given back";
#endif
  }
};

}  // namespace

TEST_F(MemoryTest, OfAReaderOfManyFilesStays) {
  constexpr UInt_t kNEvents = 3;
  WriteFile(kName, kNEvents);
  const long growth = GetGrowth(GetNumber(300, 2000), 30, [](int) {
    TStnEventFile file(kName);
    TStnEvent* event = nullptr;
    for (UInt_t entry = 0; entry < kNEvents; ++entry)
      ASSERT_TRUE(file.ReadEvent(&event));
    file.Close();
    delete event;
  });
  EXPECT_LT(growth, 1000);
}

// Headers handed out stay good for ever, so each file leaves the event that it kept for them.
TEST_F(MemoryTest, OfAReaderOfTheHeadersOfManyFilesGrowsByOneEventEach) {
  WriteFile(kName, 3);
  const int n_files = GetNumber(300, 2000);
  const long growth = GetGrowth(n_files, 30, [](int) {
    TStnEventFile file(kName);
    TStnEventHeader* header = nullptr;
    ASSERT_TRUE(file.ReadEventHeader(&header));
  });
  constexpr long kEventKilobytes = 2;
  EXPECT_LT(growth, 1000 + kEventKilobytes * n_files);
}

// After 30 MB of events, here at about 27,000, ROOT makes the buffers of the branches larger, once. The tree keeps where
// each basket is: 20 bytes for a basket, and the headers fill about one for two events.
TEST_F(MemoryTest, OfAWriterOfManyEventsStays) {
  TStnEventFile file(kName, "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  const long growth = GetGrowth(GetNumber(5000, 50000), GetNumber(500, 30000), [&](int number) {
    FillEvent(event, static_cast<UInt_t>(number));
    ASSERT_TRUE(file.WriteEvent(&address));
  });
  EXPECT_LT(growth, 5000);
}
