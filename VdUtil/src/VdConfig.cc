#include <VdUtil/VdConfig.h>

#include <regex>

#include <unistd.h>

namespace VdUtil {

namespace {

constexpr unsigned int kDefaultStnId = 1;
constexpr unsigned int kDefaultMirrorId = 1;

std::string GetHostname() {
  char name[256] = "";
  gethostname(name, sizeof(name) - 1);
  return name;
}

struct Ids {
  unsigned int fStnId;
  unsigned int fMirrorId;
};

/// Station and mirror in the host's own name, without its domain; 0 for none.
Ids ParseHostname(const std::string& hostname) {
  static const std::regex kPattern("stn([1-5])(?:-mi([1-6]))?(?![a-z0-9])", std::regex::icase);
  const std::string name = hostname.substr(0, hostname.find('.'));
  std::smatch match;
  if (!std::regex_search(name, match, kPattern)) return {0, 0};
  const unsigned int stn = *match[1].first - '0';
  const unsigned int mirror = match[2].matched ? *match[2].first - '0' : 0;
  return {stn, mirror <= Vd::GetStnLastMirrorNo(stn) ? mirror : 0};
}

}  // namespace

VdConfig::VdConfig()
    : fFQHostname(GetHostname()),
      fDefaultStnId(kDefaultStnId),
      fDefaultMirrorId(kDefaultMirrorId),
      fStnId(DetermineStnId(fFQHostname, fDefaultStnId)),
      fMirrorId(DetermineMirrorId(fFQHostname, fDefaultMirrorId)),
      fMirrorNumber(),
      fIsStn(DetermineStnId(fFQHostname, 0) != 0),
      fIsMirror(DetermineMirrorId(fFQHostname, 0) != 0) {
  Vd::SetStnNo(&fMirrorNumber, fStnId);
  Vd::SetMirrorNo(&fMirrorNumber, fMirrorId);
}

unsigned int VdConfig::DetermineStnId(const std::string& hostname, unsigned int default_id) {
  const unsigned int stn = ParseHostname(hostname).fStnId;
  return stn ? stn : default_id;
}

unsigned int VdConfig::DetermineMirrorId(const std::string& hostname, unsigned int default_id) {
  const unsigned int mirror = ParseHostname(hostname).fMirrorId;
  return mirror ? mirror : default_id;
}

}  // namespace VdUtil
