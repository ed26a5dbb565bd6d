#ifndef VdUtil_VdConfig_h
#define VdUtil_VdConfig_h

#include <string>

#include <VdUtil/Singleton.h>
#include <VdUtil/VdNumbering.h>

namespace VdUtil {

/// Tells which station and mirror this computer belongs to, from its host name: "stn3" is the computer of station 3,
/// "stn3-mi2" that of its mirror 2. A prefix, a domain, and upper case don't matter ("daq-stn3-mi2.example.org").
/// Any other computer counts as one of station 1 and mirror 1, so that programs run anywhere.
class VdConfig : public Singleton<VdConfig> {
 public:
  /// Station, 1 to 5.
  unsigned int GetStnId() const { return fStnId; }
  /// Mirror inside the station, 1 to 6.
  unsigned int GetMirrorId() const { return fMirrorId; }
  /// Station when the host name has none.
  unsigned int GetDefaultStnId() const { return fDefaultStnId; }
  /// Mirror when the host name has none.
  unsigned int GetDefaultMirrorId() const { return fDefaultMirrorId; }
  /// Station and mirror as one number.
  Vd::_MirrorNumber GetMirrorNumber() const { return fMirrorNumber; }
  /// Host name as the system gives it.
  const std::string& GetFQHostname() const { return fFQHostname; }
  /// Whether the host name has a station.
  bool IsStn() const { return fIsStn; }
  /// Whether the host name has a mirror.
  bool IsMirror() const { return fIsMirror; }

  /// The station that a host name has, or `default_id`.
  static unsigned int DetermineStnId(const std::string& hostname, unsigned int default_id);
  /// The mirror that a host name has, or `default_id`. A mirror that the station lacks doesn't count.
  static unsigned int DetermineMirrorId(const std::string& hostname, unsigned int default_id);

 protected:
  friend class Singleton<VdConfig>;
  VdConfig();

 private:
  std::string fFQHostname;
  unsigned int fDefaultStnId;
  unsigned int fDefaultMirrorId;
  unsigned int fStnId;
  unsigned int fMirrorId;
  Vd::_MirrorNumber fMirrorNumber;
  bool fIsStn;
  bool fIsMirror;
};

}  // namespace VdUtil

#endif
