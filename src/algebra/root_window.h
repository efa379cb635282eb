// The Intersection Point window: roots and intersections on an interval, and the polynomial tools.
#pragma once

#include <QCheckBox>
#include <QPushButton>
#include <functional>
#include <vector>

#include "algebra/polynomial.h"
#include "algebra/roots.h"
#include "controls/chart_widget.h"
#include "main/tool_window.h"
#include "ui_root_window.h"

namespace merida {

class IntersectionWindow : public ToolWindow, public Ui::IntersectionWindow {
  Q_OBJECT

 public:
  // `formula` reads the main window's formula box when an action starts; Copy writes it
  // through `setFormula`.
  IntersectionWindow(Engine& engine, AppState& state, std::function<QString()> formula,
                     std::function<void(const QString&)> setFormula, QWidget* parent = nullptr);

  void retranslate() override;
  bool running() const { return jobRunning(); }
  // The check boxes' values: 1 on, -1 off.
  int16_t graphOn() const { return graphOn_; }
  int16_t roundOn() const { return roundOn_; }
  int16_t coefficientOn() const { return coefficientOn_; }
  double judgeValue() const { return judgeValue_; }
  const std::vector<double>& rootX() const { return rootX_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  RootBoxes boxes() const;
  void go();
  void inter();
  void showSearch(const RootResult& r);
  void showPolynomial(const PolyResult& r);
  void search(QPushButton* button, std::function<RootResult(ToolRun&)> scan);
  void runPolynomial(QPushButton* button, std::function<PolyResult(PolynomialTools&)> tool);
  void copyRoot(int row);
  // A check box's click negates its value; the tick follows it.
  void connectToggle(QCheckBox* box, int16_t& value);
  void setLines(const std::vector<std::string>& lines);

  std::function<QString()> formula_;
  std::function<void(const QString&)> setFormula_;
  PolynomialTools tools_;
  int16_t graphOn_ = -1, roundOn_ = -1, coefficientOn_ = -1;
  double judgeValue_ = 1e-7;
  std::vector<double> rootX_;
};

}  // namespace merida
