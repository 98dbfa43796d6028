#include "support/ScriptedOutside.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

namespace gravlin::test {
namespace {

template <class... Parts>
std::string sentence(const Parts&... parts) {
  std::ostringstream text;
  (text << ... << parts);
  return text.str();
}

}  // namespace

DialogAnswer ok() {
  return [](const Form&) { return true; };
}

DialogAnswer cancel() {
  return [](const Form&) { return false; };
}

DialogAnswer okWith(std::vector<std::pair<std::string, std::string>> texts) {
  return [texts = std::move(texts)](const Form& form) {
    for (const auto& [name, text] : texts) {
      const auto field =
          std::find_if(form.fields.begin(), form.fields.end(),
                       [&wanted = name](const Field& f) { return f.name == wanted; });
      if (field == form.fields.end()) {
        ADD_FAILURE() << form.name << " has no field " << name;
        return false;
      }
      EXPECT_EQ(storeText(*field, text), "") << form.name << ", " << name;
    }
    return true;
  };
}

int ScriptedOutside::count(const std::string& call) const {
  return static_cast<int>(std::count(calls.begin(), calls.end(), call));
}

void ScriptedOutside::forget() {
  calls.clear();
  messages.clear();
  statuses.clear();
  histogramValues.clear();
}

bool ScriptedOutside::showDialog(const Form& form) {
  calls.push_back(sentence("dialog ", form.name));
  if (dialogAnswers.empty()) {
    ADD_FAILURE() << "the script has no answer for " << form.name;
    return false;
  }
  const DialogAnswer answer = std::move(dialogAnswers.front());
  dialogAnswers.pop_front();
  return answer(form);
}

std::optional<std::string> ScriptedOutside::chooseFile(FileDialog kind) {
  const bool opens = kind == FileDialog::Open || kind == FileDialog::Import;
  calls.emplace_back(opens ? "open file" : "save file");
  if (fileAnswers.empty()) {
    ADD_FAILURE() << "the script has no answer for the file dialog";
    return std::nullopt;
  }
  std::optional<std::string> answer = std::move(fileAnswers.front());
  fileAnswers.pop_front();
  return answer;
}

void ScriptedOutside::showMessage(const std::string& text) {
  calls.push_back("message " + text);
  messages.push_back(text);
}

bool ScriptedOutside::confirm(const Question& question) {
  calls.push_back("question " + question.text);
  if (confirmAnswers.empty()) {
    ADD_FAILURE() << "the script has no answer for: " << question.text;
    return false;
  }
  const bool answer = confirmAnswers.front();
  confirmAnswers.pop_front();
  return answer;
}

StandardFileAnswer ScriptedOutside::askAboutStandardFile(const StandardFileQuestion& question) {
  calls.push_back("standard file " + question.format);
  if (standardFileAnswers.empty()) {
    ADD_FAILURE() << "the script has no answer on how to read " << question.path;
    return StandardFileAnswer::Cancel;
  }
  const StandardFileAnswer answer = standardFileAnswers.front();
  standardFileAnswers.pop_front();
  return answer;
}

void ScriptedOutside::showStatus(const std::string& text) {
  calls.push_back("status " + text);
  statuses.push_back(text);
}

void ScriptedOutside::showProgress(ProgressRange range) {
  calls.push_back(sentence("show progress 0..", range.last, " by ", range.step));
}

void ScriptedOutside::redraw() {
  calls.emplace_back("redraw");
  if (whenRedrawn) whenRedrawn();
}

void ScriptedOutside::showHistogram(std::string_view field) {
  calls.push_back(sentence("histogram ", field));
}

void ScriptedOutside::setHistogramValues(const std::vector<double>& values) {
  calls.push_back(sentence("histogram values ", values.size()));
  histogramValues = values;
}

void ScriptedOutside::setLightingMode(LightingMode mode) {
  calls.push_back(sentence("lighting ", static_cast<int>(mode)));
}

void ScriptedOutside::setLineWidthAndPointSize(float width, float size) {
  calls.push_back(sentence("line width ", width, " point size ", size));
}

void ScriptedOutside::setViewAngles(const ViewAngles& newAngles) {
  calls.push_back(sentence("angles ", newAngles.rx, " ", newAngles.ry, " ", newAngles.rz));
  angles = newAngles;
}

std::string ScriptedOutside::linesAsSvg(const TriangleMesh&, const LinesToDraw& drawing) const {
  const LineStyle& style = drawing.style;
  return std::string(style.penDrawing ? "pen drawing" : "picture") + " of " +
         std::to_string(drawing.lines.size()) + " lines" + (style.grayScale ? " in grey" : "");
}

void ScriptedOutside::setShownCounts(int usedVertices, int validFaces) {
  calls.push_back(sentence("counts ", usedVertices, " ", validFaces));
}

}  // namespace gravlin::test
