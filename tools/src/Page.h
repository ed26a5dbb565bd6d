#ifndef tools_Page_h
#define tools_Page_h

#include <string>

namespace StnTools {

/// The pages as they are built in, each with one place for its title and one for its data.
extern const char* const kDisplayPage;
extern const char* const kReportPage;

/// A page with its title, any text, and its data, a text of JSON, in their places. What they hold can't end the element
/// that they stand in.
std::string FillPage(const char* page, const std::string& title, const std::string& json);

/// A text as the JSON text that stands for it; bytes that are no UTF-8 become the replacement character.
std::string FormatJsonText(const std::string& text);

/// Writes a page under its name when it is whole, or to the standard output if `path` is empty. What has that name stays,
/// unless `force` is true. Throws with `kCannotWrite`.
void WritePage(const std::string& path, bool force, const std::string& page);

}  // namespace StnTools

#endif
