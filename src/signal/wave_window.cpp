// The WAVE File Make window: Go runs the maker in the current directory; Test plays its file.
#include "signal/wave_window.h"

#include <QAudioDevice>
#include <QDir>
#include <QFile>
#include <QMediaDevices>
#include <QSignalBlocker>
#include <QSoundEffect>
#include <QUrl>
#include <filesystem>

#include "signal/wave_maker.h"

namespace merida {

WaveWindow::WaveWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)) {
  setupUi(this);
  connect(Command1, &QPushButton::clicked, this, &WaveWindow::go);
  connect(Command3, &QPushButton::clicked, this, &WaveWindow::test);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  connect(Check1, &QCheckBox::clicked, this, [this] {
    format_ = static_cast<int16_t>(-format_);
    QSignalBlocker block(Check1);
    Check1->setChecked(format_ == 1);
  });
  pressOnEnter({Text1, Text2, Text3}, Command1);
}

void WaveWindow::retranslate() { retranslateUi(this); }

void WaveWindow::go() {
  if (jobRunning()) {
    stopJob();  // Go reads "Stop" while the samples are computed
    return;
  }
  const QString typed = Text3->text();
  const WaveBoxes boxes{Text1->text().toStdString(), Text2->text().toStdString(), typed.toStdString()};
  const std::string formula = formula_().toStdString();
  const std::filesystem::path dir = QFile::encodeName(QDir::currentPath()).toStdString();
  const bool merida = format_ == 1;
  auto result = std::make_shared<WaveResult>();
  // A Go that ends early gives the box back as the user left it, not as "作成中".
  auto restore = [this, typed] { Text3->setText(typed); };
  startJob(
      Command1,
      [this, result, formula, boxes, dir, merida](ToolRun& run) {
        *result = MakeWave(run.engine, formula, boxes, merida, dir,
                           [this] { postWhileRunning([this] { Text3->setText(QStringLiteral("作成中")); }); });
      },
      [this, result, restore](ToolRun&) {
        if (result->end != WaveEnd::kWritten) return restore();
        Text3->setText(QString::fromStdString(result->fileName));
        lastWritten_ = QFile::decodeName(result->written.c_str());
      },
      restore);
}

bool WaveWindow::running() const { return jobRunning(); }

void WaveWindow::test() {
  if (lastWritten_.isEmpty() || QMediaDevices::audioOutputs().isEmpty()) return;
  // A fresh effect each time: one kept would replay the copy it read of an earlier file.
  delete sound_;
  sound_ = new QSoundEffect(this);
  sound_->setSource(QUrl::fromLocalFile(lastWritten_));
  sound_->play();
}

}  // namespace merida
