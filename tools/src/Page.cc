#include "Page.h"

#include "FileName.h"
#include "ToolError.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iostream>

namespace StnTools {
namespace {

const std::string kTitlePlace = "{{title}}";
const std::string kDataPlace = "{{data}}";

std::string ReplaceAll(std::string text, char character, const std::string& with) {
  for (size_t at = text.find(character); at != std::string::npos; at = text.find(character, at + with.size()))
    text.replace(at, 1, with);
  return text;
}

// An ampersand first, as the others bring ampersands along.
std::string EscapeText(std::string text) {
  text = ReplaceAll(text, '&', "&amp;");
  return ReplaceAll(text, '<', "&lt;");
}

// In JSON this sign stands in texts only, where it can be written as its number.
std::string EscapeData(const std::string& json) { return ReplaceAll(json, '<', "\\u003c"); }

}  // namespace

std::string FillPage(const char* page, const std::string& title, const std::string& json) {
  const std::string text = page;
  const size_t title_at = text.find(kTitlePlace);
  const size_t data_at = text.find(kDataPlace, title_at);
  const size_t after_title = title_at + kTitlePlace.size();
  return text.substr(0, title_at) + EscapeText(title) + text.substr(after_title, data_at - after_title) +
         EscapeData(json) + text.substr(data_at + kDataPlace.size());
}

std::string FormatJsonText(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void WritePage(const std::string& path, bool force, const std::string& page) {
  if (path.empty()) {
    std::cout << page;
    return;
  }
  RequireNewName(path, force);
  RemovePart(path);
  // A limit on the size of files shall come as an error, like a full disk, and not end the process.
  std::signal(SIGXFSZ, SIG_IGN);
  std::ofstream file(GetPartName(path));
  file << page;
  file.close();
  if (!file) {
    const std::string reason = std::strerror(errno);
    RemovePart(path);
    throw ToolError(kCannotWrite,
                    path + " could not be written (" + reason + ") and was not kept; choose another place");
  }
  FinishPart(path);
}

}  // namespace StnTools
