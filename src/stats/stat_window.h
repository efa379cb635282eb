// The Statistical Analysis window: frequency distribution, basic statistics and regression line
// of the record function table's columns, and the doors to the data, multiple regression and tests.
#pragma once

#include <optional>

#include <QPointer>

#include "controls/chart_widget.h"
#include "main/tool_window.h"
#include "ui_stat_window.h"

namespace merida {

class MultRegWindow;
class StatDataWindow;
class TestWindow;

class StatWindow : public ToolWindow, public Ui::StatWindow {
  Q_OBJECT

 public:
  StatWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // Label14, Label3 and Label4 from the record function table as it stands.
  void showTableStatus();
  StatDataWindow* statDataWindow();
  MultRegWindow* multRegWindow();
  TestWindow* testWindow();

 protected:
  // Coming back to the window re-reads the table's status: a Data window of another tool may
  // have stored new data meanwhile.
  bool event(QEvent* e) override;

 private:
  void frequency();
  void basic();
  void regression();
  void multipleRegression();
  void drawChart(ChartWidget::Style style, const std::vector<ChartPoint>& points,
                 std::optional<std::pair<QPointF, QPointF>> fit = std::nullopt);

  QPointer<StatDataWindow> data_;
  QPointer<MultRegWindow> multReg_;
  QPointer<TestWindow> test_;
};

}  // namespace merida
