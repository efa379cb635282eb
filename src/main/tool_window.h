// The base of every window: captions in the display language, printing, stopping a run.
#pragma once

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QWidget>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <utility>

#include "engine/engine.h"
#include "engine/job.h"
#include "main/app_state.h"

class QListWidget;
class QProgressBar;
class QTimer;

namespace merida {

// A tool's run on its own engine (the shared engine's functions) and its own copy of the
// shared values, so that nothing done elsewhere meanwhile reaches it.
struct ToolRun {
  ToolRun(const Engine& shared, const AppState& sharedState);
  JobHost host;
  Engine engine{host};
  AppState before, state;
};

class ToolWindow : public QWidget {
  Q_OBJECT

 public:
  ToolWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);
  ~ToolWindow() override;

  // True while the window's computation runs as a job or waits for its turn to.
  bool jobRunning() const { return job_ != nullptr || waiting_; }
  // The job's progress bar (hidden while no job has run for 0.2 s).
  QProgressBar* progressBar() const { return progressBar_; }

  // Sets every caption for the current display language (tr() with the installed translator).
  virtual void retranslate() = 0;

  // The line under the controls: what the cursor is over in a chart, what a run did.
  QLabel* statusLine() const { return statusLine_; }
  void showStatus(const QString& text);

 protected:
  // In English mode a Japanese-only text gets its English as a tooltip and in the status line
  // (a label) or as each line's tooltip (a list); in Japanese mode nothing changes.
  void explainJapanese(QLabel* label);
  void explainJapanese(QListWidget* list);
  // Says in the status line why the last run, a job or not, did nothing; clears an old reason.
  void reportSilentEnd(const Engine& engine);
  // Greys results the rules keep on screen after a run that replaced nothing, so that they do
  // not pass for the answer to the boxes as they now stand; false restores them.
  static void markStale(std::initializer_list<QWidget*> results, bool stale);
  // Whether the boxes typed are given back when the window opens again; off for a window whose
  // opening must empty them.
  bool remembersBoxes_ = true;

  // What a job writes that other windows' jobs may write too.
  enum class JobWrites { kOwnResults, kRecordTable };
  // Starts the window's long computation as a job: `work` runs on a worker thread over a
  // ToolRun; when it completes, the job's messages are shown, its changes to the shared values
  // made and `apply` called, all on this thread in one step. While it runs, `go` reads "Stop"
  // and the window's handler for it should call stopJob(); the busy cursor is over the window
  // and, after 0.2 s, the progress bar shows count, percent and elapsed time.
  // `stopped` runs when stopJob() drops the job's results. A job that writes the record table
  // waits (showing for whom) until another window's such job has ended, then starts from the
  // table that one left.
  void startJob(QPushButton* go, std::function<void(ToolRun&)> work, std::function<void(ToolRun&)> apply,
                std::function<void()> stopped = {}, JobWrites writes = JobWrites::kOwnResults);
  // Stops the running job at its next checkpoint and drops its results.
  void stopJob();
  // Runs `show` on this window's thread while the job that asks for it still runs (a run's
  // work posts what the window shows before the run ends).
  void postWhileRunning(std::function<void()> show);

  bool japanese() const { return state_.japanese(); }
  // Prints the window as shown: the default printer, or a PDF the user names when none is set up.
  void printWindow();
  // The same printer choice, with `paint` filling the page (in the printer's own resolution).
  void printPage(const std::function<void(QPainter&, const QRect& page)>& paint);
  // Closing stops a running computation.
  void closeEvent(QCloseEvent* event) override;
  // Escape closes the window, as its Close button does.
  void keyPressEvent(QKeyEvent* event) override;
  // Tab order follows the layout (rows of a grid, then columns), not the order of creation.
  void showEvent(QShowEvent* event) override;
  // Enter in any of `boxes` presses `button`: the window's main action for those boxes.
  void pressOnEnter(std::initializer_list<QLineEdit*> boxes, QPushButton* button);

  Engine& engine_;
  AppState& state_;

 private:
  void launchJob(std::function<void(ToolRun&)> work);
  void endJob();
  void leaveTurn();
  void finishJob(int generation);
  void showProgress();
  // Keeps the boxes' texts on close; on show, puts them back in boxes left empty.
  void rememberBoxes(bool restore);

  std::shared_ptr<ToolRun> run_;
  std::function<void(ToolRun&)> apply_;
  std::function<void()> stopped_;
  std::unique_ptr<Job> job_;
  int generation_ = 0;  // of the newest job: a result from a stopped one is dropped
  QPushButton* goButton_ = nullptr;
  QString goCaption_;
  QProgressBar* progressBar_ = nullptr;
  QLabel* statusLine_ = nullptr;
  QString statusMessage_;     // what the window last said, under any chart readout
  bool silentShown_ = false;  // the status line says why the last run did nothing
  int16_t shownIn_ = 0;  // the display language the captions were last set in
  QTimer* progressTimer_ = nullptr;
  int64_t startedMs_ = 0;
  bool waiting_ = false;  // for the record table's turn
  bool queued_ = false;   // in the record table's line, waiting or holding the turn
};

}  // namespace merida
