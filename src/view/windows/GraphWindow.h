#pragma once

#include <QWidget>
#include <span>

#include "doc/Outside.h"
#include "view/Histogram.h"

namespace gravlin {

/// The histogram window of a document: how the values of the field that is shown are distributed,
/// in the colours that the mesh shows them in. Keeps its own copy of the values until it gets new
/// ones. A mouse that rests on a bar is told its value and its count, also while another window is
/// the active one. It stays above the window of its parent.
class GraphWindow : public QWidget {
  Q_OBJECT

 public:
  explicit GraphWindow(QWidget* parent = nullptr);

  /// The title tells how old the values are.
  void setAge(HistogramAge age);
  /// Bins and draws new values before it returns.
  void setValues(std::span<const double> values);
  /// The two halves of the title, "Maximum curvature" and "bunny.ply2".
  void setField(const QString& name);
  void setDocumentTitle(const QString& name);

  const Histogram& histogram() const { return shown; }
  QSize sizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void updateTitle();

  Histogram shown;
  HistogramAge age = HistogramAge::Current;
  QString field;
  QString documentTitle;
};

}  // namespace gravlin
