#include "EventFiles.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

namespace {

constexpr std::size_t kNFiles = 4;
constexpr UInt_t kNEvents = 6;

std::string GetName(std::size_t file) { return "turn" + std::to_string(file) + ".root"; }

/// Which event a file has at an entry.
UInt_t GetNumber(std::size_t file, UInt_t entry) { return 100 * static_cast<UInt_t>(file) + entry; }

/// A file being written, with an event of its own.
struct Writer {
  explicit Writer(std::size_t file) : fFile(GetName(file).c_str(), "RECREATE") {}

  TStnEvent fEvent;
  TStnEvent* fAddress = &fEvent;
  TStnEventFile fFile;
};

/// A file being read, likewise.
struct Reader {
  explicit Reader(std::size_t file) : fFile(GetName(file).c_str()) {}

  TStnEvent fEvent;
  TStnEvent* fAddress = &fEvent;
  TStnEventFile fFile;
};

void WriteInTurns() {
  std::array<std::unique_ptr<Writer>, kNFiles> writers;
  for (std::size_t i = 0; i < kNFiles; ++i)
    writers[i] = std::make_unique<Writer>(i);
  for (UInt_t entry = 0; entry < kNEvents; ++entry) {
    for (std::size_t i = 0; i < kNFiles; ++i) {
      FillEvent(writers[i]->fEvent, GetNumber(i, entry));
      ASSERT_TRUE(writers[i]->fFile.WriteEvent(&writers[i]->fAddress));
    }
  }
}

}  // namespace

TEST(SeveralFilesTest, KeepTheirOwnEventsWhenWrittenInTurns) {
  WriteInTurns();
  for (std::size_t i = 0; i < kNFiles; ++i) {
    Reader reader(i);
    ASSERT_EQ(reader.fFile.GetNEvents(), kNEvents);
    for (UInt_t entry = 0; entry < kNEvents; ++entry) {
      ASSERT_TRUE(reader.fFile.ReadEvent(&reader.fAddress));
      EXPECT_TRUE(IsEvent(reader.fEvent, GetNumber(i, entry))) << GetName(i) << ", entry " << entry;
    }
  }
}

TEST(SeveralFilesTest, AreReadInTurnsWhileAnotherIsWritten) {
  WriteInTurns();
  std::array<std::unique_ptr<Reader>, kNFiles> readers;
  for (std::size_t i = 0; i < kNFiles; ++i)
    readers[i] = std::make_unique<Reader>(i);
  Writer writer(kNFiles);
  for (UInt_t entry = 0; entry < kNEvents; ++entry) {
    for (std::size_t i = 0; i < kNFiles; ++i) {
      TStnEventHeader* header = nullptr;
      ASSERT_TRUE(readers[i]->fFile.ReadEventHeader(&header));
      EXPECT_EQ(header->GetEventNo(), GetNumber(i, entry));
      ASSERT_TRUE(readers[i]->fFile.ReadEvent(&readers[i]->fAddress, entry));
      EXPECT_TRUE(IsEvent(readers[i]->fEvent, GetNumber(i, entry))) << GetName(i) << ", entry " << entry;
    }
    FillEvent(writer.fEvent, GetNumber(kNFiles, entry));
    ASSERT_TRUE(writer.fFile.WriteEvent(&writer.fAddress));
  }
  writer.fFile.Close();
  Reader reader(kNFiles);
  for (UInt_t entry = 0; entry < kNEvents; ++entry) {
    ASSERT_TRUE(reader.fFile.ReadEvent(&reader.fAddress));
    EXPECT_TRUE(IsEvent(reader.fEvent, GetNumber(kNFiles, entry)));
  }
}
