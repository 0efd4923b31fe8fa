#include "project/runcontrol.h"

#include <algorithm>
#include <exception>

#include "project/runcheck.h"
#include "project/runtexts.h"

namespace hollowmere {

TRunControl::TRunControl(TProject project, TRunServices services, bool batch)
    : project_(std::move(project)), services_(std::move(services)), batch_(batch), status_(runtexts::ready) {
  for (const TMapNode& root : project_.mapping) results_.push_back({root.source, root.target, {}});
  completed_.resize(results_.size());
}

TRunControl::~TRunControl() { endThreads(); }

/// Stops the threads that have been started and waits for them.
void TRunControl::endThreads() {
  flagThreads();
  // A thread may still wait to hand something over. The threads are the first of the loads.
  const auto running = [this](std::size_t thread) { return !loads_[thread]->finished(); };
  for (std::size_t thread = 0; thread < threads_.size(); ++thread)
    while (running(thread)) services_.mainThread.pump(20);
  threads_.clear();
}

bool TRunControl::makeChecks() {
  state_ = TRunState::Checking;
  if (!openFiles()) return false;
  const std::string fault =
      checkProject(project_, services_.stores, services_.bufferBytes, &stopChecks_,
                   [this](const auto& call) { services_.background(call, stopChecks_); });
  return fault.empty() || refuse(fault);
}

void TRunControl::closeFiles() {
  log_.close();
  disc_.close();
}

bool TRunControl::check() {
  if (!makeChecks()) return false;
  closeFiles();
  state_ = TRunState::Idle;
  return true;
}

bool TRunControl::start() {
  if (!makeChecks()) return false;
  if (!batch_ && !services_.prompt.confirm(runtexts::confirmStart)) {
    closeFiles();
    state_ = TRunState::Idle;
    return false;
  }
  try {
    initialise();
  } catch (const std::exception& error) {
    return refuse(runtexts::errorEncountered + std::string(error.what()));
  }
  return true;
}

bool TRunControl::openFiles() {
  return openFile(log_, project_.logFile, runtexts::openLog) &&
         openFile(disc_, project_.discFile, runtexts::openDisc);
}

bool TRunControl::openFile(TAppendFile& file, const std::string& name, const char* text) {
  const std::string reason = file.open(name);
  if (reason.empty()) return true;
  return refuse(text + name + runtexts::becauseOf + reason + runtexts::ensureNotUsed);
}

/// Ends the start with a message; in batch mode the log gets it as well.
bool TRunControl::refuse(const std::string& message) {
  // The system may have refused a thread when others ran already.
  endThreads();
  loads_.clear();
  if (batch_ && log_.isOpen()) {
    writeLine(log_, runtexts::batchError + project_.projectName + ": " + message);
    writeLine(log_, runtexts::terminating);
  }
  closeFiles();
  exitCode_ = 1;
  state_ = TRunState::Idle;
  status_ = runtexts::ready;
  services_.prompt.error(message);
  return false;
}

void TRunControl::initialise() {
  state_ = TRunState::Initialising;
  status_ = runtexts::working;
  log(runtexts::initializing);
  log(runtexts::initThreads);
  log(runtexts::initSources);
  countSources();
  log(runtexts::initTargets);
  log(runtexts::initMapping);
  makeThreads();
  if (!fileFault_.empty()) throw std::runtime_error(fileFault_);
  startTicks_ = services_.clock.ticks();
  startThreads();
  state_ = TRunState::Running;
}

void TRunControl::countSources() {
  log(project_.skipCount ? runtexts::notCounting : runtexts::counting);
  const TStoreConnector* store = services_.stores.find(project_.source.dbType);
  TStoreOptions options = sourceOptions(project_, services_.bufferBytes);
  options.stop = &stopChecks_;
  for (TDataSource& source : project_.dataSources) {
    source.count = 0;
    source.notes = store->makeNotes();
    const auto mappings = std::count_if(project_.mapping.begin(), project_.mapping.end(),
                                        [&](const TMapNode& root) { return root.source == source.name; });
    if (mappings == 0) continue;
    if (project_.skipCount) {
      log(runtexts::rootSource + source.name + runtexts::notCounted);
      continue;
    }
    try {
      services_.background([&] { source.count = store->count(options, source); }, stopChecks_);
    } catch (const std::exception& error) {
      throw std::runtime_error("Data source " + source.name + " caused the following error: " + error.what());
    }
    const char* unit = store->traits().countsBytes ? runtexts::bytes : runtexts::rows;
    log(runtexts::rootSource + source.name + runtexts::returns + std::to_string(source.count) + unit);
    // Each of its mappings reads the source once.
    maximum_ += source.count * mappings;
    addShares(source.count, mappings);
  }
}

/// The last thread takes what is left over.
void TRunControl::addShares(std::int64_t count, std::int64_t times) {
  shares_.resize(static_cast<std::size_t>(project_.degree));
  const std::int64_t share = count / project_.degree;
  for (std::int64_t& each : shares_) each += share * times;
  shares_.back() += (count - share * project_.degree) * times;
}

void TRunControl::makeThreads() {
  for (int number = 1; number <= project_.degree; ++number) {
    TLdConfig config;
    config.label = "Thread#" + std::to_string(number);
    log(services_.dates.localText(services_.clock.now() / 1000 * 1000) + runtexts::startInit + config.label);
    config.threadNumber = number;
    config.degree = static_cast<int>(project_.degree);
    config.sourceType = project_.source.dbType;
    config.targetType = project_.target.dbType;
    config.sourceConnection = project_.source.connection;
    config.targetConnection = project_.target.connection;
    config.dataSources = project_.dataSources;
    config.dataTargets = project_.dataTargets;
    config.mappings = project_.mapping;
    config.fetchLimit = project_.fetchLimit;
    config.bulkSize = project_.bulkInsert;
    config.bufferBytes = services_.bufferBytes;
    config.ignoreNulls = project_.ignoreNulls;
    config.counted = !project_.skipCount;
    loads_.push_back(std::make_unique<TLdThread>(std::move(config), services_.stores,
                                                 static_cast<TLoadHost&>(*this), services_.mainThread,
                                                 services_.clock, services_.dates));
    log(runtexts::initializingOf + loads_.back()->label() + runtexts::completed);
  }
}

void TRunControl::startThreads() {
  for (const auto& load : loads_) {
    log(runtexts::starting + load->label());
    threads_.emplace_back([thread = load.get()] { thread->execute(); });
  }
}

bool TRunControl::tick() {
  if (state_ != TRunState::Running && state_ != TRunState::Stopping) return false;
  const TRunProgress now = progress();
  if (state_ == TRunState::Running) checkThresholds(now.counts);
  if (now.runningThreads == 0) finish();
  return state_ != TRunState::Finished;
}

TRunProgress TRunControl::progress() const {
  TRunProgress progress;
  for (const auto& load : loads_) {
    progress.counts += load->counts();
    progress.done += load->position();
    (load->finished() ? progress.stoppedThreads : progress.runningThreads)++;
  }
  progress.maximum = maximum_;
  progress.milliseconds = (endTicks_ ? endTicks_ : services_.clock.ticks()) - startTicks_;
  return progress;
}

std::vector<TThreadProgress> TRunControl::threads() const {
  std::vector<TThreadProgress> threads;
  for (const auto& load : loads_)
    threads.push_back({load->label(), load->counts(), !load->finished(), load->failed(), load->position(),
                       threads.size() < shares_.size() ? shares_[threads.size()] : 0});
  return threads;
}

void TRunControl::checkThresholds(const TLoadCounts& counts) {
  const bool loaded = threshold(project_.loadNum, counts.loaded, runtexts::toLoad);
  const bool discarded = threshold(project_.discNum, counts.discarded, runtexts::discarded);
  const bool skipped = threshold(project_.skipNum, counts.skipped, runtexts::skipped);
  if (loaded || discarded || skipped) flagThreads();
}

bool TRunControl::threshold(std::int64_t limit, std::int64_t reached, const char* text) {
  if (limit <= 0 || reached < limit) return false;
  log(runtexts::threshold + std::to_string(limit) + text);
  log(runtexts::stopping);
  return true;
}

void TRunControl::flagThreads() {
  for (const auto& load : loads_) load->stop();
  if (state_ == TRunState::Running) state_ = TRunState::Stopping;
}

void TRunControl::stop() {
  if (state_ == TRunState::Running && services_.prompt.confirm(runtexts::confirmStop)) stopNow();
}

void TRunControl::stopNow() {
  stopChecks_.set();
  stopped_ = true;
  // A threshold may have done it already.
  if (state_ != TRunState::Running) return;
  log(runtexts::stopping);
  flagThreads();
}

bool TRunControl::allFailed() const {
  return std::all_of(loads_.begin(), loads_.end(), [](const auto& load) { return load->failed(); });
}

void TRunControl::finish() {
  for (std::jthread& thread : threads_) thread.join();
  threads_.clear();
  endTicks_ = services_.clock.ticks();
  writeSummary(progress());
  writeResult();
  closeFiles();
  status_ = runtexts::ready;
  state_ = TRunState::Finished;
  if (!fileFault_.empty()) services_.prompt.error(fileFault_);
}

void TRunControl::writeSummary(const TRunProgress& last) {
  log(runtexts::finished);
  log(runtexts::summary);
  log(runtexts::line);
  for (const TMappingResult& result : results_) {
    const std::string name = result.source + " -> " + result.target;
    log(name + " total loaded documents " + std::to_string(result.counts.loaded));
    log(name + " total discarded documents " + std::to_string(result.counts.discarded));
    log(name + " total skipped documents " + std::to_string(result.counts.skipped));
    log(name + " total processed documents " + std::to_string(result.counts.processed()));
  }
  log(runtexts::line);
  log("Total loaded rows/documents " + std::to_string(last.counts.loaded));
  log("Total discarded rows/documents " + std::to_string(last.counts.discarded));
  log("Total skipped rows/documents " + std::to_string(last.counts.skipped));
  log("Total processed rows/documents " + std::to_string(last.counts.processed()));
  const std::int64_t seconds = last.milliseconds / 1000;
  log("Processing time " + std::to_string(seconds / 3600) + " hours " + std::to_string(seconds / 60 % 60) +
      " minutes " + std::to_string(seconds % 60) + " seconds");
}

/// A run that did nothing, or could not report what it did, has not succeeded.
void TRunControl::writeResult() {
  std::string failure = fileFault_;
  if (failure.empty() && allFailed()) failure = "All load threads failed to initialize.";
  exitCode_ = failure.empty() ? 0 : 1;
  if (!batch_) return;
  if (failure.empty()) return log(stopped_ ? runtexts::stoppedByUser : runtexts::success);
  log(runtexts::batchError + project_.projectName + ": " + failure);
  log(runtexts::terminating);
  if (fileFault_.empty()) services_.prompt.error(failure);
}

void TRunControl::log(const std::string& lines) {
  if (services_.logged) services_.logged(lines);
  writeLine(log_, lines);
}

void TRunControl::disc(const std::string& lines) { writeLine(disc_, lines); }

/// A run whose reports are lost must not go on: the first failure stops it.
void TRunControl::writeLine(TAppendFile& file, const std::string& line) {
  const std::string reason = file.append(line);
  if (reason.empty() || !fileFault_.empty()) return;
  fileFault_ = "Unable to write to " + std::string(&file == &log_ ? "log file " : "discard file ") +
               file.name() + runtexts::becauseOf + reason + ". The load operation is stopped.";
  flagThreads();
}

void TRunControl::addTotals(std::size_t mapping, const TLoadCounts& counts, bool complete) {
  TMappingResult& result = results_[mapping];
  result.counts += counts;
  result.complete = complete && ++completed_[mapping] == project_.degree;
}

std::string closeRefusal(const TRunControl* run) {
  return run && run->busy() ? runtexts::stillRunning : std::string();
}

std::string exitRefusal(const std::vector<const TRunControl*>& runs) {
  for (const TRunControl* run : runs)
    if (run && run->busy())
      return runtexts::runningBefore + run->project().projectName + runtexts::runningBehind;
  return {};
}

}  // namespace hollowmere
