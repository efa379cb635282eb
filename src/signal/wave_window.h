// The WAVE File Make window: the main formula sampled into a WAVE or MERIDA text file.
#pragma once

#include <QString>
#include <functional>

#include "main/tool_window.h"
#include "ui_wave_window.h"

class QSoundEffect;

namespace merida {

class WaveWindow : public ToolWindow, public Ui::WaveWindow {
  Q_OBJECT

 public:
  // `formula` reads the main window's formula box when Go starts.
  WaveWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent = nullptr);

  void retranslate() override;
  // The format flag: 1 writes the MERIDA text file, -1 a WAVE file.
  int16_t format() const { return format_; }
  // The full path Test plays; empty until a file is written.
  const QString& lastWritten() const { return lastWritten_; }
  bool running() const;

 private:
  void go();
  void test();

  std::function<QString()> formula_;
  int16_t format_ = -1;
  QString lastWritten_;
  QSoundEffect* sound_ = nullptr;
};

}  // namespace merida
