#include "connectors/hbase/hbasewriter.h"

#include <algorithm>

#include "connectors/hbase/hbaserow.h"
#include "json/json.h"

namespace hollowmere {

namespace {

/// What a server takes as one message unless it is set up otherwise, and of that what a batch may fill.
constexpr std::size_t frameBytes = 2 * 1024 * 1024;
constexpr std::size_t batchBytes = frameBytes - 16 * 1024;

bool isHopeless(const THBaseFault& fault) {
  return fault.kind() == THBaseFaultKind::Unreachable || fault.kind() == THBaseFaultKind::TimedOut ||
         fault.kind() == THBaseFaultKind::Stopped;
}

}  // namespace

THBaseWriter::THBaseWriter(const TStoreOptions& options)
    : client_(connectHBase(options, "Unable to connect to target HBase database.")),
      batchSize_(options.bulkSize > 1 ? static_cast<std::size_t>(options.bulkSize) : 1),
      filling_(std::make_unique<TPending>()),
      sent_(std::make_unique<TPending>()) {}

/// A table that is missing or disabled would lose every document, with the server's retries for each.
void THBaseWriter::openTarget(const TDataTarget& target) {
  if (target.target.empty())
    throw TStoreError(TStoreErrorKind::DataSource, "Data target " + target.name + " names no HBase table.");
  table_ = target.target;
  families_.clear();
  try {
    for (THBaseFamily& family : client_->families(table_)) families_.insert(std::move(family.name));
    if (!client_->isEnabled(table_)) throw THBaseFault(THBaseFaultKind::Disabled, disabledText());
  } catch (const THBaseFault& fault) {
    throw TStoreError(TStoreErrorKind::DataSource, fault.what());
  }
}

void THBaseWriter::write(TObject&& document, TOutcomeSink& sink) {
  if (batchSize_ > 1)
    addToBatch(std::move(document), sink);
  else
    putAlone(document, sink);
}

/// Adds the row of a document; false when it is refused.
bool THBaseWriter::encode(const TObject& document, THBaseBatch& rows, TOutcomeSink& sink) const {
  try {
    addDocument(document, rows);
    return true;
  } catch (const std::runtime_error& error) {
    sink.refused(toJson(document), error.what());
  }
  return false;
}

bool THBaseWriter::familiesKnown(const TObject& document) const {
  return std::all_of(document.begin(), document.end(), [this](const TMember& member) {
    const std::size_t colon = member.name.find(':');
    return colon == std::string::npos || families_.contains(std::string_view(member.name).substr(0, colon));
  });
}

void THBaseWriter::addToBatch(TObject&& document, TOutcomeSink& sink) {
  if (!encode(document, filling_->rows, sink)) return;
  const std::size_t bytes = filling_->rows.lastRowBytes();
  // The server says by itself what is wrong with these, and the others of a batch are spared.
  const bool alone = bytes > batchBytes || !familiesKnown(document);
  const bool full = filling_->rows.bytes() > batchBytes;
  if (alone || full) {
    filling_->rows.dropRow();
    send(sink);
    if (alone) {
      settle(sink);
      return putAlone(document, sink);
    }
    addDocument(document, filling_->rows);
  }
  filling_->documents.push_back(std::move(document));
  if (filling_->documents.size() >= batchSize_) send(sink);
}

void THBaseWriter::putAlone(const TObject& document, TOutcomeSink& sink) {
  single_.clear();
  if (!encode(document, single_, sink)) return;
  try {
    put(single_);
    sink.stored(1);
  } catch (const THBaseFault& fault) {
    sink.refused(toJson(document), refusalText(fault, single_.bytes()));
  }
}

/// A server closes connections that were idle for a minute, so a lost one is tried anew once.
void THBaseWriter::put(THBaseBatch& row) {
  try {
    client_->mutateRow(table_, row);
  } catch (const THBaseFault& fault) {
    if (fault.kind() != THBaseFaultKind::Lost || client_->stopped()) throw;
    client_->mutateRow(table_, row);
  }
}

void THBaseWriter::flush(TOutcomeSink& sink) {
  send(sink);
  settle(sink);
}

/// Sends the batch that was filled, once the one before it is settled.
void THBaseWriter::send(TOutcomeSink& sink) {
  if (filling_->documents.empty()) return;
  settle(sink);
  std::swap(filling_, sent_);
  try {
    client_->sendRows(table_, sent_->rows);
  } catch (const THBaseFault& fault) {
    resolve(fault, *sent_, sink);
    sent_->documents.clear();
    sent_->rows.clear();
  }
}

void THBaseWriter::settle(TOutcomeSink& sink) {
  if (sent_->documents.empty()) return;
  try {
    client_->awaitRows(table_);
    sink.stored(static_cast<std::int64_t>(sent_->documents.size()));
  } catch (const THBaseFault& fault) {
    resolve(fault, *sent_, sink);
  }
  sent_->documents.clear();
  sent_->rows.clear();
}

/// Finds out what became of a batch that failed as a whole.
void THBaseWriter::resolve(THBaseFault fault, TPending& batch, TOutcomeSink& sink) {
  if (fault.kind() == THBaseFaultKind::Lost && !client_->stopped()) {
    try {
      client_->mutateRows(table_, batch.rows);
      sink.stored(static_cast<std::int64_t>(batch.documents.size()));
      return;
    } catch (const THBaseFault& second) {
      fault = second;
    }
  }
  if (!isHopeless(fault)) return takeApart(batch, sink);
  const std::string reason = refusalText(fault, batch.rows.bytes());
  for (const TObject& document : batch.documents) sink.refused(toJson(document), reason);
}

void THBaseWriter::takeApart(const TPending& batch, TOutcomeSink& sink) {
  std::string hopeless;
  for (const TObject& document : batch.documents) {
    if (!hopeless.empty()) {
      sink.refused(toJson(document), hopeless);
      continue;
    }
    single_.clear();
    if (!encode(document, single_, sink)) continue;
    try {
      put(single_);
      sink.stored(1);
    } catch (const THBaseFault& fault) {
      const std::string reason = refusalText(fault, single_.bytes());
      if (isHopeless(fault)) hopeless = reason;
      sink.refused(toJson(document), reason);
    }
  }
}

std::string THBaseWriter::disabledText() const { return "The table " + table_ + " is disabled."; }

/// A server goes on trying to write into a table that was disabled for longer than an answer is waited for.
bool THBaseWriter::foundDisabled() {
  try {
    return !client_->isEnabled(table_);
  } catch (const THBaseFault&) {
    return false;
  }
}

std::string THBaseWriter::refusalText(const THBaseFault& fault, std::size_t bytes) {
  if (fault.kind() == THBaseFaultKind::TimedOut && !client_->stopped() && foundDisabled())
    return disabledText();
  if (fault.kind() != THBaseFaultKind::Lost || bytes <= batchBytes) return fault.what();
  return std::string(fault.what()) + " The row is " + std::to_string(bytes) + " bytes long; a server takes " +
         std::to_string(frameBytes) +
         " bytes at most unless hbase.regionserver.thrift.framed.max_frame_size_in_mb allows more.";
}

}  // namespace hollowmere
