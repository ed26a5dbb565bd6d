#ifndef tools_RemoteFile_h
#define tools_RemoteFile_h

#include <StnEvent/StnEventFile.h>

#include <memory>
#include <string>

namespace StnTools {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

/// A station file that is read through another file object: what ROOT makes for an address, as
/// "https://server/run.root", is a file of a class of its own.
class RemoteFile : public TStnEventFile {
 public:
  /// Opens what `address` stands for; null if ROOT cannot, for the reasons that it gives in its messages. Throws a
  /// `ToolError` with `kCannotOpen` if this ROOT knows nothing of such addresses.
  static std::unique_ptr<RemoteFile> Open(const std::string& address);

  ~RemoteFile() override;

  Bool_t IsOpen() const override { return fSource && fSource->IsOpen(); }
  Long64_t GetSize() const override { return fSource->GetSize(); }
  using TStnEventFile::Seek;
  void Seek(Long64_t offset, ERelativeTo from = kBeg) override { SetOffset(offset, from); }
  Bool_t ReadBuffer(char* buffer, Int_t length) override;
  Bool_t ReadBuffer(char* buffer, Long64_t position, Int_t length) override;
  Bool_t ReadBuffers(char* buffer, Long64_t* positions, Int_t* lengths, Int_t n_buffers) override;

 protected:
  Int_t SysClose(Int_t fd) override;

 private:
  RemoteFile(const std::string& address, std::unique_ptr<TFile> source);
  void Count(Long64_t n_bytes);

  std::unique_ptr<TFile> fSource;
};

#pragma GCC diagnostic pop

}  // namespace StnTools

#endif
