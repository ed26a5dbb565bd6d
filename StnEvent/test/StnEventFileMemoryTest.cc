#include "EventFiles.h"
#include "LogCapture.h"

#include <TTree.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

// Memory comes from here in this program, so that a test can run out of it.
static std::size_t gRefusedSize = 0;

void* operator new(std::size_t size) {
  void* memory = size == gRefusedSize ? nullptr : std::malloc(size ? size : 1);
  if (!memory) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

TEST(StnEventFileMemoryTest, WriteEventReportsATreeThatCantBeMade) {
  OpenFile file("memory.root", "RECREATE");
  TStnEvent event;
  TStnEvent* address = &event;
  LogCapture log;
  gRefusedSize = sizeof(TTree);
  EXPECT_FALSE(file.WriteEvent(&address));
  gRefusedSize = 0;
  EXPECT_EQ(log.Take(), "ERR:TStnEventFile::WriteEvent() - could not create TTree !\n");
  EXPECT_EQ(Member<TStnEvent*>(file, "fEventBuffer"), &event);
  EXPECT_EQ(Member<TTree*>(file, "fTree"), nullptr);
  EXPECT_TRUE(file.WriteEvent(&address));
  EXPECT_NE(Member<TTree*>(file, "fTree"), nullptr);
}

}  // namespace
