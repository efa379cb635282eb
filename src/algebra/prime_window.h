// The Prime window: prime factors, the listing of primes with its count, G.C.M. and L.C.M.
#pragma once

#include <QAbstractListModel>
#include <QTimer>
#include <memory>
#include <string>
#include <vector>

#include "algebra/primes.h"
#include "main/tool_window.h"
#include "ui_prime_window.h"

namespace merida {

// The window's list: a few plain lines, or a listing of primes (about a byte each) whose lines are
// made when the view asks for them, followed by the count line once the listing is complete.
class PrimeLinesModel : public QAbstractListModel {
  Q_OBJECT

 public:
  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  void setLines(const std::vector<std::string>& lines);
  void startListing();
  void appendPrimes(const std::vector<int32_t>& primes);
  void finishListing();
  // The text of a row, as shown.
  std::string line(int row) const;

 private:
  std::vector<std::string> lines_;
  bool listing_ = false;
  bool complete_ = false;
  PrimeStore primes_;
};

class PrimeWindow : public ToolWindow, public Ui::PrimeWindow {
  Q_OBJECT

 public:
  PrimeWindow(Engine& engine, AppState& state, QWidget* parent = nullptr);

  void retranslate() override;
  // What opening does: empty boxes and list, Option1 selected, captions in the display language.
  void reset();
  bool listing() const { return sieve_ != nullptr; }
  PrimeLinesModel* model() const { return model_; }

 signals:
  // A listing ended: complete with its count line, or stopped.
  void listingEnded(bool complete);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  std::string selectedText() const;
  void factor();
  void startListing();
  void continueListing();
  void stopListing(bool complete);
  void gcm();

  PrimeLinesModel* model_;
  QTimer* ticker_;
  std::unique_ptr<PrimeSieve> sieve_;
  std::vector<int32_t> chunk_;
};

// Shows the Prime window of the main window's Prime button: one per owner, created on first use.
PrimeWindow* ShowPrimeWindow(QWidget* owner, Engine& engine, AppState& state);

}  // namespace merida
