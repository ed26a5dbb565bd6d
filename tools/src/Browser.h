#ifndef tools_Browser_h
#define tools_Browser_h

#include <string>

namespace StnTools {

/// A picture to be drawn of a page.
struct PictureSize {
  int fWidth;   ///< in pixels of the page,
  int fHeight;  ///< each of which becomes two by two pixels of the picture
};

/// Draws `page`, the text of a page, into the new PNG file `path` by a Chromium that shows no window, which is the
/// program that STN_CHROMIUM names, or else chromium, chromium-browser or google-chrome. No shell is run, and nothing is
/// fetched. What has the name `path` stays, unless `force` is true. Throws with `kCannotWrite`, also without a browser
/// and if it is not done after `seconds`.
void DrawPage(const std::string& page, const std::string& path, bool force, const PictureSize& size, int seconds = 60);

}  // namespace StnTools

#endif
