#include "batch/BatchOutside.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

#include "numeric/PrintableText.h"

namespace gravlin {
namespace {

constexpr int barWidth = 40;

}  // namespace

BatchOutside::BatchOutside(ViewState& viewOfDocument, std::FILE* errorStream)
    : view(viewOfDocument), errors(errorStream), terminal(isatty(fileno(errorStream)) == 1) {
}

void BatchOutside::answerNext(std::string_view formName, std::vector<Setting> settings) {
  answers[std::string(formName)] = std::move(settings);
}

bool BatchOutside::showDialog(const Form& form) {
  if (const auto cancel = cancels.find(form.name); cancel != cancels.end()) {
    if (--cancel->second == 0) cancels.erase(cancel);
    return false;
  }
  if (const auto answer = answers.find(form.name); answer != answers.end()) {
    applySettings(form, answer->second);
    answers.erase(answer);
  }
  return true;
}

std::optional<std::string> BatchOutside::chooseFile(FileDialog) {
  return chosenFile;
}

void BatchOutside::say(const std::string& text) {
  std::fprintf(errors, "gravlin-batch: %s\n", printable(text).c_str());
}

void BatchOutside::showMessage(const std::string& text) {
  say(text);
  failed = true;
}

/// Nobody is there who could be asked.
bool BatchOutside::confirm(const Question& question) {
  showMessage(question.refusal);
  return false;
}

StandardFileAnswer BatchOutside::askAboutStandardFile(const StandardFileQuestion& question) {
  showMessage("Cannot open " + question.path + ": it is a " + question.format +
              " file. The step import reads it.");
  return StandardFileAnswer::Cancel;
}

void BatchOutside::showStatus(const std::string& sentence) {
  if (!sentence.empty()) say(sentence);
}

void BatchOutside::drawProgress() {
  if (!terminal || progress.last <= 0) return;
  const int position = std::clamp(progressPosition, 0, progress.last);
  const auto share = [&](int whole) {
    return static_cast<int>(static_cast<long long>(whole) * position / progress.last);
  };
  const auto done = static_cast<std::size_t>(share(barWidth));
  const std::string bar = std::string(done, '#') + std::string(barWidth - done, '.');
  std::fprintf(errors, "\r[%s] %3d%%", bar.c_str(), share(100));
  std::fflush(errors);
}

void BatchOutside::showProgress(ProgressRange range) {
  progress = range;
  progressPosition = 0;
  drawProgress();
}

void BatchOutside::stepProgress() {
  progressPosition += std::min(progress.step, progress.last - progressPosition);
  drawProgress();
}

void BatchOutside::hideProgress() {
  if (terminal) std::fprintf(errors, "\r%*s\r", barWidth + 7, "");
}

void BatchOutside::redraw() {
  // A view that paints takes the counts of the mesh that it paints.
  const TriangleMesh* mesh = document == nullptr ? nullptr : document->mesh();
  if (mesh == nullptr) {
    setShownCounts(0, 0);
  } else {
    setShownCounts(mesh->countUsedVertices(), mesh->countValidFaces());
  }
}

void BatchOutside::setShownCounts(int usedVertices, int validFaces) {
  view.shownVertexCount = usedVertices;
  view.shownFaceCount = validFaces;
}

}  // namespace gravlin
