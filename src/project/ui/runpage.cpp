#include "project/ui/runpage.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/icons.h"

namespace hollowmere {

namespace {

/// How much of the log is kept for the display; the file has all of it.
constexpr int keptLines = 20000;
constexpr int showEveryMilliseconds = 100;

/// "hh:nn:ss"
QString clockText(std::int64_t milliseconds) {
  const std::int64_t seconds = milliseconds / 1000;
  return QStringLiteral("%1:%2:%3")
      .arg(seconds / 3600, 2, 10, QLatin1Char('0'))
      .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
      .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString numberText(std::int64_t number) { return QLocale().toString(static_cast<qlonglong>(number)); }

/// Seen well on the window's ground, be it light or dark.
QColor lossColour(const QPalette& palette) {
  const bool dark = palette.color(QPalette::Window).lightness() < 128;
  return dark ? QColor(255, 150, 110) : QColor(180, 40, 0);
}

QString percentText(const TThreadProgress& thread) {
  if (thread.maximum <= 0) return {};
  return QStringLiteral("%1 %").arg(std::min<std::int64_t>(100, thread.done * 100 / thread.maximum));
}

/// How long the rest takes when it goes on like this; empty when that cannot be told.
QString timeLeft(const TRunProgress& progress) {
  if (progress.maximum <= 0 || progress.done <= 0 || progress.runningThreads == 0) return {};
  const double rest = static_cast<double>(std::max<std::int64_t>(0, progress.maximum - progress.done)) /
                      static_cast<double>(progress.done);
  return clockText(static_cast<std::int64_t>(rest * static_cast<double>(progress.milliseconds)));
}

}  // namespace

TRunPage::TRunPage(TWindowContext& context, QWidget* parent) : QWidget(parent), context_(context) {
  auto* layout = new QVBoxLayout(this);
  auto* bar = new QHBoxLayout;
  start_ = new QPushButton(themeIcon("media-playback-start"), tr("&Start"), this);
  start_->setObjectName(QStringLiteral("bStart"));
  stop_ = new QPushButton(themeIcon("media-playback-stop"), tr("S&top"), this);
  stop_->setObjectName(QStringLiteral("bStop"));
  stop_->setEnabled(false);
  progress_ = new QProgressBar(this);
  progress_->setObjectName(QStringLiteral("pbOverall"));
  progress_->setAccessibleName(tr("Overall progress"));
  bar->addWidget(start_);
  bar->addWidget(stop_);
  bar->addWidget(progress_, 1);
  layout->addLayout(bar);
  auto* counts = new QHBoxLayout;
  loaded_ = addCount(counts, "lLoaded", tr("Loaded"));
  discarded_ = addCount(counts, "lDiscarded", tr("Discarded"));
  skipped_ = addCount(counts, "lSkipped", tr("Skipped"));
  processed_ = addCount(counts, "lProcessed", tr("Processed"));
  speed_ = addCount(counts, "lSpeed", tr("Documents per second"));
  time_ = addCount(counts, "lTime", tr("Time"));
  layout->addLayout(counts);
  makeThreads();
  layout->addWidget(threads_, 1);
  makeLog(layout);
  connect(start_, &QPushButton::clicked, this, &TRunPage::startWanted);
  connect(stop_, &QPushButton::clicked, this, &TRunPage::stopWanted);
  setFocusProxy(log_);
  clear();
}

void TRunPage::makeThreads() {
  const QStringList captions{tr("Thread"),    tr("State"),   tr("Progress"),       tr("Loaded"),
                             tr("Discarded"), tr("Skipped"), tr("Rows per second")};
  threads_ = new QTableWidget(0, static_cast<int>(captions.size()), this);
  threads_->setObjectName(QStringLiteral("gThreads"));
  threads_->setAccessibleName(tr("Threads"));
  threads_->setHorizontalHeaderLabels(captions);
  threads_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  threads_->setSelectionBehavior(QAbstractItemView::SelectRows);
  threads_->setTabKeyNavigation(false);
  threads_->verticalHeader()->hide();
  threads_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
}

void TRunPage::makeLog(QVBoxLayout* layout) {
  auto* logBar = new QHBoxLayout;
  filter_ = new QLineEdit(this);
  filter_->setObjectName(QStringLiteral("eLogFilter"));
  filter_->setPlaceholderText(tr("Show only log lines with this text"));
  filter_->setAccessibleName(tr("Log filter"));
  filter_->setClearButtonEnabled(true);
  auto* openLog = new QPushButton(tr("Open &Log"), this);
  openLog->setObjectName(QStringLiteral("bOpenLog"));
  auto* openDiscard = new QPushButton(tr("Open &Discard File"), this);
  openDiscard->setObjectName(QStringLiteral("bOpenDiscard"));
  logBar->addWidget(filter_, 1);
  logBar->addWidget(openLog);
  logBar->addWidget(openDiscard);
  layout->addLayout(logBar);
  log_ = new QPlainTextEdit(this);
  log_->setObjectName(QStringLiteral("mLog"));
  log_->setAccessibleName(tr("Load log"));
  log_->setReadOnly(true);
  log_->setTabChangesFocus(true);
  log_->setUndoRedoEnabled(false);
  log_->setMaximumBlockCount(keptLines);
  log_->setLineWrapMode(QPlainTextEdit::NoWrap);
  log_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  layout->addWidget(log_, 3);
  logTimer_.setInterval(showEveryMilliseconds);
  logTimer_.setSingleShot(true);
  connect(&logTimer_, &QTimer::timeout, this, &TRunPage::showLog);
  connect(filter_, &QLineEdit::textChanged, this, &TRunPage::filterLog);
  connect(openLog, &QPushButton::clicked, this, [this] { context_.openOutside(logFile_); });
  connect(openDiscard, &QPushButton::clicked, this, [this] { context_.openOutside(discardFile_); });
}

QLabel* TRunPage::addCount(QHBoxLayout* row, const char* name, const QString& caption) {
  auto* box = new QVBoxLayout;
  auto* title = new QLabel(caption, this);
  auto* value = new QLabel(this);
  value->setObjectName(QLatin1String(name));
  value->setAccessibleName(caption);
  QFont big = value->font();
  big.setPointSizeF(big.pointSizeF() * 1.5);
  value->setFont(big);
  box->addWidget(title);
  box->addWidget(value);
  row->addLayout(box);
  return value;
}

/// Counts of lost rows are bold and coloured as soon as there are any.
void TRunPage::setCount(QLabel* label, std::int64_t count, bool standsOut) {
  label->setText(numberText(count));
  QFont font = label->font();
  font.setBold(standsOut && count > 0);
  label->setFont(font);
  QPalette colours = palette();
  if (standsOut && count > 0) colours.setColor(QPalette::WindowText, lossColour(colours));
  label->setPalette(colours);
}

void TRunPage::clear() {
  for (QLabel* label : {loaded_, discarded_, skipped_, processed_}) setCount(label, 0, false);
  speed_->setText(QStringLiteral("0"));
  time_->setText(clockText(0));
  progress_->setRange(0, 100);
  progress_->setValue(0);
  threads_->setRowCount(0);
  lines_.clear();
  waiting_.clear();
  log_->clear();
}

void TRunPage::showRun(const TRunControl& run) {
  const TRunProgress progress = run.progress();
  setCount(loaded_, progress.counts.loaded, false);
  setCount(discarded_, progress.counts.discarded, true);
  setCount(skipped_, progress.counts.skipped, true);
  setCount(processed_, progress.counts.processed(), false);
  speed_->setText(QLocale().toString(static_cast<qlonglong>(progress.speed())));
  const QString left = timeLeft(progress);
  time_->setText(clockText(progress.milliseconds) +
                 (left.isEmpty() ? QString() : tr(" (%1 left)").arg(left)));
  // Without a count nobody knows how far it is.
  progress_->setRange(0, progress.maximum > 0 || !run.busy() ? 1000 : 0);
  if (progress.maximum > 0)
    progress_->setValue(
        static_cast<int>(std::min<std::int64_t>(1000, progress.done * 1000 / progress.maximum)));
  start_->setEnabled(!run.busy());
  stop_->setEnabled(run.state() == TRunState::Running);
  showThreads(run.threads(), progress.milliseconds);
}

void TRunPage::showThreads(const std::vector<TThreadProgress>& threads, std::int64_t milliseconds) {
  threads_->setRowCount(static_cast<int>(threads.size()));
  for (int row = 0; row < threads_->rowCount(); ++row)
    showThread(row, threads[static_cast<std::size_t>(row)], milliseconds);
}

void TRunPage::showThread(int row, const TThreadProgress& thread, std::int64_t milliseconds) {
  enum TColumn { Name, State, Progress, Loaded, Discarded, Skipped, Rate };
  const auto show = [this, row](int column, const QString& text, bool isLoss = false) {
    if (!threads_->item(row, column)) threads_->setItem(row, column, new QTableWidgetItem);
    QTableWidgetItem* item = threads_->item(row, column);
    item->setText(text);
    if (column >= Progress) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QFont font = threads_->font();
    font.setBold(isLoss);
    item->setFont(font);
    item->setForeground(isLoss ? QBrush(lossColour(palette())) : QBrush());
  };
  show(Name, QString::fromStdString(thread.label));
  show(State, thread.failed ? tr("Failed") : thread.running ? tr("Running") : tr("Stopped"), thread.failed);
  show(Progress, percentText(thread));
  show(Loaded, numberText(thread.counts.loaded));
  show(Discarded, numberText(thread.counts.discarded), thread.counts.discarded > 0);
  show(Skipped, numberText(thread.counts.skipped), thread.counts.skipped > 0);
  // A thread that has ended keeps the rate at which it worked.
  if (thread.running || !threads_->item(row, Rate) || threads_->item(row, Rate)->text().isEmpty())
    show(Rate, milliseconds > 0 ? numberText(thread.counts.processed() * 1000 / milliseconds) : QString());
}

void TRunPage::addLog(const std::string& lines) {
  waiting_
      << QString::fromStdString(lines).replace(QLatin1Char('\r'), QLatin1Char(' ')).split(QLatin1Char('\n'));
  if (!logTimer_.isActive()) logTimer_.start();
}

bool TRunPage::passes(const QString& line) const {
  return filter_->text().isEmpty() || line.contains(filter_->text(), Qt::CaseInsensitive);
}

void TRunPage::showLog() {
  // More than is kept need not be shown first.
  if (waiting_.size() > keptLines) waiting_ = waiting_.mid(waiting_.size() - keptLines);
  QStringList shown;
  for (const QString& line : std::as_const(waiting_))
    if (passes(line)) shown << line;
  if (!shown.isEmpty()) log_->appendPlainText(shown.join(QLatin1Char('\n')));
  lines_ << waiting_;
  if (lines_.size() > keptLines) lines_ = lines_.mid(lines_.size() - keptLines);
  waiting_.clear();
}

void TRunPage::filterLog() {
  QStringList shown;
  for (const QString& line : std::as_const(lines_))
    if (passes(line)) shown << line;
  log_->setPlainText(shown.join(QLatin1Char('\n')));
  log_->moveCursor(QTextCursor::End);
}

void TRunPage::setFiles(const std::string& logFile, const std::string& discardFile) {
  logFile_ = QString::fromStdString(logFile);
  discardFile_ = QString::fromStdString(discardFile);
}

QString TRunPage::status() const {
  return tr("%1 loaded, %2 discarded, %3 skipped").arg(loaded_->text(), discarded_->text(), skipped_->text());
}

}  // namespace hollowmere
