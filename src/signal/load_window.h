// The Load window: picks a data file from the file system and reads it into the record table.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QString>
#include <QTreeView>

#include "main/tool_window.h"

class QFileSystemModel;

namespace merida {

class FileDisplayWindow;
struct LoadResult;

class LoadWindow : public ToolWindow {
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

  QComboBox* Drive1;
  QTreeView* Dir1;
  QListView* File1;
  QCheckBox* Check1;
  QLineEdit *Text1, *Text2, *Text3, *Text4;
  QLabel* Label1;
  QPushButton *Command1, *Command2, *Command3;

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
  QString chosen_;
  int16_t select_ = -1;
  QPointer<FileDisplayWindow> display_;
};

}  // namespace merida
