// The Statistical Analysis window: frequency distribution, basic statistics and regression line
// of the record function table's columns, and the doors to the data, multiple regression and tests.
#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

#include "controls/chart_widget.h"
#include "main/tool_window.h"

namespace merida {

class MultRegWindow;
class StatDataWindow;
class TestWindow;

class StatWindow : public ToolWindow {
  Q_OBJECT

 public:
  StatWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // Label14, Label3 and Label4 from the record function table as it stands.
  void showTableStatus();
  StatDataWindow* statDataWindow();
  MultRegWindow* multRegWindow();
  TestWindow* testWindow();

  QLabel *Label1, *Label2, *Label3, *Label4, *Label5, *Label6, *Label7, *Label8, *Label9, *Label10, *Label11,
      *Label13, *Label14;
  QGroupBox *Frame1, *Frame2, *Frame3, *Frame4;
  QLineEdit *Text1, *Text2, *Text3, *Text4, *Text5, *Text6, *Text7, *Text8, *Text9;
  QPushButton *Command1, *Command2, *Command3, *Command4, *Command5, *Command6, *Command7, *Command8;
  ChartWidget* Graph1;

 protected:
  // Coming back to the window re-reads the table's status: a Data window of another tool may
  // have stored new data meanwhile.
  bool event(QEvent* e) override;

 private:
  void frequency();
  void basic();
  void regression();
  void multipleRegression();
  void drawChart(ChartWidget::Style style, const std::vector<ChartPoint>& points);

  QPointer<StatDataWindow> data_;
  QPointer<MultRegWindow> multReg_;
  QPointer<TestWindow> test_;
};

}  // namespace merida
