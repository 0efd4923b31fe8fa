#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "connectors/loadtypes.h"
#include "connectors/storeerror.h"
#include "json/value.h"

namespace hollowmere {

/// What a connection needs to know. Copied by the store; stop, when given, outlives the connection.
struct TStoreOptions {
  TValue connection;                  ///< the connection record, or a file name as text
  std::int64_t fetchLimit = 100;      ///< rows asked for at a time
  std::int64_t bulkSize = 0;          ///< documents written at a time; 0 and 1: one by one
  std::size_t bufferBytes = 1000000;  ///< read buffer of files
  bool ignoreNulls = true;            ///< leave null columns out of rows
  const TStopFlag* stop = nullptr;    ///< waiting for the store ends soon after this is set
  /// Takes a line for the log: something that is no fault, but that a user should know. May be empty.
  std::function<void(const std::string&)> remark;
};

/// Takes the rows of a nested query one by one; false means that no more are wanted.
using TRowSink = std::function<bool(TObject&&)>;

/// An open source connection. Belongs to one thread. Calls in this order: any of openRoot(), then next()
/// until it gives nothing; nested() between them at will. The destructor disconnects.
class TSourceReader {
 public:
  virtual ~TSourceReader() = default;

  /// Opens the root cursor on a share; ends the one before. Throws TStoreError (DataSource).
  virtual void openRoot(const TDataSource& source, const TShare& share) = 0;
  /// The next row, its members named as the source names them; nothing at the end of the share. Throws
  /// TStoreError: Read when only this row is lost and the next can be had, DataSource when the cursor cannot
  /// go on; so does any other error.
  virtual std::optional<TObject> next() = 0;
  /// The text of the row that next() read last, whole, also when it threw Read. Made on demand.
  virtual std::string rowText() = 0;
  /// Bytes read so far of the root source, for a store that counts bytes; nothing: rows count.
  [[nodiscard]] virtual std::optional<std::int64_t> position() const { return std::nullopt; }
  /// Whether the reader reads its share by a measure of its own (a range of keys), not by row numbers: it
  /// then may have more or fewer rows than the share says. Asked after openRoot().
  [[nodiscard]] virtual bool keepsItsShare() const { return false; }
  /// Runs a query whose parameters are bound from the parent row (its fields as they were read) and hands
  /// over its rows. Throws TStoreError (Read): the parent row is lost.
  virtual void nested(const TDataSource& source, const TObject& parent, const TRowSink& row) = 0;
};

/// Learns what became of the documents handed to a writer.
class TOutcomeSink {
 public:
  virtual ~TOutcomeSink() = default;
  virtual void stored(std::int64_t count) = 0;
  virtual void skipped(std::int64_t count) = 0;
  /// documentText is the JSON text for the discard file; message says why, without secrets.
  virtual void refused(std::string documentText, const std::string& message) = 0;
};

/// An open target connection. Belongs to one thread. openTarget(), then write() at will, flush(), perhaps
/// the next openTarget(). Each document's outcome is reported exactly once: during write(), of this or a
/// later document, or at the latest during flush(). The destructor disconnects and writes nothing more.
class TTargetWriter {
 public:
  virtual ~TTargetWriter() = default;

  /// Throws TStoreError (DataSource) when the target cannot be used at all.
  virtual void openTarget(const TDataTarget& target) = 0;
  /// Does not throw for a document that is refused; that goes to the sink.
  virtual void write(TObject&& document, TOutcomeSink& sink) = 0;
  virtual void flush(TOutcomeSink& sink) = 0;
};

/// A field that every document for a store must have.
struct TRequiredField {
  std::string name;     ///< compared without regard to letter case
  std::string message;  ///< shown with the data target's name behind it when the field is not mapped
};

/// What the run control must know of a store.
struct TStoreTraits {
  bool parallel = true;                         ///< more than one thread may use it
  bool countsBytes = false;                     ///< a data source's count is bytes, not rows
  bool connectionIsText = false;                ///< the connection value is a file name, not a record
  std::optional<TRequiredField> requiredField;  ///< as a target
};

/// One kind of store. Stateless: may be used from every thread.
class TStoreConnector {
 public:
  virtual ~TStoreConnector() = default;

  /// The exact name shown to users and kept in project files.
  [[nodiscard]] virtual const std::string& dbType() const = 0;
  [[nodiscard]] virtual const TStoreTraits& traits() const = 0;

  /// Connect, log in, and prove it. Throw TStoreError (Connect).
  virtual std::unique_ptr<TSourceReader> connectSource(const TStoreOptions& options) const = 0;
  virtual std::unique_ptr<TTargetWriter> connectTarget(const TStoreOptions& options) const = 0;
  /// The same, but nothing is opened, created or changed for good: for the checks before a run.
  virtual void checkSource(const TStoreOptions& options) const = 0;
  virtual void checkTarget(const TStoreOptions& options) const = 0;

  /// Fields that every document for a target must have, as the store's schema says; compared without regard
  /// to letter case. Asked of the server before a run; empty where the store knows none, or not the target.
  /// Throws TStoreError (Connect).
  [[nodiscard]] virtual std::vector<std::string> requiredFields(const TStoreOptions& /*options*/,
                                                                const TDataTarget& /*target*/) const {
    return {};
  }

  /// Where count() leaves what the readers of the same run can use, as TDataSource::notes; null: nowhere.
  [[nodiscard]] virtual std::shared_ptr<TSourceNotes> makeNotes() const { return {}; }
  /// Rows (or bytes) of a root data source. Throws TStoreError.
  virtual std::int64_t count(const TStoreOptions& options, const TDataSource& source) const = 0;
  /// Whether a definition can be a query of this store, as far as its text alone tells: empty when it can,
  /// else what is wrong and where. Asked while it is written, so it is quick and reaches for no server.
  [[nodiscard]] virtual std::string checkQuery(const TValue& /*definition*/) const { return {}; }
  /// What the store asks of root data sources before a run; empty when all is well, else the message.
  [[nodiscard]] virtual std::string checkRootSource(const TDataSource& /*source*/, int /*degree*/) const {
    return {};
  }
};

}  // namespace hollowmere
