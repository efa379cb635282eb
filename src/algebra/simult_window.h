// The Simultaneous Linear Equation window in its two modes: equations (Go, Simult) and matrix.
#pragma once

#include "algebra/linear_system.h"
#include "controls/grid_widget.h"
#include "main/tool_window.h"
#include "ui_simult_window.h"

namespace merida {

class SimultWindow : public ToolWindow, public Ui::SimultWindow {
  Q_OBJECT

 public:
  static constexpr int16_t kEquationsMode = -1;
  static constexpr int16_t kMatrixMode = 1;

  SimultWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  // What opening from the main window does: the mode's caption and controls, order 3, empty grid.
  void openInMode(int16_t mode);
  void retranslate() override;

  bool matrixMode() const { return mode_ == kMatrixMode; }
  int systemOrder() const { return systemOrder_; }
  CellPosition currentCell() const { return current_; }

 private:
  // A caption in the display language of the moment.
  QString caption(const char* english) const;
  void layoutGrid();
  void setCurrent(CellPosition at);
  void applyDimension();
  void enterCell();
  CellTexts gridTexts() const;
  void run(LinearResult (*operation)(const CellTexts&));

  int16_t mode_ = kEquationsMode;
  int systemOrder_ = 3;
  CellPosition current_;
};

// Shows the window for the main window's Simult (mode -1) or Matrix (mode 1) button: one window
// per owner, opened afresh unless it is already showing in that mode.
SimultWindow* ShowSimultWindow(QWidget* owner, Engine& engine, AppState& state, int16_t mode);

}  // namespace merida
