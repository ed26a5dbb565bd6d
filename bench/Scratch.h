#ifndef bench_Scratch_h
#define bench_Scratch_h

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace StnBench {

/// A folder of this process in $TMPDIR or /tmp, which is removed at the end with all that is in it.
class Scratch {
 public:
  Scratch() : fFolder((std::filesystem::temp_directory_path() / "stn-bench-XXXXXX").string()) {
    if (!mkdtemp(fFolder.data())) throw std::runtime_error("no folder " + fFolder + " could be made");
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(fFolder, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  std::string GetPath(const std::string& name) const { return fFolder + "/" + name; }

 private:
  std::string fFolder;
};

}  // namespace StnBench

#endif
