#include <VdUtil/VdConfig.h>

#include <cstdio>
#include <string>
#include <type_traits>

#include <unistd.h>

#include <gtest/gtest.h>

using VdUtil::Vd;
using VdUtil::VdConfig;

namespace {

std::string gHostname = "laptop";

}  // namespace

/// Stands in for the function of the system.
extern "C" int gethostname(char* name, size_t size) noexcept {
  std::snprintf(name, size, "%s", gHostname.c_str());
  return 0;
}

namespace {

/// What the singleton is on a computer of the present name.
struct Config : VdConfig {};

struct HostCase {
  const char* fHostname;
  unsigned int fStnId;     // 0 for none
  unsigned int fMirrorId;  // 0 for none
};

class Hostname : public testing::TestWithParam<HostCase> {};

}  // namespace

TEST_P(Hostname, GivesStationAndMirrorOrTheDefaults) {
  const HostCase& host = GetParam();
  EXPECT_EQ(VdConfig::DetermineStnId(host.fHostname, 0), host.fStnId);
  EXPECT_EQ(VdConfig::DetermineMirrorId(host.fHostname, 0), host.fMirrorId);
  EXPECT_EQ(VdConfig::DetermineStnId(host.fHostname, 42), host.fStnId ? host.fStnId : 42);
  EXPECT_EQ(VdConfig::DetermineMirrorId(host.fHostname, 43), host.fMirrorId ? host.fMirrorId : 43);
}

INSTANTIATE_TEST_SUITE_P(OfAStation, Hostname,
                         testing::Values(HostCase{"stn1", 1, 0}, HostCase{"stn5", 5, 0}, HostCase{"STN3", 3, 0},
                                         HostCase{"stn3.example.org", 3, 0}, HostCase{"daq-stn3", 3, 0},
                                         HostCase{"daqstn3.example.org", 3, 0}, HostCase{"stn3-spare", 3, 0}));
INSTANTIATE_TEST_SUITE_P(OfAMirror, Hostname,
                         testing::Values(HostCase{"stn3-mi2", 3, 2}, HostCase{"stn1-mi6", 1, 6},
                                         HostCase{"stn5-mi3", 5, 3}, HostCase{"Stn3-Mi2.example.org", 3, 2},
                                         HostCase{"daq-stn3-mi2", 3, 2}));
INSTANTIATE_TEST_SUITE_P(OfAMirrorThatTheStationLacks, Hostname,
                         testing::Values(HostCase{"stn3-mi7", 3, 0}, HostCase{"stn3-mi0", 3, 0},
                                         HostCase{"stn3-mi22", 3, 0}, HostCase{"stn5-mi4", 5, 0}));
INSTANTIATE_TEST_SUITE_P(OfNoStation, Hostname,
                         testing::Values(HostCase{"", 0, 0}, HostCase{"localhost", 0, 0}, HostCase{"stn", 0, 0},
                                         HostCase{"stn0", 0, 0}, HostCase{"stn6", 0, 0}, HostCase{"stn12", 0, 0},
                                         HostCase{"stn3x", 0, 0}, HostCase{"mi2", 0, 0},
                                         HostCase{"laptop.stn3.example.org", 0, 0}));

TEST(VdConfig, OfAMirrorsComputerHasItsStationAndMirror) {
  gHostname = "daq-stn3-mi2.example.org";
  const Config config;
  EXPECT_EQ(config.GetFQHostname(), "daq-stn3-mi2.example.org");
  EXPECT_EQ(config.GetStnId(), 3u);
  EXPECT_EQ(config.GetMirrorId(), 2u);
  EXPECT_TRUE(config.IsStn());
  EXPECT_TRUE(config.IsMirror());
}

TEST(VdConfig, OfAStationsComputerHasMirrorOne) {
  gHostname = "stn4";
  const Config config;
  EXPECT_EQ(config.GetStnId(), 4u);
  EXPECT_EQ(config.GetMirrorId(), 1u);
  EXPECT_TRUE(config.IsStn());
  EXPECT_FALSE(config.IsMirror());
}

TEST(VdConfig, OfAnyOtherComputerHasStationAndMirrorOne) {
  gHostname = "laptop";
  const Config config;
  EXPECT_EQ(config.GetStnId(), 1u);
  EXPECT_EQ(config.GetMirrorId(), 1u);
  EXPECT_FALSE(config.IsStn());
  EXPECT_FALSE(config.IsMirror());
}

TEST(VdConfig, DefaultsToStationAndMirrorOne) {
  gHostname = "stn3-mi2";
  const Config config;
  EXPECT_EQ(config.GetDefaultStnId(), 1u);
  EXPECT_EQ(config.GetDefaultMirrorId(), 1u);
}

TEST(VdConfig, MirrorNumberIsMadeOfStationAndMirror) {
  gHostname = "stn3-mi2";
  const _MirrorNumber number = Config().GetMirrorNumber();
  EXPECT_EQ(Vd::GetStnNo(&number), 3u);
  EXPECT_EQ(Vd::GetVdMirrorNo(&number), 14u);
}

TEST(VdConfig, IsASingleton) {
  EXPECT_EQ(&VdConfig::GetInstance(), &VdUtil::Singleton<VdConfig>::GetInstance());
  EXPECT_FALSE(std::is_default_constructible<VdConfig>::value);
}
