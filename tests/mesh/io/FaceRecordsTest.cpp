#include <gtest/gtest.h>

#include "mesh/io/FaceRecords.h"
#include "mesh/io/Scanner.h"

namespace gravlin {
namespace {

/// Which of the records of a text, read one after the other as triangles, have more corners.
std::string largerOnes(const std::string& text, int vertexCount,
                       BehindFaces behind = BehindFaces::Nothing, int faceCount = 3) {
  FaceRecords records(text, vertexCount, behind);
  Scanner scanner(text);
  std::string larger;
  for (int f = 0; f < faceCount; ++f) {
    const std::size_t begin = scanner.position();
    const std::optional<float> corners = scanner.scanFloat();
    for (int k = 0; k < 3; ++k) scanner.scanInt();
    if (!corners || *corners <= 3.0F) continue;
    const FaceRecord record = {begin, scanner.position(), *corners, faceCount - f};
    if (records.hasMoreCorners(record)) larger += std::to_string(f);
  }
  return larger;
}

TEST(FaceRecords, ACountBeforeThreeCornersAloneIsOrdinary) {
  EXPECT_EQ(largerOnes("\n4 0 1 2\n4 3 4 5\n7 6 7 8\n", 9), "");
  EXPECT_EQ(largerOnes("\r\n4 0 1 2 \t\r\n4 3 4 5\r\n7 6 7 8", 9), "") << "no line end at the end";
  EXPECT_EQ(largerOnes(" 4 0 1 2 4 3 4 5 4 6 7 8", 9), "") << "one line for all";
  EXPECT_EQ(largerOnes("\n4\n0\n1\n2\n4\n3\n4\n5\n4\n6\n7\n8\n", 9), "") << "one number a line";
  EXPECT_EQ(largerOnes("\n4 0 1 2 4 3 4 5\n4 6 7 8\n", 9), "") << "two on one line";
  EXPECT_EQ(largerOnes("\n4 0 1 2\n4 3 4 5\n4 6 7 8\n2 1\n0\n1\n2\n", 9), "") << "marks behind";
  EXPECT_EQ(largerOnes("\n1e30 0 1 2\ninf 3 4 5\n3.5 6 7 8\n", 9), "");
}

TEST(FaceRecords, ACountWithItsCornersIsAPolygon) {
  EXPECT_EQ(largerOnes("\n4 0 1 2 3\n4 3 4 5 6\n3 6 7 8\n", 9).substr(0, 1), "0");
  EXPECT_EQ(largerOnes(" 4 0 1 2 3 4 3 4 5 6 3 6 7 8", 9).substr(0, 1), "0") << "one line for all";
  EXPECT_EQ(largerOnes("\n4\n0\n1\n2\n3\n3\n4\n5\n6\n3\n6\n7\n8\n", 9).substr(0, 1), "0")
      << "one number a line";
  EXPECT_EQ(largerOnes("\n7 0 1 2 3 4 5 6\n", 9).substr(0, 1), "0")
      << "the rest of the file is missing, and the line alone tells";
  EXPECT_EQ(largerOnes("\n3 0 1 2\n5 3 4 5 6 7\n3 6 7 8\n", 9), "1");
}

TEST(FaceRecords, CornersOnTheNextLineBelongToThePolygon) {
  const auto first = [](const std::string& text, int faceCount) {
    return largerOnes(text, 9, BehindFaces::Nothing, faceCount).substr(0, 1);
  };
  EXPECT_EQ(first("\n4 0 1 2\n3\n4 3 4 5\n6\n3 6 7 8\n", 3), "0");
  EXPECT_EQ(first("\n4 0 1 2\n3\n3 3 4 5\n3 6 7 8\n", 3), "0");
  EXPECT_EQ(first("\n4 0 1 2 \r\n \t\r\n3\r\n", 1), "0") << "behind a line of blanks";
  EXPECT_EQ(first("\n6 0 1 2\n3 4 5\n", 1), "0");
  EXPECT_EQ(first("\n7 0 1 2\n3 4 5 6\n3 6 7 8\n", 2), "0") << "as many as a triangle has";
  EXPECT_EQ(first("\n8 0 1 2\n3 4 5\n6 7\n", 1), "0") << "on two further lines";
  EXPECT_EQ(first("\n9 0 1 2\n3 4 5 6\n7 8\n", 1), "0");
}

TEST(FaceRecords, WhatFollowsTrianglesIsNoneOfTheirCorners) {
  EXPECT_EQ(largerOnes("\n7 0 1 2\n7 3 4 5\n7 6 7 8\n", 9), "") << "four more words";
  EXPECT_EQ(largerOnes("\n4 0 1 2\n\n4 3 4 5\n\n4 6 7 8\n\n", 9), "");
  EXPECT_EQ(largerOnes("\n4 0 1 2\n4 3 4 5\n4 6 7 8\n9\n", 9), "") << "no vertex";
  for (const std::string marks : {"0\n0\n", "1\n1\n2\n3\n", "2\n0\n3\n3\n", "2 1\n0\n1\n2\n"}) {
    EXPECT_EQ(largerOnes("\n4 0 1 2\n4 3 4 5\n4 6 7 8\n" + marks, 9, BehindFaces::Marks), "")
        << marks;
    EXPECT_EQ(largerOnes("\n4 0 1 2\n3\n4 3 4 5\n6\n3 6 7 8\n" + marks, 9, BehindFaces::Marks)
                  .substr(0, 1),
              "0")
        << marks;
  }
}

}  // namespace
}  // namespace gravlin
