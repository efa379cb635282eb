// The Test window: t (or normal), F and chi-square tests against tables of critical values.
#pragma once

#include <optional>
#include <utility>

#include "main/tool_window.h"
#include "stats/hypothesis_test.h"
#include "ui_test_window.h"

namespace merida {

class TestWindow : public ToolWindow, public Ui::TestWindow {
  Q_OBJECT

 public:
  TestWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  int level() const { return Option2->isChecked() ? 1 : 5; }

 private:
  void showExact(TestKind kind, const TestResult& r);
  void run(TestKind kind);

  std::optional<std::pair<TestKind, TestResult>> last_;  // shown beside the table's answer
};

}  // namespace merida
