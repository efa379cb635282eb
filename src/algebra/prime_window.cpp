// The Prime window: the boxes, the option buttons, the three operations and a listing that runs in
// slices between events so that the window answers and Close stops it at once.
#include "algebra/prime_window.h"

#include <QCloseEvent>
#include <QElapsedTimer>

namespace merida {

int PrimeLinesModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  if (!listing_) return static_cast<int>(lines_.size());
  return static_cast<int>(primes_.size()) + (complete_ ? 1 : 0);
}

QVariant PrimeLinesModel::data(const QModelIndex& index, int role) const {
  if (role != Qt::DisplayRole || !index.isValid() || index.row() >= rowCount()) return {};
  return QString::fromStdString(line(index.row()));
}

std::string PrimeLinesModel::line(int row) const {
  if (!listing_) return lines_[static_cast<size_t>(row)];
  if (static_cast<size_t>(row) < primes_.size()) return IntegerText(primes_.at(static_cast<size_t>(row)));
  return CountLine(static_cast<int64_t>(primes_.size()));
}

void PrimeLinesModel::setLines(const std::vector<std::string>& lines) {
  beginResetModel();
  lines_ = lines;
  listing_ = false;
  complete_ = false;
  primes_.clear();
  endResetModel();
}

void PrimeLinesModel::startListing() {
  beginResetModel();
  lines_.clear();
  listing_ = true;
  complete_ = false;
  primes_.clear();
  endResetModel();
}

void PrimeLinesModel::appendPrimes(const std::vector<int32_t>& primes) {
  if (primes.empty()) return;
  const int first = rowCount();
  beginInsertRows(QModelIndex(), first, first + static_cast<int>(primes.size()) - 1);
  primes_.append(primes);
  endInsertRows();
}

void PrimeLinesModel::finishListing() {
  const int row = rowCount();
  beginInsertRows(QModelIndex(), row, row);
  complete_ = true;
  endInsertRows();
}

PrimeWindow::PrimeWindow(Engine& engine, AppState& state, QWidget* parent)
    : ToolWindow(engine, state, parent), model_(new PrimeLinesModel(this)), ticker_(new QTimer(this)) {
  setupUi(this);
  // The form has the view lay out its rows in batches: it lays out every row again after each
  // insertion, and in batches never holds the event loop for long, whatever the number of rows.
  List1->setModel(model_);

  connect(Command1, &QPushButton::clicked, this, &PrimeWindow::factor);
  connect(Command2, &QPushButton::clicked, this, &PrimeWindow::startListing);
  connect(Command4, &QPushButton::clicked, this, &PrimeWindow::gcm);
  // Enter factors the number in the box it was typed into.
  connect(Text1, &QLineEdit::returnPressed, this, [this] {
    Option1->setChecked(true);
    Command1->click();
  });
  connect(Text2, &QLineEdit::returnPressed, this, [this] {
    Option2->setChecked(true);
    Command1->click();
  });
  connect(Command3, &QPushButton::clicked, this, &QWidget::close);
  connect(ticker_, &QTimer::timeout, this, &PrimeWindow::continueListing);

  reset();
}

void PrimeWindow::reset() {
  if (listing()) stopListing(false);
  Text1->clear();
  Text2->clear();
  Option1->setChecked(true);
  model_->setLines({});
  retranslate();
}

void PrimeWindow::retranslate() { retranslateUi(this); }

std::string PrimeWindow::selectedText() const {
  return (Option1->isChecked() ? Text1 : Text2)->text().toStdString();
}

void PrimeWindow::factor() {
  if (listing()) stopListing(false);
  auto lines = FactorLines(selectedText());
  if (!lines.empty()) model_->setLines(lines);
}

void PrimeWindow::startListing() {
  if (listing()) stopListing(false);
  engine_.StopRequested = 0;
  auto n = ReadInteger(selectedText());
  if (!n || *n <= 1) return;
  model_->startListing();
  sieve_ = std::make_unique<PrimeSieve>(*n);
  continueListing();
  if (listing()) ticker_->start(0);
}

// One slice of the listing: segments for about 20 ms, then back to the event loop.
void PrimeWindow::continueListing() {
  if (!sieve_) return;
  QElapsedTimer slice;
  slice.start();
  do {
    if (engine_.StopRequested == 1) {
      stopListing(false);
      return;
    }
    if (!sieve_->next(chunk_)) {
      stopListing(true);
      return;
    }
    model_->appendPrimes(chunk_);
  } while (slice.elapsed() < 20);
}

void PrimeWindow::stopListing(bool complete) {
  ticker_->stop();
  sieve_.reset();
  if (complete) model_->finishListing();
  emit listingEnded(complete);
}

void PrimeWindow::gcm() {
  if (listing()) stopListing(false);
  engine_.StopRequested = 0;
  auto lines = GcmLines(Text1->text().toStdString(), Text2->text().toStdString(), japanese(),
                        [this] { return engine_.StopRequested == 1; });
  if (lines) model_->setLines(*lines);
}

void PrimeWindow::closeEvent(QCloseEvent* event) {
  if (listing()) stopListing(false);
  ToolWindow::closeEvent(event);
}

PrimeWindow* ShowPrimeWindow(QWidget* owner, Engine& engine, AppState& state) {
  auto* window = owner->findChild<PrimeWindow*>(QString(), Qt::FindDirectChildrenOnly);
  if (!window) {
    window = new PrimeWindow(engine, state, owner);
  } else if (window->isHidden()) {
    window->reset();
  }
  window->show();
  window->raise();
  window->activateWindow();
  return window;
}

}  // namespace merida
