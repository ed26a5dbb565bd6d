#ifndef tools_ProgressBar_h
#define tools_ProgressBar_h

#include <Rtypes.h>

#include <string>

namespace StnTools {

/// Shows on the standard error stream how far a program is, if that is a terminal; silent otherwise.
class ProgressBar {
 public:
  /// A bar that is full at `total` steps.
  explicit ProgressBar(UInt_t total);
  /// Takes the bar off the terminal.
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// Shows that `done` steps are done; writes only when the picture changes.
  void Show(UInt_t done);

  /// The picture itself, as in "[##........]  20 %".
  static std::string Draw(UInt_t done, UInt_t total);

 private:
  UInt_t fTotal;
  bool fIsTerminal;
  std::string fShown;
};

}  // namespace StnTools

#endif
