#include "support/toystore.h"

#include <chrono>
#include <new>
#include <thread>

#include "connectors/jsonquery.h"
#include "json/json.h"

namespace hollowmere {

namespace {

using TServerPtr = std::shared_ptr<TToyServer>;

std::string member(const TValue& record, std::string_view name) {
  const TValue* value = record.is(TKind::Object) ? record.asObject().find(name) : nullptr;
  return value && value->is(TKind::Text) ? value->asText() : std::string();
}

bool matches(const TObject& document, const TObject& filter) {
  for (const TMember& wanted : filter) {
    const TValue* value = document.find(wanted.name);
    if (!value || !(*value == wanted.value)) return false;
  }
  return true;
}

std::string refusal(int code, const std::string& message) {
  return "Error Code: " + std::to_string(code) + "\rError Message: " + message;
}

class TToyReader : public TSourceReader {
 public:
  TToyReader(TServerPtr server, const TStoreOptions& options)
      : server_(std::move(server)), stop_(options.stop) {
    server_->connect(options);
  }

  void openRoot(const TDataSource& source, const TShare& share) override {
    rows_ = select(source, TObject());
    at_ = share.degree > 1 ? static_cast<std::size_t>(share.start) : 0;
    end_ = rows_.size();
    if (share.degree > 1 && share.rows) end_ = std::min(end_, at_ + static_cast<std::size_t>(*share.rows));
    row_.reset();
  }

  std::optional<TObject> next() override {
    const TToyFaults& faults = server_->faults;
    while (faults.neverAnswers && !(stop_ && stop_->isSet())) pause(2);
    if (faults.neverAnswers) throw TStoreError(TStoreErrorKind::DataSource, "The toy was told to stop.");
    if (faults.pauseMilliseconds > 0) pause(faults.pauseMilliseconds);
    if (at_ >= end_) return std::nullopt;
    if (read_ + 1 == faults.memoryEndsAt) throw std::bad_alloc();
    row_ = rows_[at_++];
    ++read_;
    if (read_ == faults.cursorBreaksAt)
      throw TStoreError(TStoreErrorKind::DataSource, "The toy cursor broke.");
    if (faults.unreadableRows.contains(read_))
      throw TStoreError(TStoreErrorKind::Read, "The toy row is torn.");
    return row_;
  }

  std::string rowText() override { return row_ ? toJson(*row_, TTextForm::Markers) : std::string(); }

  void nested(const TDataSource& source, const TObject& parent, const TRowSink& row) override {
    for (TObject& found : select(source, parent))
      if (!row(std::move(found))) return;
  }

 private:
  static void pause(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }

  std::vector<TObject> select(const TDataSource& source, const TObject& parent) const {
    TObject filter;
    try {
      filter = TJsonQuery(member(source.definition, "query")).bind(parent);
    } catch (const TJsonError& error) {
      throw TStoreError(TStoreErrorKind::DataSource, "Invalid toy query.", error.what());
    }
    std::vector<TObject> found;
    for (TObject& document : server_->documents(member(source.definition, "collection")))
      if (matches(document, filter)) found.push_back(std::move(document));
    return found;
  }

  TServerPtr server_;
  const TStopFlag* stop_;
  std::vector<TObject> rows_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
  int read_ = 0;
  std::optional<TObject> row_;
};

class TToyWriter : public TTargetWriter {
 public:
  TToyWriter(TServerPtr server, const TStoreOptions& options)
      : server_(std::move(server)),
        batchSize_(options.bulkSize > 1 ? static_cast<std::size_t>(options.bulkSize) : 1) {
    server_->connect(options);
  }

  void openTarget(const TDataTarget& target) override {
    if (server_->faults.loseTargetOnOpen)
      throw TStoreError(TStoreErrorKind::DataSource, "The toy target is gone.");
    collection_ = target.target;
  }

  void write(TObject&& document, TOutcomeSink& sink) override {
    batch_.push_back(std::move(document));
    if (batch_.size() >= batchSize_) send(sink);
  }

  void flush(TOutcomeSink& sink) override {
    send(sink);
    tell(sink);
  }

 private:
  struct TOutcome {
    bool stored;
    std::string text;
    std::string message;
  };

  void send(TOutcomeSink& sink) {
    if (server_->faults.lateOutcomes) tell(sink);
    for (TObject& document : batch_) outcomes_.push_back(store(std::move(document)));
    batch_.clear();
    if (!server_->faults.lateOutcomes) tell(sink);
  }

  TOutcome store(TObject&& document) {
    ++written_;
    std::string text = toJson(document);
    if (server_->faults.refuseAll || server_->faults.refusedDocuments.contains(written_))
      return {false, std::move(text),
              refusal(121, "Document " + std::to_string(written_) + " failed validation")};
    if (server_->insert(collection_, std::move(document))) return {true, {}, {}};
    return {false, std::move(text), refusal(11000, "duplicate key")};
  }

  void tell(TOutcomeSink& sink) {
    for (TOutcome& outcome : outcomes_) {
      if (outcome.stored)
        sink.stored(1);
      else
        sink.refused(std::move(outcome.text), outcome.message);
    }
    outcomes_.clear();
  }

  TServerPtr server_;
  std::size_t batchSize_;
  std::string collection_;
  std::vector<TObject> batch_;
  std::vector<TOutcome> outcomes_;
  int written_ = 0;
};

class TToyConnector : public TStoreConnector {
 public:
  TToyConnector(TServerPtr server, std::string dbType)
      : dbType_(std::move(dbType)), server_(std::move(server)) {}

  [[nodiscard]] const std::string& dbType() const override { return dbType_; }
  [[nodiscard]] const TStoreTraits& traits() const override { return server_->traits; }

  std::unique_ptr<TSourceReader> connectSource(const TStoreOptions& options) const override {
    return std::make_unique<TToyReader>(server_, options);
  }
  std::unique_ptr<TTargetWriter> connectTarget(const TStoreOptions& options) const override {
    return std::make_unique<TToyWriter>(server_, options);
  }
  void checkSource(const TStoreOptions& options) const override { server_->connect(options); }
  void checkTarget(const TStoreOptions& options) const override { server_->connect(options); }
  [[nodiscard]] std::vector<std::string> requiredFields(const TStoreOptions& /*options*/,
                                                        const TDataTarget& /*target*/) const override {
    return server_->requiredFields;
  }

  std::int64_t count(const TStoreOptions& /*options*/, const TDataSource& source) const override {
    if (server_->faults.countFails) throw TStoreError(TStoreErrorKind::DataSource, "The toy cannot count.");
    return static_cast<std::int64_t>(server_->documents(member(source.definition, "collection")).size());
  }

  [[nodiscard]] std::string checkRootSource(const TDataSource& source, int degree) const override {
    const bool ordered = member(source.definition, "collection") != "unordered";
    return ordered || degree == 1 ? std::string() : "The toy has no order in " + source.name;
  }

 private:
  std::string dbType_;
  TServerPtr server_;
};

}  // namespace

void TToyServer::fill(const std::string& collection, const std::vector<TObject>& documents) {
  for (const TObject& document : documents) insert(collection, document);
}

void TToyServer::fillNumbered(const std::string& collection, int count) {
  for (int i = 1; i <= count; ++i)
    insert(collection, TObject{{"_id", i}, {"name", "row " + std::to_string(i)}});
}

std::vector<TObject> TToyServer::documents(const std::string& collection) const {
  const std::lock_guard lock(mutex_);
  const auto found = collections_.find(collection);
  return found == collections_.end() ? std::vector<TObject>() : found->second;
}

bool TToyServer::insert(const std::string& collection, TObject document) {
  const std::lock_guard lock(mutex_);
  std::vector<TObject>& held = collections_[collection];
  if (const TValue* id = document.find("_id"))
    for (const TObject& other : held)
      if (const TValue* otherId = other.find("_id"); otherId && *otherId == *id) return false;
  held.push_back(std::move(document));
  return true;
}

void TToyServer::connect(const TStoreOptions& options) {
  const std::lock_guard lock(mutex_);
  ++connections_;
  if (faults.refuseConnections || faults.refusedConnections.contains(connections_))
    throw TStoreError(TStoreErrorKind::Connect, "Unable to reach the toy.", "connection refused");
  if (!faults.password.empty() && member(options.connection, "password") != faults.password)
    throw TStoreError(TStoreErrorKind::Connect, "Unable to reach the toy.", "Authentication failed.");
}

std::unique_ptr<TStoreConnector> makeToyConnector(std::shared_ptr<TToyServer> server, std::string dbType) {
  return std::make_unique<TToyConnector>(std::move(server), std::move(dbType));
}

TDataSource toySource(const std::string& name, const std::string& collection, const std::string& query) {
  return {name, TObject{{"collection", collection}, {"query", query}}, 0};
}

}  // namespace hollowmere
