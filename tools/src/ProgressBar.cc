#include "ProgressBar.h"

#include <unistd.h>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace StnTools {
namespace {

// Short enough for the narrowest terminal, as nothing here asks for its width.
const UInt_t kWidth = 30;

}  // namespace

ProgressBar::ProgressBar(UInt_t total) : fTotal(total), fIsTerminal(isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
  if (!fShown.empty()) std::cerr << '\r' << std::string(fShown.size(), ' ') << '\r' << std::flush;
}

void ProgressBar::Show(UInt_t done) {
  if (!fIsTerminal) return;
  std::string picture = Draw(done, fTotal);
  if (picture == fShown) return;
  std::cerr << '\r' << picture << std::flush;
  fShown = picture;
}

std::string ProgressBar::Draw(UInt_t done, UInt_t total) {
  double part = total == 0 ? 1. : std::min(1., static_cast<double>(done) / total);
  auto filled = static_cast<UInt_t>(part * kWidth);
  std::ostringstream text;
  text << '[' << std::string(filled, '#') << std::string(kWidth - filled, '.') << "] " << std::setw(3)
       << static_cast<UInt_t>(part * 100.) << " %";
  return text.str();
}

}  // namespace StnTools
