#include "batch/Dump.h"

#include <algorithm>

#include "batch/JsonWriter.h"
#include "batch/Session.h"
#include "doc/ModeTable.h"
#include "mesh/SafeFile.h"

namespace gravlin {
namespace {

// --- One function per kind of value ---

void write(JsonWriter& json, const FacePoint& point) {
  json.beginArray();
  json.value(point.face);
  json.value(point.a);
  json.value(point.b);
  json.endArray();
}

void write(JsonWriter& json, const std::vector<FacePoint>& points) {
  json.beginArray();
  for (const FacePoint& point : points) write(json, point);
  json.endArray();
}

void write(JsonWriter& json, const IndexList& list) {
  json.array(list);
}

template <class Number>
requires std::is_arithmetic_v<Number>
void write(JsonWriter& json, Number number) {
  json.value(number);
}

/// What has not been built is null.
template <class Item>
void writeBuilt(JsonWriter& json, const std::vector<Item>& items) {
  if (items.empty()) return json.null();
  json.beginArray();
  for (const Item& item : items) write(json, item);
  json.endArray();
}

void writeBuilt(JsonWriter& json, const CompressedRows& rows) {
  if (!rows.built()) return json.null();
  json.beginArray();
  for (int i = 0; i < rows.rowCount(); ++i) json.array(rows[i]);
  json.endArray();
}

void writeLengths(JsonWriter& json, const CompressedRows& rows) {
  if (!rows.built()) return json.null();
  json.beginArray();
  for (int i = 0; i < rows.rowCount(); ++i) json.value(rows.length(i));
  json.endArray();
}

// --- The fields ---

/// A field of the mesh; null without a mesh.
struct MeshField {
  std::string_view name;
  void (*write)(JsonWriter& json, const TriangleMesh& mesh);
};

template <auto member>
void built(JsonWriter& json, const TriangleMesh& mesh) {
  writeBuilt(json, mesh.*member);
}
template <auto member>
void strokes(JsonWriter& json, const TriangleMesh& mesh) {
  writeBuilt(json, mesh.strokes.*member);
}
template <auto member>
void numbers(JsonWriter& json, const TriangleMesh& mesh) {
  json.array(mesh.*member);
}
template <auto member>
void number(JsonWriter& json, const TriangleMesh& mesh) {
  json.value(mesh.*member);
}
template <auto member>
void lengths(JsonWriter& json, const TriangleMesh& mesh) {
  writeLengths(json, mesh.*member);
}
void pickedFace(JsonWriter& json, const TriangleMesh& mesh) {
  if (mesh.pickedFace) {
    json.value(*mesh.pickedFace);
  } else {
    json.null();
  }
}

using Mesh = TriangleMesh;

constexpr MeshField meshFields[] = {
    {"vertexCount", number<&Mesh::vertexCount>},
    {"faceCount", number<&Mesh::faceCount>},
    {"vertices", numbers<&Mesh::vertices>},
    {"faces", numbers<&Mesh::faces>},
    {"vertexNeighbours", built<&Mesh::vertexNeighbours>},
    {"vertexFaces", built<&Mesh::vertexFaces>},
    {"neighbourCount", lengths<&Mesh::vertexNeighbours>},
    {"vertexFaceCount", lengths<&Mesh::vertexFaces>},
    {"vertexKind", built<&Mesh::vertexKind>},
    {"faceAdjacency", built<&Mesh::faceAdjacency>},
    {"faceNormals", built<&Mesh::faceNormals>},
    {"vertexNormals", built<&Mesh::vertexNormals>},
    {"boxMin", numbers<&Mesh::boxMin>},
    {"boxMax", numbers<&Mesh::boxMax>},
    {"extentTolerance", number<&Mesh::extentTolerance>},
    {"maxCurvature", built<&Mesh::maxCurvature>},
    {"minCurvature", built<&Mesh::minCurvature>},
    {"maxDirection", built<&Mesh::maxDirection>},
    {"minDirection", built<&Mesh::minDirection>},
    {"maxDerivativeGradient", built<&Mesh::maxDerivativeGradient>},
    {"minDerivativeGradient", built<&Mesh::minDerivativeGradient>},
    {"ridgeMarks", built<&Mesh::ridgeMarks>},
    {"valleyMarks", built<&Mesh::valleyMarks>},
    {"ridgeLinks", built<&Mesh::ridgeLinks>},
    {"valleyLinks", built<&Mesh::valleyLinks>},
    {"edgeCurvatures", built<&Mesh::edgeCurvatures>},
    {"coherentFaces", built<&Mesh::coherentFaces>},
    {"strokeSeeds", strokes<&Strokes::strokeSeeds>},
    {"maxStrokes", strokes<&Strokes::maxStrokes>},
    {"minStrokes", strokes<&Strokes::minStrokes>},
    {"pickedFace", pickedFace},
};

/// A field of the document or its view.
struct SubjectField {
  std::string_view name;
  void (*write)(JsonWriter& json, const DumpSubject& subject);
  /// Whether it is there also when no field is named; null: always.
  bool (*unasked)(const DumpSubject& subject) = nullptr;
};

void writeView(JsonWriter& json, const DumpSubject& subject) {
  const ViewState& view = subject.view;
  json.beginObject();
  json.key("angleX");
  json.value(view.camera.angleX);
  json.key("angleY");
  json.value(view.camera.angleY);
  json.key("angleZ");
  json.value(view.camera.angleZ);
  json.key("fieldOfView");
  json.value(view.camera.fieldOfView);
  json.key("translation");
  json.array(view.camera.translation);
  json.key("lightingMode");
  json.value(static_cast<int>(view.lightingMode));
  json.key("lineWidth");
  json.value(view.lineWidth);
  json.key("pointSize");
  json.value(view.pointSize);
  json.key("shownVertexCount");
  json.value(view.shownVertexCount);
  json.key("shownFaceCount");
  json.value(view.shownFaceCount);
  json.endObject();
}

void writeHistogram(JsonWriter& json, const DumpSubject& subject) {
  Histogram& histogram = subject.histogram;
  if (histogram.values.empty()) return json.null();
  histogram.setWindowWidth(histogramSize.width);
  json.beginObject();
  json.key("values");
  json.value(static_cast<int>(histogram.values.size()));
  json.key("mean");
  json.value(histogram.spread.mean);
  json.key("deviation");
  json.value(histogram.spread.deviation);
  json.key("clipMin");
  json.value(histogram.clipMin);
  json.key("clipMax");
  json.value(histogram.clipMax);
  json.key("binCount");
  json.value(histogram.binCount);
  json.key("maxBin");
  json.value(histogram.maxBin);
  json.key("bins");
  json.array(histogram.bins);
  json.endObject();
}

std::string_view nameOf(Site site) {
  switch (site) {
    case Site::None:
      break;
    case Site::Vertices:
      return "vertices";
    case Site::Edges:
      return "edges";
    case Site::Faces:
      return "faces";
  }
  return {};
}

void writeShownField(JsonWriter& json, const DumpSubject& subject) {
  const Shown shown = subject.document.shown();
  const Mode* mode = findMode(shown.displayMode);
  if (mode == nullptr || mode->site == Site::None || shown.mesh == nullptr) return json.null();
  json.beginObject();
  json.key("name");
  json.value(mode->field);
  json.key("site");
  json.value(nameOf(mode->site));
  json.key("values");
  json.array(shown.fieldValues);
  json.endObject();
}

bool showsOwnMode(const DumpSubject& subject) {
  return subject.document.displayMode >= firstOwnMode;
}

/// A length of 1 in memory, when the field was found, in the file's units.
template <auto field, auto origin>
void writeUnit(JsonWriter& json, const DumpSubject& subject) {
  const TriangleMesh* mesh = subject.document.mesh();
  if (mesh == nullptr || (mesh->*field).empty()) return json.null();
  json.value((mesh->*origin).unit);
}

template <auto field, auto origin>
bool hasItsOwnUnit(const DumpSubject& subject) {
  const TriangleMesh* mesh = subject.document.mesh();
  if (mesh == nullptr || (mesh->*field).empty()) return false;
  return (mesh->*origin).unit != mesh->extentTolerance;
}

constexpr SubjectField subjectFields[] = {
    {"displayMode",
     [](JsonWriter& json, const DumpSubject& s) { json.value(s.document.displayMode); }},
    {"hasUndo",
     [](JsonWriter& json, const DumpSubject& s) { json.value(s.document.undoMesh != nullptr); }},
    {"histogram", writeHistogram},
    {"view", writeView},
    {"shownField", writeShownField, showsOwnMode},
    {"curvatureUnit", writeUnit<&Mesh::maxCurvature, &Mesh::curvatureOrigin>,
     hasItsOwnUnit<&Mesh::maxCurvature, &Mesh::curvatureOrigin>},
    {"edgeCurvatureUnit", writeUnit<&Mesh::edgeCurvatures, &Mesh::edgeCurvatureOrigin>,
     hasItsOwnUnit<&Mesh::edgeCurvatures, &Mesh::edgeCurvatureOrigin>},
};

std::vector<std::string> namesIn(std::string_view list) {
  std::vector<std::string> names;
  while (!list.empty()) {
    const std::size_t comma = list.find(',');
    names.emplace_back(list.substr(0, comma));
    list.remove_prefix(comma == std::string_view::npos ? list.size() : comma + 1);
  }
  return names;
}

std::string listOfFields() {
  std::string list;
  for (const std::string_view name : dumpFieldNames()) {
    list.append(list.empty() ? "" : ", ").append(name);
  }
  return list;
}

void checkNames(Session& session, const StepCall&) {
  const std::vector<std::string_view> known = dumpFieldNames();
  for (const std::string& name : namesIn(session.dump.fields)) {
    if (std::find(known.begin(), known.end(), name) == known.end()) {
      throw UsageError("--fields: there is no field '" + name + "'. The fields are " +
                       listOfFields() + ".");
    }
  }
}

void runDump(Session& session, const StepCall& call) {
  session.dump = {};
  applySettings(session.dump.form(), call.settings);
  const std::vector<std::string> fields = namesIn(session.dump.fields);
  const std::string& path = call.operands[0];
  if (path == "-") {
    dump({session.document, session.view, session.outside.histogram}, fields,
         session.streams.output);
    if (!allWritten(session.streams.output)) {
      throw StepFailure("Standard output could not be written.");
    }
    return;
  }
  session.keepMeshFile(path);
  SafeFile file(path);
  if (file.stream() != nullptr)
    dump({session.document, session.view, session.outside.histogram}, fields, file.stream());
  if (!file.commit()) throw StepFailure(path + " could not be written: " + file.error() + ".");
}

}  // namespace

Form DumpParameters::form() {
  return {"dump",
          "Dump",
          {{.name = "fields",
            .label = "names with commas between them; all when none is given",
            .value = &fields}}};
}

Step dumpStep() {
  return {.name = "dump",
          .menu = "Chain",
          .summary = "write what is known of the mesh as JSON; - is standard output",
          .remark = "The fields are " + listOfFields() + ".",
          .operands = {"FILE"},
          .form =
              [](Session& session) {
                session.dump = {};
                return session.dump.form();
              },
          .check = checkNames,
          .run = runDump};
}

std::vector<std::string_view> dumpFieldNames() {
  std::vector<std::string_view> names;
  for (const MeshField& field : meshFields) names.push_back(field.name);
  for (const SubjectField& field : subjectFields) names.push_back(field.name);
  return names;
}

void dump(const DumpSubject& subject, const std::vector<std::string>& fields, std::FILE* stream) {
  const auto wanted = [&](std::string_view name) {
    return fields.empty() || std::find(fields.begin(), fields.end(), name) != fields.end();
  };
  JsonWriter json(stream);
  const TriangleMesh* mesh = subject.document.mesh();
  json.beginObject();
  for (const MeshField& field : meshFields) {
    if (!wanted(field.name)) continue;
    json.key(field.name);
    if (mesh == nullptr) {
      json.null();
    } else {
      field.write(json, *mesh);
    }
  }
  for (const SubjectField& field : subjectFields) {
    if (!wanted(field.name)) continue;
    if (fields.empty() && field.unasked != nullptr && !field.unasked(subject)) continue;
    json.key(field.name);
    field.write(json, subject);
  }
  json.endObject();
  json.endText();
}

}  // namespace gravlin
