#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

#include "mesh/io/NumberText.h"

namespace gravlin {
namespace {

std::string text(float value) {
  char buffer[maxNumberLength];
  return {buffer, writeFloat(buffer, value)};
}

std::string text(int value) {
  char buffer[maxNumberLength];
  return {buffer, writeInt(buffer, value)};
}

std::string printed(float value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%f", static_cast<double>(value));
  return buffer;
}

std::string printed(int value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%d", value);
  return buffer;
}

TEST(NumberText, WritesFloatsOfAnyBitsAsPrintf) {
  std::mt19937 random(1);
  for (int round = 0; round < 500000; ++round) {
    const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    ASSERT_EQ(text(value), printed(value));
  }
}

TEST(NumberText, WritesFloatsOfTheSizeOfCoordinatesAsPrintf) {
  std::mt19937 random(2);
  for (int round = 0; round < 500000; ++round) {
    const float value = std::ldexp(static_cast<float>(static_cast<std::int32_t>(random())),
                                   -static_cast<int>(random() % 60));
    ASSERT_EQ(text(value), printed(value));
  }
}

TEST(NumberText, RoundsTiesToEven) {
  // Odd multiples of 2^-7 have seven decimals, the last one a 5: 1/128 = 0.0078125.
  for (int k = -4097; k <= 4097; k += 2) {
    const float value = static_cast<float>(k) * 0x1p-7F;
    ASSERT_EQ(text(value), printed(value));
  }
}

TEST(NumberText, WritesTheEndsOfTheRangeAsPrintf) {
  using Limits = std::numeric_limits<float>;
  for (const float value : {0.0F,
                            -0.0F,
                            Limits::max(),
                            Limits::lowest(),
                            Limits::min(),
                            Limits::denorm_min(),
                            -Limits::denorm_min(),
                            Limits::infinity(),
                            -Limits::infinity(),
                            Limits::quiet_NaN(),
                            -Limits::quiet_NaN(),
                            0x1p63F,
                            0x1p64F,
                            0x1p65F,
                            1e19F,
                            9999999.5F,
                            0.9999995F,
                            5e-7F,
                            4.9999997e-7F,
                            5.0000003e-7F}) {
    EXPECT_EQ(text(value), printed(value));
  }
}

TEST(NumberText, WritesIntsAsPrintf) {
  using Limits = std::numeric_limits<int>;
  for (const int value : {0, 1, -1, 9, 10, 99, 100, Limits::max(), Limits::min()}) {
    EXPECT_EQ(text(value), printed(value));
  }
}

}  // namespace
}  // namespace gravlin
