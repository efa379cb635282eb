// The Load window. There are no drive letters here: the "drives" are the home directory and
// the mounted file systems, and the lists are views of the real file system.
#include "signal/load_window.h"

#include <filesystem>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QMessageBox>
#include <QSignalBlocker>
#include <QStorageInfo>

#include "signal/data_files.h"
#include "signal/file_display_window.h"

namespace merida {
namespace {

// A drive is ready when its directory can be listed. The mount table's own idea of readiness
// is not used: inside a chroot or container it may know nothing of a perfectly good directory.
bool Readable(const QString& root) {
  std::error_code ec;
  std::filesystem::directory_iterator it(root.toStdString(), ec);
  return !ec;
}

}  // namespace

LoadWindow::LoadWindow(Engine& engine, AppState& state, QWidget* parent) : ToolWindow(engine, state, parent) {
  setupUi(this);
  // The first scroll to the directory comes before the layout sizes the tree and before its branch
  // has loaded: at a new window's size (640 x 480) it leaves the tree at its top, where it opens.
  Dir1->resize(640, 480);
  dirs_ = new QFileSystemModel(this);
  dirs_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot | QDir::Hidden);
  Dir1->setModel(dirs_);
  for (int column = 1; column < dirs_->columnCount(); ++column) Dir1->hideColumn(column);
  files_ = new QFileSystemModel(this);
  files_->setFilter(QDir::Files | QDir::Hidden);
  files_->setNameFilterDisables(false);  // a file the pattern leaves out is not listed at all
  File1->setModel(files_);

  // The model reads directories in the background: show the path once its branch is there.
  connect(dirs_, &QFileSystemModel::directoryLoaded, this, [this](const QString& loaded) {
    if (dirPath_ == loaded || dirPath_.startsWith(loaded.endsWith('/') ? loaded : loaded + '/')) showDirPath();
  });
  // It also sorts in the background: rows that land above the path push it out of view, so for a
  // moment after a new path the view follows it (later the user's own scrolling wins).
  connect(dirs_, &QAbstractItemModel::layoutChanged, this, [this] {
    if (pathSet_.isValid() && pathSet_.elapsed() < 2000) Dir1->scrollTo(Dir1->currentIndex(), QAbstractItemView::PositionAtCenter);
  });
  connect(Drive1, &QComboBox::currentIndexChanged, this, &LoadWindow::driveChanged);
  auto open = [this](const QModelIndex& index) { setDirPath(dirs_->filePath(index)); };
  connect(Dir1, &QTreeView::clicked, this, open);
  connect(Dir1, &QTreeView::activated, this, open);
  connect(File1, &QListView::clicked, this, &LoadWindow::chooseFile);
  connect(File1, &QListView::doubleClicked, this, &LoadWindow::chooseFile);
  connect(File1, &QListView::activated, this, &LoadWindow::chooseFile);
  connect(Check1, &QCheckBox::clicked, this, [this] {
    select_ = static_cast<int16_t>(-select_);
    applyPattern();
  });
  connect(Command1, &QPushButton::clicked, this, &LoadWindow::load);
  connect(Command3, &QPushButton::clicked, this, &LoadWindow::graph);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);

  state_.Records.kind = NoData;
  applyPattern();
  fillDrives();
  // The data files the program writes are in the current directory.
  setDirPath(QDir::currentPath());
}

void LoadWindow::retranslate() { retranslateUi(this); }

void LoadWindow::fillDrives() {
  QSignalBlocker block(Drive1);
  Drive1->clear();
  QStringList roots{QDir::homePath()};
  Drive1->addItem(roots.front(), roots.front());
  for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
    const QString root = volume.rootPath();
    // Single files bind-mounted into a container are volumes too; they hold no directory.
    if (!volume.isValid() || roots.contains(root) || !QFileInfo(root).isDir()) continue;
    roots.append(root);
    const QString name = volume.displayName();
    Drive1->addItem(name.isEmpty() || name == root ? root : QStringLiteral("%1  [%2]").arg(root, name), root);
  }
}

int LoadWindow::driveOf(const QString& path) const {
  // The deepest drive holding the path: the home directory before the volume under it.
  int best = -1;
  qsizetype length = -1;
  for (int i = 0; i < Drive1->count(); ++i) {
    const QString root = Drive1->itemData(i).toString();
    const bool holds = path == root || path.startsWith(root.endsWith('/') ? root : root + '/');
    if (holds && root.size() > length) {
      best = i;
      length = root.size();
    }
  }
  return best;
}

void LoadWindow::setDirPath(const QString& path) {
  dirPath_ = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
  pathSet_.start();
  const int drive = driveOf(dirPath_);
  const QString root = drive >= 0 ? Drive1->itemData(drive).toString() : QStringLiteral("/");
  {
    QSignalBlocker block(Drive1);
    Drive1->setCurrentIndex(drive);
  }
  Dir1->setRootIndex(dirs_->setRootPath(root));
  showDirPath();
  File1->setRootIndex(files_->setRootPath(dirPath_));
}

void LoadWindow::showDirPath() {
  const QModelIndex at = dirs_->index(dirPath_);
  Dir1->setCurrentIndex(at);
  Dir1->expand(at);
  Dir1->scrollTo(at, QAbstractItemView::PositionAtCenter);
}

void LoadWindow::driveChanged(int index) {
  const QString root = Drive1->itemData(index).toString();
  if (!Readable(root)) {
    QMessageBox::warning(this, QStringLiteral("エラー"), QStringLiteral("ﾄﾞﾗｲﾌﾞが用意されていません"));
    QSignalBlocker block(Drive1);
    Drive1->setCurrentIndex(driveOf(dirPath_));
    return;
  }
  setDirPath(root);
}

void LoadWindow::chooseFile(const QModelIndex& index) {
  if (!index.isValid()) return;
  const QString name = files_->fileName(index);
  chosen_ = dirPath_.endsWith('/') ? dirPath_ + name : dirPath_ + '/' + name;
  Text1->setText(name);
}

void LoadWindow::applyPattern() {
  {
    QSignalBlocker block(Check1);
    Check1->setChecked(select_ == 1);
  }
  // "*.*" is every file, those without an extension included.
  files_->setNameFilters(select_ == 1 ? QStringList{"*.wav", "*.mrd", "*.orb"} : QStringList{"*"});
}

void LoadWindow::load() {
  if (jobRunning()) {
    stopJob();  // Load reads "Stop" while a file is read
    return;
  }
  if (chosen_.isEmpty()) {
    state_.Records.kind = NoData;
    return;
  }
  // A file of a billion rows takes a while: it is read on a worker thread into the run's copy
  // of the table, which replaces the shared one only when the whole file was read.
  auto result = std::make_shared<LoadResult>();
  const std::filesystem::path path = QFile::encodeName(chosen_).toStdString();
  startJob(
      Command1,
      [result, path](ToolRun& run) { *result = ReadDataFile(run.state.Records, path, run.host.stopToken()); },
      [this, result](ToolRun&) { showLoad(*result); }, {}, JobWrites::kRecordTable);
}

void LoadWindow::showLoad(const LoadResult& r) {
  engine_.ErrorFlag = 0;
  if (r.errorCode) engine_.Fail(r.errorCode);
  if (r.shown) QMessageBox::warning(this, windowTitle(), QString::fromStdString(r.reason));
  const LoadBoxes& b = r.boxes;
  // A refused WAVE header puts the raw bytes it found in Text1; a load puts the path there.
  if (b.text1) Text1->setText(r.loaded ? QFile::decodeName(b.text1->c_str()) : QString::fromLatin1(b.text1->data(), static_cast<qsizetype>(b.text1->size())));
  if (b.text2) Text2->setText(QString::fromStdString(*b.text2));
  if (b.text3) Text3->setText(QString::fromStdString(*b.text3));
  if (b.text4) Text4->setText(QString::fromStdString(*b.text4));
  if (r.loaded) {
    showStatus(QString());
    return;
  }
  // A refused file leaves no data loaded: numbers of an earlier load would say otherwise.
  if (!b.text2) Text2->clear();
  if (!b.text3) Text3->clear();
  if (!b.text4) Text4->clear();
  const QString why = r.reason.empty() ? QString() : QStringLiteral(" (%1)").arg(QString::fromStdString(r.reason));
  showStatus(tr("Not loaded%1: no data are in the record table.").arg(why));
}

FileDisplayWindow* LoadWindow::fileDisplayWindow() const { return display_; }

void LoadWindow::graph() {
  if (state_.Records.kind < 1) return;
  if (!display_) display_ = new FileDisplayWindow(engine_, state_, this);
  display_->show();
  display_->raise();
  display_->activateWindow();
}

}  // namespace merida
