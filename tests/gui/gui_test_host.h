// A host for window tests: records what it is shown and lets Qt handle events during runs.
#pragma once

#include <QCoreApplication>

#include "test_support.h"

namespace merida::test {

class GuiTestHost : public RecordingHost {
 public:
  void processEvents() override {
    RecordingHost::processEvents();
    QCoreApplication::processEvents();
  }
};

}  // namespace merida::test
