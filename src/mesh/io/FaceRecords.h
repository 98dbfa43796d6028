#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace gravlin {

class Scanner;

/// A face of a file as far as it is read: the count of corners that it announces and three of them.
struct FaceRecord {
  std::size_t begin = 0;  ///< in the file's text, at the blanks before the count
  std::size_t end = 0;    ///< behind the third corner
  float corners = 3.0F;   ///< the count
  int facesLeft = 1;      ///< of the file, this one included
};

/// What a format has behind its faces: nothing that is read, or two counts and as many vertices.
enum class BehindFaces { Nothing, Marks };

/// Finds out whether records that announce more than three corners have more: some programs write a
/// 4 before the three corners of every triangle.
///
/// What stands on the line of a record decides where that is clear: nothing more, while the next
/// line has too much for the missing corners, or just these. Otherwise, with several records on a
/// line or one on several, they have more if all faces that are left can be read with all the
/// corners that they announce, and what the format has behind the faces, too. Triangles cannot:
/// that takes more numbers than there are.
class FaceRecords {
 public:
  /// The text must be followed by one NUL that does not belong to it, and outlive this.
  FaceRecords(std::string_view fileText, int meshVertexCount, BehindFaces whatIsBehindFaces)
      : text(fileText), vertexCount(meshVertexCount), behindFaces(whatIsBehindFaces) {}

  /// Whether a record that announces more than three corners has more. The whole file is looked
  /// through at most once, so that all calls together take no longer than reading it again.
  bool hasMoreCorners(const FaceRecord& record);

 private:
  bool standsOnItsLine(const FaceRecord& record) const;
  bool mayGoOnInNextLine(const FaceRecord& record) const;
  std::size_t wordsOnLine(std::size_t begin) const;
  bool readAsPolygons(const FaceRecord& first) const;
  bool readMarks(Scanner& scanner) const;

  std::string_view text;
  int vertexCount;
  BehindFaces behindFaces;
  std::optional<bool> polygons;  ///< what looking through the file gave
};

}  // namespace gravlin
