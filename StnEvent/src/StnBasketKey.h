#ifndef StnEvent_StnBasketKey_h
#define StnEvent_StnBasketKey_h

#include <Rtypes.h>

#include <string>

class TBranch;

/// The key before a basket of a branch on disk. ROOT takes its numbers for granted, so that damage there lets it write
/// beyond its memory or ask for all there is. What the tree and the file tell of the basket shows the damage beforehand.
class StnBasketKey {
 public:
  /// The basket of `branch` that holds `entry`, in the file that is open under the descriptor `file`.
  StnBasketKey(TBranch& branch, Long64_t entry, int file);

  /// Where the basket is on file; 0 if ROOT has no need to look for it there.
  Long64_t GetPlace() const { return fPlace; }

  /// What is wrong with the key, as "number of entries: found 7000, expected 3"; empty if nothing is.
  std::string FindDamage();

 private:
  void FindBasket(TBranch& branch, Long64_t entry);
  void Expect(const char* what, Long64_t found, Long64_t least, Long64_t most);
  void ExpectPlaces(Long64_t bytes);
  Long64_t Take(std::size_t n_bytes);
  void SkipText();
  Long64_t CountUnpackedBytes(Long64_t object_bytes) const;

  int fFile;
  Long64_t fPlace = 0;
  Long64_t fBytes = 0;
  Long64_t fEntries = 0;
  std::string fKey;
  std::size_t fTaken = 0;
  std::string fDamage;
};

#endif
