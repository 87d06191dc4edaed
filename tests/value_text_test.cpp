#include "zxml/value_text.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(Sizes, OfEveryUnit) {
  const struct {
    const char* text;
    double kilobytes, gigabytes;
    std::int64_t bytes;
  } cases[] = {
      {"1 KB", 1, 1.0 / 1048576, 1024},
      {"512 MB", 524288, 0.5, 536870912},
      {"4,5 GB", 4718592, 4.5, 4831838208},
      {"4.5 GB", 4718592, 4.5, 4831838208},
      {"2 TB", 2147483648.0, 2000, 2147483648000},  // deliberate: 1000 gigabytes, 1024 * 1048576 kilobytes
      {"17.59 TB", 17.59 * 1073741824.0, 17590, 18887118684160},
      {"3xMB", 3072, 3.0 / 1024, 3145728},
      {"Zero KB", 0, 0, 0},
      {"3 gb", 0, 0, 0},
      {"3 Bytes", 0, 0, 0},
      {"", 0, 0, 0},
      {"GB", 0, 0, 0},
      {" GB", 0, 0, 0},
      {"nan GB", 0, 0, 0},
      {"-1 GB", -1048576, -1, -1073741824},
      {"1e300 GB", 1e300 * 1048576, 1e300, INT64_MAX},
      {"-inf TB", -HUGE_VAL, -HUGE_VAL, INT64_MIN},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_DOUBLE_EQ(ParseSizeKB(c.text), c.kilobytes);
    EXPECT_DOUBLE_EQ(ParseSizeGB(c.text), c.gigabytes);
    EXPECT_DOUBLE_EQ(ParseSizeMB(c.text), c.gigabytes * 1024);
    EXPECT_EQ(ParseSizeBytes(c.text), c.bytes);
  }
}

TEST(Sizes, DecimalGigabytesRoundAboveFourTenths) {
  const struct {
    const char* text;
    bool roundUp;
    double result;
  } cases[] = {
      {"500,1 GB", true, 537}, {"1,3 GB", true, 1}, {"1,3 GB", false, 1.3958643712},
      {"Zero KB", true, 0},    {"-1 GB", true, -1}, {"-2 GB", true, -2.147483648},
  };
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(SizeToDecimalGB(c.text, c.roundUp), c.result) << c.text;
  EXPECT_EQ(RoundAboveFourTenths(1.40), 1);
  EXPECT_EQ(RoundAboveFourTenths(1.41), 2);
}

TEST(Sizes, NumbersOutsideTheRangeGoToItsLimit) {
  EXPECT_EQ(TruncateToInt64(9.3e18), INT64_MAX);
  EXPECT_EQ(TruncateToInt64(-9.3e18), INT64_MIN);
  EXPECT_EQ(TruncateToUint32(4294967296.0), UINT32_MAX);
  EXPECT_EQ(TruncateToUint32(-0.5), 0u);
}

TEST(Diagonals, OfRealDisplays) {
  const int cases[][3] = {{52, 32, 24}, {34, 27, 17}, {48, 30, 22}, {41, 26, 19},
                          {60, 34, 27}, {31, 17, 14}, {0, 0, 0}};
  for (const auto& c : cases) EXPECT_EQ(DiagonalInches(c[0], c[1]), c[2]) << c[0];
}

TEST(Texts, TrimCompareAndCut) {
  std::string text = "xxaxbxx";
  Trim(text, "x", kTrimEnd);
  EXPECT_EQ(text, "xxaxb");
  Trim(text, "x", kTrimStart);
  EXPECT_EQ(text, "axb");
  Trim(text, "abx", kTrimBoth);
  EXPECT_EQ(text, "");
  EXPECT_EQ(FirstWord("  "), "");
  EXPECT_EQ(FirstWord("1333 MHz"), "1333");
  EXPECT_EQ(FirstWord("\n2.66\r"), "2.66");
  EXPECT_LT(CompareNoCase("Abc", "abD"), 0);
  EXPECT_EQ(CompareNoCase("ABC", "abc"), 0);
  EXPECT_GT(CompareNoCase("ab\xC3", "abc"), 0);
  EXPECT_LT(CompareNoCase("ab", "abc"), 0);
  EXPECT_LT(CompareNoCase("_", "a"), 0);
  EXPECT_EQ(DashedHardwareAddress("00:1e:c2"), "00-1E-C2");
}
