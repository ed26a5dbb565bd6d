#include "Browser.h"

#include "FileName.h"
#include "ToolError.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

extern char** environ;

namespace StnTools {
namespace {

namespace fs = std::filesystem;

/// A folder that goes with all that is in it.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string name = (fs::temp_directory_path() / "stn-picture-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw ToolError(kCannotWrite, name + ": " + std::strerror(errno));
    fPath = name;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    fs::remove_all(fPath, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::string GetName(const char* name) const { return (fPath / name).string(); }

 private:
  fs::path fPath;
};

std::string MakeAddress(const std::string& path) {
  static const char digits[] = "0123456789ABCDEF";
  std::string address = "file://";
  for (unsigned char character : path) {
    const bool is_plain = std::isalnum(character) != 0 || std::strchr("/._-", character) != nullptr;
    if (is_plain) {
      address += static_cast<char>(character);
    } else {
      address += {'%', digits[character >> 4], digits[character & 15]};
    }
  }
  return address;
}

std::vector<std::string> MakeArguments(const ScratchFolder& scratch, const PictureSize& size) {
  std::vector<std::string> arguments = {
      "--headless=new",
      "--disable-gpu",
      "--disable-dev-shm-usage",
      "--disable-background-networking",
      "--no-first-run",
      "--host-resolver-rules=MAP * ~NOTFOUND",
      "--hide-scrollbars",
      "--force-device-scale-factor=2",
      "--user-data-dir=" + scratch.GetName("profile"),
      "--window-size=" + std::to_string(size.fWidth) + "," + std::to_string(size.fHeight),
      "--screenshot=" + scratch.GetName("picture.png"),
  };
  // Chromium has no sandbox for root, and does not begin then unless it is told so.
  if (geteuid() == 0) arguments.emplace_back("--no-sandbox");
  arguments.push_back(MakeAddress(scratch.GetName("page.html")) + "#figure");
  return arguments;
}

std::vector<std::string> GetCandidates() {
  const char* chosen = std::getenv("STN_CHROMIUM");
  if (chosen != nullptr && *chosen != 0) return {chosen};
  return {"chromium", "chromium-browser", "google-chrome"};
}

/// Begins the first program that there is; 0 if there is none.
pid_t Spawn(const std::vector<std::string>& arguments) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
  pid_t child = 0;
  for (std::string program : GetCandidates()) {
    std::vector<char*> vector = {program.data()};
    for (const std::string& argument : arguments)
      vector.push_back(const_cast<char*>(argument.c_str()));
    vector.push_back(nullptr);
    if (posix_spawnp(&child, program.c_str(), &actions, nullptr, vector.data(), environ) == 0) break;
    child = 0;
  }
  posix_spawn_file_actions_destroy(&actions);
  return child;
}

/// False if the process had to be ended.
bool WaitFor(pid_t child, int seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  while (waitpid(child, nullptr, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > deadline) {
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
  throw ToolError(kCannotWrite, path + " could not be drawn: " + reason);
}

void Keep(const std::string& picture, const std::string& path) {
  std::error_code error;
  fs::copy_file(picture, GetPartName(path), error);
  if (!error) return FinishPart(path);
  RemovePart(path);
  Fail(path, error.message() + "; choose another place");
}

}  // namespace

void DrawPage(const std::string& page, const std::string& path, bool force, const PictureSize& size, int seconds) {
  RequireNewName(path, force);
  RemovePart(path);
  const ScratchFolder scratch;
  std::ofstream(scratch.GetName("page.html")) << page;
  const pid_t child = Spawn(MakeArguments(scratch, size));
  if (child == 0) Fail(path, "there is no Chromium; install one, or name one in STN_CHROMIUM");
  if (!WaitFor(child, seconds)) Fail(path, "Chromium was not done after " + std::to_string(seconds) + " s");
  const std::string picture = scratch.GetName("picture.png");
  if (!fs::exists(picture)) Fail(path, "Chromium ended without a picture; try it by hand with --headless --screenshot");
  Keep(picture, path);
}

}  // namespace StnTools
