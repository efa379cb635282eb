// Windows run their long work as jobs: a click starts one, and its results arrive later.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "main/tool_window.h"

namespace merida::test {

inline bool AnyJobRunning() {
  for (QWidget* w : QApplication::allWidgets()) {
    if (auto* tool = qobject_cast<ToolWindow*>(w); tool && tool->jobRunning()) return true;
  }
  return false;
}

// Waits until every window's job has ended and its results are shown.
inline void WaitForJobs(int timeoutMs = 30000) {
  EXPECT_TRUE(QTest::qWaitFor([] { return !AnyJobRunning(); }, timeoutMs)) << "a job still runs";
}

// Clicks `button` and waits for the job it starts in its window, if any, to end.
inline void ClickAndWait(QWidget* button) {
  QTest::mouseClick(button, Qt::LeftButton);
  if (auto* tool = qobject_cast<ToolWindow*>(button->window())) {
    EXPECT_TRUE(QTest::qWaitFor([tool] { return !tool->jobRunning(); }, 30000)) << "a job still runs";
  }
}

}  // namespace merida::test
