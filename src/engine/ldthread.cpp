#include "engine/ldthread.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include "engine/ldtexts.h"
#include "engine/nullfilter.h"
#include "json/json.h"

namespace hollowmere {

namespace {

/// How much of a row that cannot be read stands in the log.
constexpr std::size_t rowTextInLog = 2000;

/// The first count characters of UTF-8 text, none of them cut.
std::string firstCharacters(const std::string& text, std::size_t count) {
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    const bool startsCharacter = (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
    if (startsCharacter && count-- == 0) break;
  }
  return text.substr(0, at);
}

bool isBlank(const std::string& text) { return text.find_first_not_of(" \t\r\n") == std::string::npos; }

}  // namespace

TLdThread::TLdThread(TLdConfig config, const TStoreRegistry& stores, TLoadHost& host, TMainThread& mainThread,
                     const TClock& clock, const TDateTimeText& dates)
    : config_(std::move(config)),
      stores_(stores),
      host_(host),
      mainThread_(mainThread),
      clock_(clock),
      dates_(dates),
      assembler_(config_.ignoreNulls, dates_,
                 [this](const std::string& name, const TObject& parent, const TRowSink& row) {
                   const TDataSource* source = getDSbyName(name);
                   if (!source) throw TStoreError(TStoreErrorKind::Read, ldtexts::noSource + name);
                   reader_->nested(*source, parent, row);
                 }) {}

TLdThread::~TLdThread() = default;

void TLdThread::execute() {
  try {
    log(ldtexts::started + timeText());
    log(ldtexts::initializing);
    initConnections();
    log(ldtexts::connected);
    forceFlush();
  } catch (const std::exception& error) {
    log(std::string(ldtexts::initError) + error.what());
    forceFlush();
    stop_.set();
    failed_ = true;
    finished_ = true;
    return;
  }
  runMappings();
  writeEnd();
  finished_ = true;
}

void TLdThread::initConnections() {
  const TStoreConnector* source = stores_.find(config_.sourceType);
  const TStoreConnector* target = stores_.find(config_.targetType);
  if (!source || !target)
    throw TStoreError(TStoreErrorKind::Unsupported,
                      "Unknown database type " + (source ? config_.targetType : config_.sourceType));
  TStoreOptions options;
  options.fetchLimit = config_.fetchLimit;
  options.bulkSize = config_.bulkSize;
  options.bufferBytes = config_.bufferBytes;
  options.ignoreNulls = config_.ignoreNulls;
  options.stop = &stop_;
  options.remark = [this](const std::string& line) { log(line); };
  options.connection = config_.sourceConnection;
  reader_ = source->connectSource(options);
  options.connection = config_.targetConnection;
  writer_ = target->connectTarget(options);
}

void TLdThread::closeConnections() {
  reader_.reset();
  writer_.reset();
}

void TLdThread::runMappings() {
  bool more = true;
  while (more && !stop_.isSet()) {
    sourceCounts_ = {};
    bool opened = false, complete = false;
    try {
      if (!loadMapConfig() || stop_.isSet()) return;
      opened = true;
      const TMapNode& node = config_.mappings[mapping_];
      log(ldtexts::loading + node.source + ldtexts::arrow + node.target);
      forceFlush();
      loadRows();
      settle();
      reportMapping();
      complete = !stop_.isSet();
    } catch (const std::exception& error) {
      // A stop ends waiting for a store by an error: no fault of the data source's.
      const bool cancelled = stop_.isSet();
      log((cancelled ? "" : ldtexts::generalError) + std::string(error.what()));
      // What the writer still holds has an outcome too.
      if (opened) settle();
      if (cancelled) reportMapping();
      more = std::string_view(error.what()).find(ldtexts::noRowsMark) != std::string_view::npos;
      // Not counted, "no rows" says that their number is not known.
      complete = more && !cancelled && config_.counted;
    }
    if (opened || complete) addUp(complete);
  }
}

/// Opens the next root mapping: false when there is none left.
bool TLdThread::loadMapConfig() {
  if (nextMapping_ >= config_.mappings.size()) return false;
  mapping_ = nextMapping_++;
  const TMapNode& node = config_.mappings[mapping_];
  const TDataSource* source = getDSbyName(node.source);
  if (!source) throw TStoreError(TStoreErrorKind::DataSource, ldtexts::noRootSource + node.source);
  const TDataTarget* target = getDTbyName(node.target);
  if (!target) throw TStoreError(TStoreErrorKind::DataSource, "Unable to find data target: " + node.target);
  plans_.assign(1, makePlan(node));
  share_ = makeShare(*source);
  reader_->openRoot(*source, share_);
  writer_->openTarget(*target);
  rowsRead_ = 0;
  positionBefore_ = position_;
  return true;
}

TShare TLdThread::makeShare(const TDataSource& source) {
  TShare share;
  share.number = config_.threadNumber;
  share.degree = config_.degree;
  // Not counted: one thread reads to the end, several would not know their parts.
  if (!config_.counted && config_.degree == 1) return share;
  const std::int64_t count = getDSCountByName(source.name);
  if (count == 0)
    throw TStoreError(TStoreErrorKind::DataSource, ldtexts::dataSource + source.name + ldtexts::noRows);
  if (config_.degree > count)
    throw TStoreError(TStoreErrorKind::DataSource, ldtexts::degreeTooHigh + source.name);
  std::int64_t rows = count / config_.degree;
  if (rows == 0)
    throw TStoreError(TStoreErrorKind::DataSource,
                      ldtexts::noRowNumber + source.name + ldtexts::noRowNumberHint);
  share.start = (config_.threadNumber - 1) * rows;
  if (config_.degree > 1 && config_.threadNumber == config_.degree) rows = count - share.start;
  share.rows = rows;
  if (config_.degree > 1) {
    log(ldtexts::startRow + std::to_string(share.start + 1));
    log(ldtexts::finishRow + std::to_string(share.start + rows));
    log(ldtexts::totalRows + std::to_string(rows));
  }
  if (stores_.find(config_.sourceType)->traits().countsBytes) share.rows.reset();
  return share;
}

void TLdThread::loadRows() {
  while (!stop_.isSet() && loadRow()) continue;
}

/// Reads, assembles and writes one row; false at the end of the share. Only an error that says so is the
/// row's alone: after any other the reader might give the same row for ever.
bool TLdThread::loadRow() {
  std::optional<TObject> document;
  try {
    document = getJsonObj();
  } catch (const TStoreError& error) {
    if (error.kind() != TStoreErrorKind::Read) throw;
    reportReadError(error.what());
    return true;
  }
  if (!document) return false;
  insert(std::move(*document));
  return true;
}

std::optional<TObject> TLdThread::getJsonObj() {
  // One row beyond the share is asked for: the reader knows its own bounds.
  if (share_.rows && !reader_->keepsItsShare() && rowsRead_ > *share_.rows) return std::nullopt;
  ++rowsRead_;
  std::optional<TObject> row = reader_->next();
  position_.store(positionBefore_ + reader_->position().value_or(rowsRead_), std::memory_order_relaxed);
  if (row) process(*row);
  return row;
}

/// A value that cannot be converted costs its row.
void TLdThread::process(TObject& row) {
  try {
    assembler_.process(plans_.front(), config_.mappings[mapping_].source, row);
  } catch (const TStoreError&) {
    throw;
  } catch (const std::runtime_error& error) {
    throw TStoreError(TStoreErrorKind::Read, error.what());
  }
}

void TLdThread::insert(TObject&& document) {
  if (config_.ignoreNulls) removeNulls(document);
  writer_->write(std::move(document), *this);
}

void TLdThread::reportReadError(const std::string& message) {
  skipped(1);
  log(ldtexts::readError + message);
  log(ldtexts::errorRow);
  log(ldtexts::separator);
  std::string text = reader_->rowText();
  log(firstCharacters(text, rowTextInLog) + "...");
  log(ldtexts::separator);
  disc(std::move(text));
}

/// Makes the writer tell what became of the last documents.
void TLdThread::settle() {
  lastFlush_ = true;
  try {
    writer_->flush(*this);
  } catch (const std::exception& error) {
    log(std::string(ldtexts::generalError) + error.what());
  }
  lastFlush_ = false;
}

void TLdThread::reportMapping() {
  const TMapNode& node = config_.mappings[mapping_];
  log((stop_.isSet() ? ldtexts::cancelledLoading : ldtexts::finishedLoading) + node.source + ldtexts::arrow +
      node.target);
  writeCounts("", sourceCounts_);
}

void TLdThread::addUp(bool complete) {
  mainThread_.run([this, complete] { updateTotals(complete); });
  forceFlush();
  totals_ += sourceCounts_;
}

void TLdThread::updateTotals(bool complete) { host_.addTotals(mapping_, sourceCounts_, complete); }

/// "Loaded 3 documents." and its sisters; the prefix makes it "Total loaded 3 documents.".
void TLdThread::writeCounts(const char* prefix, const TLoadCounts& counts) {
  const bool total = *prefix != '\0';
  const auto line = [&](const char* alone, const char* behind, std::int64_t count) {
    log(std::string(prefix) + (total ? behind : alone) + std::to_string(count) + ldtexts::documents);
  };
  line("Loaded ", "loaded ", counts.loaded);
  line("Discarded ", "discarded ", counts.discarded);
  line("Skipped ", "skipped ", counts.skipped);
  line("Processed ", "processed ", counts.processed());
}

void TLdThread::writeEnd() {
  log((stop_.isSet() ? ldtexts::cancelled : ldtexts::finished) + timeText());
  writeCounts("Total ", totals_);
  log(ldtexts::separator);
  forceFlush();
  log(ldtexts::closing);
  closeConnections();
  log(ldtexts::closed);
  log(ldtexts::stopped);
  forceFlush();
}

TLoadCounts TLdThread::counts() const {
  return {allLoaded_.load(std::memory_order_relaxed), allDiscarded_.load(std::memory_order_relaxed),
          allSkipped_.load(std::memory_order_relaxed)};
}

void TLdThread::stored(std::int64_t count) {
  sourceCounts_.loaded += count;
  allLoaded_.fetch_add(count, std::memory_order_relaxed);
}

void TLdThread::skipped(std::int64_t count) {
  sourceCounts_.skipped += count;
  allSkipped_.fetch_add(count, std::memory_order_relaxed);
}

void TLdThread::refused(std::string documentText, const std::string& message) {
  ++sourceCounts_.discarded;
  allDiscarded_.fetch_add(1, std::memory_order_relaxed);
  log((lastFlush_ ? "" : ldtexts::loadError) + message);
  disc(std::move(documentText));
}

const TDataSource* TLdThread::getDSbyName(std::string_view name) const {
  for (const TDataSource& source : config_.dataSources)
    if (source.name == name) return &source;
  return nullptr;
}

std::int64_t TLdThread::getDSCountByName(std::string_view name) const {
  const TDataSource* source = getDSbyName(name);
  return source ? source->count : 0;
}

const TDataTarget* TLdThread::getDTbyName(std::string_view name) const {
  for (const TDataTarget& target : config_.dataTargets)
    if (target.name == name) return &target;
  return nullptr;
}

std::string TLdThread::getSASLPwdByName(std::string_view name) const {
  const TDataTarget* target = getDTbyName(name);
  return target ? target->saslPwd : std::string();
}

void TLdThread::log(const std::string& message) {
  if (isBlank(message) || config_.label.empty()) return;
  queue_.addLog(timeText() + ": " + config_.label + ": " + message);
  writeToFiles();
}

/// Whole seconds: lines stand in columns.
std::string TLdThread::timeText() const { return dates_.localText(clock_.now() / 1000 * 1000); }

void TLdThread::disc(std::string text) {
  if (isBlank(text)) return;
  queue_.addDisc(text);
  writeToFiles();
}

/// Crosses to the main thread only when there is something to hand over.
void TLdThread::writeToFiles() {
  if (!queue_.due(stop_.isSet())) return;
  mainThread_.run([this] {
    queue_.drain([this](const std::string& lines) { host_.log(lines); },
                 [this](const std::string& lines) { host_.disc(lines); });
  });
}

void TLdThread::forceFlush() {
  queue_.force();
  writeToFiles();
}

}  // namespace hollowmere
