// Shared window behaviour.
#include "main/tool_window.h"

#include "controls/chart_widget.h"
#include "engine/english.h"

#include <QLineEdit>
#include <QListWidget>

#include <QBoxLayout>
#include <QCloseEvent>
#include <QDateTime>
#include <QProgressBar>
#include <QStyle>
#include <QTimer>
#include <map>
#include <QFileDialog>
#include <QGraphicsColorizeEffect>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLayout>
#include <algorithm>
#include <vector>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QVBoxLayout>

namespace merida {
namespace {

// The widgets of `layout` that take focus by Tab, in reading order; a grid by rows.
void CollectInLayoutOrder(QLayout* layout, std::vector<QWidget*>& out) {
  if (!layout) return;
  std::vector<std::pair<std::pair<int, int>, QLayoutItem*>> items;
  auto* grid = qobject_cast<QGridLayout*>(layout);
  for (int i = 0; i < layout->count(); ++i) {
    int row = i, column = 0, rowSpan = 1, columnSpan = 1;
    if (grid) grid->getItemPosition(i, &row, &column, &rowSpan, &columnSpan);
    items.push_back({{row, column}, layout->itemAt(i)});
  }
  std::stable_sort(items.begin(), items.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [position, item] : items) {
    if (QWidget* w = item->widget()) {
      if (w->focusPolicy() & Qt::TabFocus) out.push_back(w);
      CollectInLayoutOrder(w->layout(), out);
    } else {
      CollectInLayoutOrder(item->layout(), out);
    }
  }
}

// Puts `bar` under the window's content: the bottom of a column, a new last row of a grid,
// or, where a chart and a column of controls stand side by side, the bottom of that column.
void PlaceBelowContent(QLayout* layout, QWidget* bar) {
  if (auto* grid = qobject_cast<QGridLayout*>(layout)) {
    grid->addWidget(bar, grid->rowCount(), 0, 1, grid->columnCount());
    return;
  }
  auto* box = qobject_cast<QBoxLayout*>(layout);
  if (!box) return;
  if (box->direction() == QBoxLayout::LeftToRight || box->direction() == QBoxLayout::RightToLeft) {
    for (int i = box->count() - 1; i >= 0; --i) {
      auto* column = qobject_cast<QVBoxLayout*>(box->itemAt(i)->layout());
      if (column) {
        column->addWidget(bar);
        return;
      }
    }
  }
  box->addWidget(bar);
}

// The box layout that holds `w` directly, searched from `layout` down.
QBoxLayout* BoxHolding(QLayout* layout, QWidget* w) {
  if (!layout) return nullptr;
  for (int i = 0; i < layout->count(); ++i) {
    QLayoutItem* item = layout->itemAt(i);
    if (item->widget() == w) return qobject_cast<QBoxLayout*>(layout);
    if (QBoxLayout* found = BoxHolding(item->layout(), w)) return found;
  }
  return nullptr;
}

}  // namespace

ToolRun::ToolRun(const Engine& shared, const AppState& sharedState) : before(sharedState), state(sharedState) {
  engine.CopyStateFrom(shared);
}

ToolWindow::ToolWindow(Engine& engine, AppState& state, QWidget* parent)
    : QWidget(parent, Qt::Window), engine_(engine), state_(state) {
  setAttribute(Qt::WA_DeleteOnClose, false);
  shownIn_ = state_.DisplayLanguage;  // the subclass sets its captions in this language
}

ToolWindow::~ToolWindow() {
  job_.reset();
  if (queued_) engine_.recordWriters().Leave(this);
}

void ToolWindow::startJob(QPushButton* go, std::function<void(ToolRun&)> work, std::function<void(ToolRun&)> apply,
                          std::function<void()> stopped, JobWrites writes) {
  stopJob();
  apply_ = std::move(apply);
  stopped_ = std::move(stopped);
  goButton_ = go;
  goCaption_ = go ? go->text() : QString();
  if (go) go->setText(tr("Stop"));
  setCursor(Qt::BusyCursor);
  if (!progressBar_) {
    progressBar_ = new QProgressBar(this);
    progressBar_->setObjectName(QStringLiteral("ProgressBar"));
    progressBar_->setTextVisible(true);
    progressBar_->hide();
    PlaceBelowContent(layout(), progressBar_);
    progressTimer_ = new QTimer(this);
    progressTimer_->setInterval(100);
    connect(progressTimer_, &QTimer::timeout, this, &ToolWindow::showProgress);
  }
  startedMs_ = QDateTime::currentMSecsSinceEpoch();
  progressTimer_->start();
  if (writes == JobWrites::kOwnResults) {
    launchJob(std::move(work));
    return;
  }
  queued_ = waiting_ = true;
  engine_.recordWriters().Enter(this, windowTitle().toStdString(), [this, work = std::move(work)] {
    waiting_ = false;
    startedMs_ = QDateTime::currentMSecsSinceEpoch();
    launchJob(work);
  });
  if (waiting_) showProgress();
}

void ToolWindow::launchJob(std::function<void(ToolRun&)> work) {
  // The copy is taken now, so a job that waited starts from what the one before it left.
  run_ = std::make_shared<ToolRun>(engine_, state_);
  const int generation = ++generation_;
  run_->host.boxShown = [this](const std::string& box, const std::string& text) {
    postWhileRunning([this, name = QString::fromStdString(box), value = QString::fromStdString(text)] {
      // This window's box, not one of the same name in a window it owns.
      for (QLineEdit* edit : findChildren<QLineEdit*>(name)) {
        if (edit->window() == this) {
          edit->setText(value);
          break;
        }
      }
    });
  };
  std::shared_ptr<ToolRun> run = run_;
  job_ = std::make_unique<Job>(
      [run, work = std::move(work)](std::stop_token stop, JobProgress& progress) {
        run->host.attach(run->engine, stop, &progress);
        work(*run);
      },
      [this, generation] {
        QMetaObject::invokeMethod(this, [this, generation] { finishJob(generation); }, Qt::QueuedConnection);
      });
}

void ToolWindow::showProgress() {
  if (waiting_) {
    // An empty range would hide the text; the bar stays empty until the turn comes.
    progressBar_->setRange(0, 1);
    progressBar_->setValue(0);
    progressBar_->setFormat(tr("Waiting for %1 to end").arg(QString::fromStdString(engine_.recordWriters().holder())));
    progressBar_->show();
    return;
  }
  if (!job_) return;
  const int64_t elapsed = QDateTime::currentMSecsSinceEpoch() - startedMs_;
  if (elapsed < 200) return;
  const int64_t total = job_->progress().total.load(std::memory_order_relaxed);
  const int64_t done = job_->progress().done.load(std::memory_order_relaxed);
  const QString seconds = QString::number(elapsed / 1000.0, 'f', 1);
  // The bar counts in thousandths, so that counts past 2^31 fit its int range.
  progressBar_->setRange(0, 1000);
  progressBar_->setValue(total > 0 ? static_cast<int>(done * 1000 / total) : 0);
  progressBar_->setFormat(total > 0 ? tr("%1 of %2 (%3%)  %4 s").arg(done).arg(total).arg(done * 100 / total).arg(seconds)
                                    : tr("%1 s").arg(seconds));
  progressBar_->show();
}

void ToolWindow::postWhileRunning(std::function<void()> show) {
  const int generation = generation_;
  QMetaObject::invokeMethod(
      this, [this, generation, show = std::move(show)] {
        if (generation == generation_ && job_) show();
      },
      Qt::QueuedConnection);
}

void ToolWindow::endJob() {
  ++generation_;
  job_.reset();  // asks the job to stop and waits for its next checkpoint
  run_.reset();
  waiting_ = false;
  if (goButton_) goButton_->setText(goCaption_);
  goButton_ = nullptr;
  if (progressTimer_) progressTimer_->stop();
  if (progressBar_) progressBar_->hide();
  unsetCursor();
}

void ToolWindow::leaveTurn() {
  if (!queued_) return;
  queued_ = false;
  engine_.recordWriters().Leave(this);
}

void ToolWindow::stopJob() {
  if (!jobRunning()) return;
  endJob();
  apply_ = {};
  if (stopped_) std::exchange(stopped_, {})();
  leaveTurn();
}

void ToolWindow::finishJob(int generation) {
  if (generation != generation_ || !job_) return;
  std::shared_ptr<ToolRun> run = run_;
  std::function<void(ToolRun&)> apply = std::move(apply_);
  stopped_ = {};
  endJob();
  // What the job's engine showed is shown now, by the shared engine, in the same order.
  for (const JobHost::Message& m : run->host.messages()) {
    if (m.fault) engine_.host().showFault(m.description);
    else engine_.Fail(m.code);
  }
  ApplyChanges(state_, run->before, run->state);
  engine_.TakeRandomStateFrom(run->engine);
  if (apply) apply(*run);
  reportSilentEnd(run->engine);
  // The next writer in line starts from the table this one left.
  leaveTurn();
}

void ToolWindow::reportSilentEnd(const Engine& engine) {
  // A run its rules end without a message still says why; the charts it left as they were are
  // greyed until they draw again.
  const std::string& why = engine.silentReason();
  for (ChartWidget* chart : findChildren<ChartWidget*>()) {
    if (chart->window() == this && !why.empty()) markStale({chart}, true);
  }
  if (!why.empty()) {
    showStatus(tr("Nothing done: %1").arg(QString::fromStdString(why)));
    silentShown_ = true;
    // The box at fault is selected, ready to be typed over.
    if (auto* box = findChild<QLineEdit*>(QString::fromStdString(engine.silentBox())); box && box->window() == this) {
      box->setFocus();
      box->selectAll();
    }
  } else if (silentShown_) {
    showStatus(QString());
    silentShown_ = false;
  }
}

void ToolWindow::markStale(std::initializer_list<QWidget*> results, bool stale) {
  for (QWidget* w : results) {
    if (!stale) {
      w->setGraphicsEffect(nullptr);
    } else if (!w->graphicsEffect()) {
      auto* grey = new QGraphicsColorizeEffect(w);
      grey->setColor(Qt::gray);
      w->setGraphicsEffect(grey);
    }
  }
}

void ToolWindow::printWindow() {
  printPage([this](QPainter& painter, const QRect& page) {
    QPixmap image = grab();
    QSize size = image.size().scaled(page.size(), Qt::KeepAspectRatio);
    painter.drawPixmap(QRect(page.topLeft(), size), image);
  });
}

void ToolWindow::printPage(const std::function<void(QPainter&, const QRect& page)>& paint) {
  QPrinter printer(QPrinter::HighResolution);
  if (QPrinterInfo::defaultPrinter().isNull()) {
    QString file = QFileDialog::getSaveFileName(this, windowTitle(), windowTitle() + ".pdf", "PDF (*.pdf)");
    if (file.isEmpty()) return;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(file);
  }
  QPainter painter(&printer);
  if (!painter.isActive()) return;
  paint(painter, painter.viewport());
}

void ToolWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
    event->accept();
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

namespace {

// One line whatever the text: a text too long for it ends in "…" (its tooltip has it whole), so
// a long reason never grows the window nor is cut off below.
class StatusLabel : public QLabel {
 public:
  using QLabel::QLabel;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const QRect r = contentsRect();
    style()->drawItemText(&painter, r, Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideRight, r.width()), foregroundRole());
  }
};

}  // namespace

void ToolWindow::showStatus(const QString& text) {
  if (!statusLine_) {
    statusLine_ = new StatusLabel(this);
    statusLine_->setObjectName(QStringLiteral("StatusLine"));
    statusLine_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // One line high even when empty, so the window does not jump as the text comes and goes.
    statusLine_->setMinimumHeight(statusLine_->fontMetrics().height() + 4);
    statusLine_->setMinimumWidth(0);
    // As wide as the place it is put in.
    statusLine_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    // Under the chart where there is one, as wide as it; else under everything.
    ChartWidget* chart = findChild<ChartWidget*>();
    QBoxLayout* holder = chart ? BoxHolding(layout(), chart) : nullptr;
    if (holder && holder->direction() == QBoxLayout::TopToBottom) {
      holder->insertWidget(holder->indexOf(chart) + 1, statusLine_);
    } else if (holder) {
      const int at = holder->indexOf(chart), stretch = holder->stretch(at);
      holder->removeWidget(chart);
      auto* column = new QVBoxLayout;
      column->addWidget(chart, 1);
      column->addWidget(statusLine_);
      holder->insertLayout(at, column, stretch);
    } else if (auto* row = qobject_cast<QBoxLayout*>(layout()); row && row->direction() == QBoxLayout::LeftToRight) {
      // Boxes on the left, buttons on the right: the text goes under the boxes, where it is wide.
      QLayout* first = nullptr;
      for (int i = 0; i < row->count() && !first; ++i) first = row->itemAt(i)->layout();
      if (auto* column = qobject_cast<QVBoxLayout*>(first)) {
        column->addWidget(statusLine_);
      } else {
        PlaceBelowContent(layout(), statusLine_);
      }
    } else {
      PlaceBelowContent(layout(), statusLine_);
    }
  }
  statusMessage_ = text;
  statusLine_->setText(text);
  statusLine_->setToolTip(text);
}

void ToolWindow::explainJapanese(QLabel* label) {
  const std::string_view english = japanese() ? std::string_view() : EnglishOf(label->text().toStdString());
  const QString text = QString::fromUtf8(english.data(), static_cast<qsizetype>(english.size()));
  label->setToolTip(text);
  if (!text.isEmpty()) showStatus(text);
}

void ToolWindow::explainJapanese(QListWidget* list) {
  for (int i = 0; i < list->count(); ++i) {
    QListWidgetItem* item = list->item(i);
    const std::string line = item->text().toStdString();
    const std::string with = japanese() ? line : WithEnglish(line);
    // WithEnglish appends " (English)"; the tooltip is the English alone.
    item->setToolTip(with.size() > line.size() ? QString::fromStdString(with.substr(line.size() + 2, with.size() - line.size() - 3))
                                               : QString());
  }
}

void ToolWindow::showEvent(QShowEvent* event) {
  // A window is loaded in the language of the moment: one kept from before a language switch
  // takes the new captions when it opens again.
  if (shownIn_ != state_.DisplayLanguage) retranslate();
  shownIn_ = state_.DisplayLanguage;
  if (!event->spontaneous()) rememberBoxes(true);
  // A chart's readout of the point under the cursor goes to the status line.
  for (ChartWidget* chart : findChildren<ChartWidget*>()) {
    if (chart->window() != this || chart->property("readoutWired").toBool()) continue;
    chart->setProperty("readoutWired", true);
    showStatus(statusMessage_);
    // The readout stands in for the window's message while the cursor is over the chart.
    connect(chart, &ChartWidget::readout, this,
            [this](const QString& text) { statusLine_->setText(text.isEmpty() ? statusMessage_ : text); });
  }
  std::vector<QWidget*> order;
  CollectInLayoutOrder(layout(), order);
  for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
  // A window opens ready for typing: in its first box, else its first control.
  if (!focusWidget() && !order.empty()) {
    auto box = std::find_if(order.begin(), order.end(), [](QWidget* w) { return qobject_cast<QLineEdit*>(w); });
    (box != order.end() ? *box : order.front())->setFocus();
  }
  QWidget::showEvent(event);
}

void ToolWindow::pressOnEnter(std::initializer_list<QLineEdit*> boxes, QPushButton* button) {
  for (QLineEdit* box : boxes) connect(box, &QLineEdit::returnPressed, button, &QPushButton::click);
}

namespace {

// What was typed in each window's boxes, kept while the program runs: a window closed and opened
// again, or built anew, gets back the boxes its opening leaves empty. It hangs on the top of
// the window tree (the main window), which outlives every tool window.
class BoxMemory : public QObject {
 public:
  using QObject::QObject;
  static constexpr const char* kName = "BoxMemory";
  std::map<QString, std::map<QString, QString>> typed;  // window name → box name → text

  static BoxMemory& of(QObject* window) {
    QObject* top = window;
    while (top->parent()) top = top->parent();
    // By name: without a meta-object of its own, a cast by type would take any QObject.
    auto* memory = dynamic_cast<BoxMemory*>(top->findChild<QObject*>(kName, Qt::FindDirectChildrenOnly));
    if (!memory) {
      memory = new BoxMemory(top);
      memory->setObjectName(kName);
    }
    return *memory;
  }
};

}  // namespace

void ToolWindow::rememberBoxes(bool restore) {
  if (!remembersBoxes_) return;
  std::map<QString, QString>& typed = BoxMemory::of(this).typed[objectName()];
  for (QLineEdit* box : findChildren<QLineEdit*>()) {
    // Read-only boxes show results, which belong to the run that made them.
    if (box->window() != this || box->objectName().isEmpty() || box->isReadOnly()) continue;
    if (!restore) {
      typed[box->objectName()] = box->text();
    } else if (auto it = typed.find(box->objectName()); it != typed.end() && box->text().isEmpty()) {
      box->setText(it->second);  // a box the opening fills (a count, a tolerance) keeps its value
    }
  }
}

void ToolWindow::closeEvent(QCloseEvent* event) {
  rememberBoxes(false);
  stopJob();
  engine_.StopRequested = 1;
  QWidget::closeEvent(event);
}

}  // namespace merida
