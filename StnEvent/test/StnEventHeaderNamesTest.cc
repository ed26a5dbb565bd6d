#include <StnEvent/StnEventHeader.h>

#include <gtest/gtest.h>

using H = TStnEventHeader;

// ---- Classes

struct ClassCase {
  Int_t fClass;
  const char* fText;
};

class StnEventHeaderClassName : public ::testing::TestWithParam<ClassCase> {};

TEST_P(StnEventHeaderClassName, IsAsWritten) {
  EXPECT_STREQ(H::GetVerboseEventClass(H::EEventClass(GetParam().fClass)), GetParam().fText);
}

INSTANTIATE_TEST_SUITE_P(All, StnEventHeaderClassName,
                         ::testing::Values(ClassCase{0, "'Unclassified'"}, ClassCase{1, "'NoPhys'"},
                                           ClassCase{2, "'Large Event'"}, ClassCase{3, "'Unhandled Signature'"},
                                           ClassCase{4, "'Empty'"}, ClassCase{5, "'Muon'"}, ClassCase{6, "'Long Muon'"},
                                           ClassCase{7, "'Close Shower'"}, ClassCase{8, "'Noise'"},
                                           ClassCase{9, "'Muon + Noise'"}, ClassCase{10, "'Veto'"},
                                           ClassCase{11, "'Shower Candidate'"}, ClassCase{12, "'Horizontal Shower'"},
                                           ClassCase{13, "'Shower'"}, ClassCase{90, "'UBA T3 noise'"},
                                           ClassCase{91, "'User defined 2'"}, ClassCase{92, "'User defined 3'"},
                                           ClassCase{93, "'User defined 4'"}, ClassCase{98, "'Rejected'"},
                                           ClassCase{99, "'Invalid event class'"}));

INSTANTIATE_TEST_SUITE_P(NoEnumerator, StnEventHeaderClassName,
                         ::testing::Values(ClassCase{14, "'Invalid event class'"},
                                           ClassCase{-1, "'Invalid event class'"},
                                           ClassCase{97, "'Invalid event class'"}));

TEST(StnEventHeaderClassName, OfTheFirstUserClassIsThatOfUBANoise) {
  EXPECT_STREQ(H::GetVerboseEventClass(H::kUserDefined1), "'UBA T3 noise'");
  EXPECT_STREQ(H::GetVerboseEventClass(H::kUBANoise), "'UBA T3 noise'");
}

TEST(StnEventHeaderClassName, StaysWhereItIs) {
  EXPECT_EQ(H::GetVerboseEventClass(H::kNoise), H::GetVerboseEventClass(H::kNoise));
}

// ---- Types

struct TypeCase {
  Int_t fType;
  const char* fText;
  TMirrorEventHeader::EMrEventType fMirrorType;
};

class StnEventHeaderType : public ::testing::TestWithParam<TypeCase> {};

TEST_P(StnEventHeaderType, HasItsName) {
  EXPECT_STREQ(H::GetVerboseEventType(H::EEventType(GetParam().fType)), GetParam().fText);
}

TEST_P(StnEventHeaderType, HasItsMirrorType) {
  EXPECT_EQ(H::GetMirrorEventType(H::EEventType(GetParam().fType)), GetParam().fMirrorType);
}

INSTANTIATE_TEST_SUITE_P(
    All, StnEventHeaderType,
    ::testing::Values(TypeCase{0, "'Unknown'", TMirrorEventHeader::kUnknownEvent},
                      TypeCase{1, "'Physics - Int or L/R trigger'", TMirrorEventHeader::kPhysicsEvent},
                      TypeCase{2, "'Calibration - Ext trigger'", TMirrorEventHeader::kCalibrationEvent},
                      TypeCase{3, "'Simulated - Sw trigger'", TMirrorEventHeader::kSimulatedEvent},
                      TypeCase{4, "'Laser Offset'", TMirrorEventHeader::kPhysicsEvent},
                      TypeCase{5, "'Flasher Offset'", TMirrorEventHeader::kPhysicsEvent},
                      TypeCase{6, "'Calibration Offset'", TMirrorEventHeader::kPhysicsEvent},
                      TypeCase{7, "'Lidar Offset'", TMirrorEventHeader::kPhysicsEvent},
                      TypeCase{8, "'APF Offset'", TMirrorEventHeader::kPhysicsEvent},
                      TypeCase{9, "'Invalid'", TMirrorEventHeader::kUnknownEvent}));

INSTANTIATE_TEST_SUITE_P(NoEnumerator, StnEventHeaderType,
                         ::testing::Values(TypeCase{10, "Invalid Type", TMirrorEventHeader::kUnknownEvent},
                                           TypeCase{100, "Invalid Type", TMirrorEventHeader::kUnknownEvent},
                                           TypeCase{-1, "Invalid Type", TMirrorEventHeader::kUnknownEvent}));

TEST(StnEventHeaderType, HasANameThatStaysWhereItIs) {
  EXPECT_EQ(H::GetVerboseEventType(H::kPhysics), H::GetVerboseEventType(H::kPhysics));
  EXPECT_EQ(H::GetVerboseEventType(H::EEventType(10)), H::GetVerboseEventType(H::EEventType(10)));
}

// ---- Quality of the time correction

TEST(StnEventHeaderQualityName, IsAsWritten) {
  EXPECT_STREQ(H::GetVerboseTimeCorrectionQuality(H::kCorrectionNotSet), "'NotSet'");
  EXPECT_STREQ(H::GetVerboseTimeCorrectionQuality(H::kUnknownQuality), "'Unknown'");
  EXPECT_STREQ(H::GetVerboseTimeCorrectionQuality(H::kAveragedPeriod), "'Averaged'");
  EXPECT_STREQ(H::GetVerboseTimeCorrectionQuality(H::kFullQuality), "'Full'");
}

TEST(StnEventHeaderQualityName, IsUnknownForAnyOtherValue) {
  EXPECT_STREQ(H::GetVerboseTimeCorrectionQuality(H::ETimeCorrectionQuality(3)), "'Unknown'");
  EXPECT_STREQ(H::GetVerboseTimeCorrectionQuality(H::ETimeCorrectionQuality(-2)), "'Unknown'");
}
