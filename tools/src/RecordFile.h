#ifndef tools_RecordFile_h
#define tools_RecordFile_h

#include "FileFrame.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace StnTools {

/// One record of a ROOT file, as its key tells: a basket of a branch, a tree, a run header, ...
struct Record {
  std::uint64_t fSeek = 0;        ///< byte of the file where it begins
  std::uint64_t fSize = 0;        ///< bytes in the file, key included
  std::uint64_t fKeySize = 0;     ///< bytes of the key
  std::uint64_t fObjectSize = 0;  ///< bytes of the content, uncompressed
  int fCycle = 0;                 ///< of an object its cycle; of a basket its number in the branch, modulo 65536
  std::string fClass;             ///< class of the content; "TBasket" for a basket
  std::string fName;              ///< name of the object; of a basket that of its branch
  std::string fTitle;             ///< title of the object; of a basket the name of its tree
  bool fIsWhole = false;          ///< does the file go on to its end?
  std::uint32_t fNEntries = 0;    ///< of a basket: how many entries it holds
  std::uint64_t fLast = 0;        ///< of a basket: end of the last entry, counted from the begin of the key

  std::uint64_t GetEnd() const { return fSeek + fSize; }
  bool IsBasket() const { return fClass == "TBasket"; }
};

/// A part of a file in which no record could be made out.
struct Stretch {
  std::uint64_t fBegin;
  std::uint64_t fEnd;
};

/// The records of a ROOT file, found without ROOT and without what the file says of itself: every record begins with
/// a key that holds its own place. The file is opened for reading only.
class RecordFile {
 public:
  /// Walks over all records. Behind a damaged one the walk goes on with the next key. Throws as `ReadFileFrame`.
  explicit RecordFile(const std::string& path);
  ~RecordFile();
  RecordFile(const RecordFile&) = delete;
  RecordFile& operator=(const RecordFile&) = delete;

  const std::string& GetPath() const { return fPath; }
  const FileFrame& GetFrame() const { return fFrame; }

  /// In the order of the file; free space is left out.
  const std::vector<Record>& GetRecords() const { return fRecords; }
  /// Where something else than a record or free space lies.
  const std::vector<Stretch>& GetLost() const { return fLost; }

  /// The bytes of a record as ROOT has them in memory: the key, and the content uncompressed. None if the record is cut
  /// or damaged.
  std::optional<std::vector<char>> Read(const Record& record) const;

 private:
  void Walk();
  std::uint64_t WalkOn(std::uint64_t seek);
  std::optional<Record> ReadKey(std::uint64_t seek) const;
  std::int64_t ReadRecordSize(std::uint64_t seek) const;
  std::uint64_t GetFreeSize(std::uint64_t seek) const;
  bool IsPlausible(std::uint64_t seek) const;
  std::uint64_t SkipHole(std::uint64_t seek) const;
  std::uint64_t FindKey(std::uint64_t seek) const;
  std::string ReadBytes(std::uint64_t seek, std::uint64_t size) const;

  std::string fPath;
  FileFrame fFrame;
  std::uint64_t fSize;
  int fDescriptor;
  std::vector<Record> fRecords;
  std::vector<Stretch> fLost;
};

}  // namespace StnTools

#endif
