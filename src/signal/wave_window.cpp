// The WAVE File Make window: Go runs the maker in the current directory; Test plays its file.
#include "signal/wave_window.h"

#include <QAudioDevice>
#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QMediaDevices>
#include <QSignalBlocker>
#include <QSoundEffect>
#include <QUrl>
#include <QVBoxLayout>
#include <filesystem>

#include "signal/wave_maker.h"

namespace merida {

WaveWindow::WaveWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)) {
  setObjectName("WaveWindow");
  Frame1 = new QGroupBox;
  Frame1->setObjectName("Frame1");
  Text1 = new QLineEdit;
  Text1->setObjectName("Text1");
  Text2 = new QLineEdit;
  Text2->setObjectName("Text2");
  Label1 = new QLabel(QStringLiteral("～"));
  Label1->setObjectName("Label1");
  Label2 = new QLabel;
  Label2->setObjectName("Label2");
  for (QLineEdit* box : {Text1, Text2}) box->setMaximumWidth(110);
  auto* time = new QHBoxLayout(Frame1);
  time->setContentsMargins(6, 2, 6, 4);
  time->addWidget(Text1);
  time->addWidget(Label1);
  time->addWidget(Text2);
  time->addWidget(Label2);
  Frame2 = makeBoxFrame("Frame2", Text3, "Text3");
  Text3->setMaximumWidth(QWIDGETSIZE_MAX);  // a file name, not a number
  Check1 = new QCheckBox;
  Check1->setObjectName("Check1");
  Command1 = makeButton("Command1");
  Command3 = makeButton("Command3");
  Command2 = makeButton("Command2");

  auto* buttons = new QHBoxLayout;
  for (QPushButton* b : {Command1, Command3, Command2}) buttons->addWidget(b);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Frame1);
  layout->addWidget(Frame2);
  layout->addWidget(Check1);
  layout->addLayout(buttons);
  layout->addStretch(1);

  connect(Command1, &QPushButton::clicked, this, &WaveWindow::go);
  connect(Command3, &QPushButton::clicked, this, &WaveWindow::test);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  connect(Check1, &QCheckBox::clicked, this, [this] {
    format_ = static_cast<int16_t>(-format_);
    QSignalBlocker block(Check1);
    Check1->setChecked(format_ == 1);
  });
  pressOnEnter({Text1, Text2, Text3}, Command1);
  retranslate();
}

void WaveWindow::retranslate() {
  setWindowTitle(tr("WAVE File Make"));
  Frame1->setTitle(tr("Time"));
  Label2->setText(tr("sec"));
  Frame2->setTitle(tr("File Name"));
  Check1->setText(tr("MERIDA"));
  Command1->setText(tr("Go"));
  Command3->setText(tr("Test"));
  Command2->setText(tr("Close"));
}

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
