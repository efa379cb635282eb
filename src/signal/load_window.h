// The Load window: picks a data file from the file system and reads it into the record table.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QString>

#include "main/tool_window.h"
#include "ui_load_window.h"

class QFileSystemModel;

namespace merida {

class FileDisplayWindow;
struct LoadResult;

class LoadWindow : public ToolWindow, public Ui::LoadWindow {
  Q_OBJECT

 public:
  LoadWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;

  // The directory list's path; setting it also moves the drive and file lists there.
  const QString& dirPath() const { return dirPath_; }
  void setDirPath(const QString& path);
  // The file a click chose (directory and name), which Load reads; empty until one is chosen.
  const QString& chosenPath() const { return chosen_; }
  // Select: 1 shows only the data files' extensions, -1 every file.
  int16_t select() const { return select_; }
  // True while Load reads a file (on a worker thread); Close stops it.
  bool loading() const { return jobRunning(); }
  // The File Display window Graph opens; null until then.
  FileDisplayWindow* fileDisplayWindow() const;

 private:
  void fillDrives();
  int driveOf(const QString& path) const;
  void showDirPath();
  void driveChanged(int index);
  void chooseFile(const QModelIndex& index);
  void applyPattern();
  void load();
  void showLoad(const LoadResult& r);
  void graph();

  QFileSystemModel* dirs_;
  QFileSystemModel* files_;
  QString dirPath_;
  QElapsedTimer pathSet_;  // since the path was last set
  QString chosen_;
  int16_t select_ = -1;
  QPointer<FileDisplayWindow> display_;
};

}  // namespace merida
