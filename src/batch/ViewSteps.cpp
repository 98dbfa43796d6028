#include "batch/ViewSteps.h"

#include <charconv>

#include "batch/Session.h"
#include "mesh/io/MeshFile.h"
#include "view/HistogramDrawing.h"

namespace gravlin {
namespace {

using Triple = std::array<float, 3>;

constexpr int longestSide = 16384;  // more than any driver draws into, and little enough to hold

/// The length of a side, without blanks or sign, or nothing.
std::optional<int> parseSide(std::string_view text) {
  int value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || value < 1 || value > longestSide) return std::nullopt;
  return value;
}

/// "X,Y,Z" as three numbers, each as a dialog would take it, or nothing.
std::optional<Triple> parseTriple(std::string_view text) {
  Triple triple;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::size_t comma = text.find(',');
    if ((comma == std::string_view::npos) != (axis == 2)) return std::nullopt;
    const Field field = {.name = "", .label = "", .value = &triple[axis]};
    if (!storeText(field, text.substr(0, comma)).empty()) return std::nullopt;
    if (axis < 2) text.remove_prefix(comma + 1);
  }
  return triple;
}

std::string textOfTriple(const Triple& triple) {
  std::string text;
  for (float value : triple) {
    if (!text.empty()) text += ',';
    text += textOf(Field{.name = "", .label = "", .value = &value});
  }
  return text;
}

/// A size that has been checked.
ViewSize sizeOf(const std::string& text) {
  return parseSize(text).value_or(ViewSize{});
}

void checkSize(const std::string& text) {
  if (parseSize(text)) return;
  throw UsageError("--size: Enter a size such as 800x600, of at most " +
                   std::to_string(longestSide) + " pixels each way.");
}

/// A picture is a PNG file, and no other program shall be told that it is something else.
void checkPictureFile(const StepCall& call) {
  std::string extension = extensionOf(call.operands[0]);
  for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  if (extension.empty() || extension == "png") return;
  throw UsageError(call.operands[0] + ": Pictures are written as .png files.");
}

void runRender(Session& session, const StepCall& call) {
  RenderParameters render;
  applySettings(render.form(), call.settings);
  session.keepMeshFile(call.operands[0]);
  try {
    if (!session.picture) session.picture = std::make_unique<Picture>();
    const DrawTarget target = {.size = sizeOf(render.size), .overlay = render.overlay};
    writePng(session.picture->draw(session.document.shown(), session.view, target),
             call.operands[0]);
  } catch (const std::runtime_error& error) {
    throw StepFailure(error.what());
  }
}

void runRenderHistogram(Session& session, const StepCall& call) {
  RenderHistogramParameters render;
  applySettings(render.form(), call.settings);
  session.keepMeshFile(call.operands[0]);
  try {
    writePng(drawHistogram(session.outside.histogram, sizeOf(render.size)), call.operands[0]);
  } catch (const std::runtime_error& error) {
    throw StepFailure(error.what());
  }
}

Form cameraForm(Session& session) {
  session.camera = {.fieldOfView = session.view.camera.fieldOfView,
                    .translate = textOfTriple(session.view.camera.translation)};
  return session.camera.form();
}

}  // namespace

Form CameraParameters::form() {
  return {
      "camera",
      "Camera",
      {{.name = "fieldOfView", .label = "vertical field of view in degrees", .value = &fieldOfView},
       {.name = "translate", .label = "shift of the mesh, X,Y,Z", .value = &translate}}};
}

Form RenderParameters::form() {
  return {"render",
          "Render",
          {{.name = "size", .label = "width and height in pixels, WxH", .value = &size},
           {.name = "overlay",
            .label = "the numbers of vertices and faces in the corner",
            .value = &overlay}}};
}

Form RenderHistogramParameters::form() {
  return {"render-histogram",
          "Render Histogram",
          {{.name = "size", .label = "width and height in pixels, WxH", .value = &size}}};
}

Step cameraStep() {
  return {.name = "camera",
          .menu = "Chain",
          .summary = "zoom and shift the view",
          .form = cameraForm,
          .check =
              [](Session& session, const StepCall&) {
                if (!parseTriple(session.camera.translate)) {
                  throw UsageError("--translate: Enter three numbers such as 0,1.5,-2.");
                }
              },
          .run =
              [](Session& session, const StepCall& call) {
                applySettings(cameraForm(session), call.settings);
                session.view.camera.fieldOfView = session.camera.fieldOfView;
                session.view.camera.translation = *parseTriple(session.camera.translate);
              }};
}

Step pickStep() {
  const auto pixel = [](const StepCall& call) {
    ViewPoint point;
    const Field x = {.name = "x", .label = "", .value = &point.x};
    const Field y = {.name = "y", .label = "", .value = &point.y};
    for (const auto& [field, text] : {std::pair(x, call.operands[0]), {y, call.operands[1]}}) {
      const std::string refusal = storeText(field, text);
      if (!refusal.empty()) throw UsageError(std::string(text).append(": ").append(refusal));
    }
    return point;
  };
  return {.name = "pick",
          .menu = "Chain",
          .summary = "double-click at this pixel of the next picture",
          .operands = {"X", "Y"},
          .check = [pixel](Session&, const StepCall& call) { pixel(call); },
          .run =
              [pixel](Session& session, const StepCall& call) {
                Camera& camera = session.view.camera;
                session.document.pickFace(camera.aimAt(pixel(call), session.outside.viewSize));
              }};
}

Step renderStep() {
  return {.name = "render",
          .menu = "Chain",
          .summary = "draw the view into a PNG file; needs no display",
          .operands = {"FILE"},
          .form =
              [](Session& session) {
                session.render = {};
                return session.render.form();
              },
          .check =
              [](Session& session, const StepCall& call) {
                checkSize(session.render.size);
                checkPictureFile(call);
              },
          .run = runRender};
}

Step renderHistogramStep() {
  return {.name = "render-histogram",
          .menu = "Chain",
          .summary = "draw what the histogram window shows into a PNG file",
          .operands = {"FILE"},
          .form =
              [](Session& session) {
                session.renderHistogram = {};
                return session.renderHistogram.form();
              },
          .check =
              [](Session& session, const StepCall& call) {
                checkSize(session.renderHistogram.size);
                checkPictureFile(call);
              },
          .run = runRenderHistogram};
}

std::optional<ViewSize> parseSize(std::string_view text) {
  const std::size_t cross = text.find('x');
  if (cross == std::string_view::npos) return std::nullopt;
  const std::optional<int> width = parseSide(text.substr(0, cross));
  const std::optional<int> height = parseSide(text.substr(cross + 1));
  if (!width || !height) return std::nullopt;
  return ViewSize{*width, *height};
}

ViewSize sizeOfNextRender(std::span<const StepCall> calls) {
  RenderParameters render;
  for (const StepCall& call : calls) {
    if (call.step->name != "render") continue;
    applySettings(render.form(), call.settings);
    break;
  }
  return sizeOf(render.size);
}

}  // namespace gravlin
