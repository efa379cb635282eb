// A host for window tests: records what it is shown and lets Qt handle events during runs.
#pragma once

#include <QCoreApplication>
#include <QTest>
#include <memory>

#include "graph/graph_tools_gui.h"
#include "graph/graph_window.h"
#include "jobs.h"
#include "test_support.h"

namespace merida::test {

class GuiTestHost : public RecordingHost {
 public:
  void checkpoint() override {
    RecordingHost::checkpoint();
    QCoreApplication::processEvents();
  }
};

// A Graph window on a fresh engine whose main formula box holds `formula`.
class GraphWindowFixture : public ::testing::Test {
 protected:
  GraphWindowFixture() : engine(host) {
    engine.ResetEngine();
    owner = std::make_unique<QWidget>();
    window = OpenGraphWindow(owner.get(), engine, state, [this] { return formula; });
  }
  // Fills the range boxes, presses the button and lets the chart lay itself out.
  void plot(QPushButton* button, const QString& f, const QString& a, const QString& b, const QString& n) {
    formula = f;
    window->Text1->setText(a);
    window->Text2->setText(b);
    window->Text3->setText(n);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->plotting(); }, 10000));
    Settle();
  }
  static void Settle() {
    for (int k = 0; k < 5; ++k) QCoreApplication::processEvents();
  }
  // Every point drawn for data set 1, in order, across the series the chart used.
  QList<QPointF> drawn() const {
    QList<QPointF> all;
    for (QLineSeries* s : window->Graph1->drawnSeries(1)) all += s->points();
    return all;
  }

  GuiTestHost host;
  Engine engine;
  AppState state;
  QString formula;
  std::unique_ptr<QWidget> owner;
  GraphWindow* window = nullptr;
};

}  // namespace merida::test
