// How TGridFs stores a file.
#include <sys/stat.h>

#include <QFile>
#include <chrono>
#include <filesystem>

#include "connectors/mongodb/gridfs.h"
#include "connectors/mongodb/mongolink.h"

namespace hollowmere {

namespace {

/// Of a message: some two megabytes, twice in memory.
constexpr std::size_t chunksAtOnce = 8;

std::int64_t now() {
  const auto time = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

TValue newIdentifier() {
  bson_oid_t oid;
  bson_oid_init(&oid, nullptr);
  TObjectId id;
  std::copy(std::begin(oid.bytes), std::end(oid.bytes), id.begin());
  return TValue(id);
}

}  // namespace

/// One file on its way. What it has stored goes again with it, unless it was finished.
class TGridFs::TUpload {
 public:
  TUpload(TGridFs& to, TFileProgress progress)
      : to_(to),
        progress_(std::move(progress)),
        chunks_(to.link_->collection(to.database_, to.place(".chunks"))),
        unchecked_(exactBson({{"validate", false}})),
        head_(exactBson({{"files_id", id_}})),
        buffer_(chunkBytes, '\0') {
    for (std::size_t i = 0; i < chunksAtOnce; ++i) documents_.emplace_back(bson_new());
  }

  TValue run(const std::string& path, const std::string& name) {
    QFile file(QString::fromStdString(path));
    if (QFile::exists(file.fileName()) && !fileExists(path))
      throw TFileError("Unable to read file", path, "it is not a file");
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
      throw TFileError("Unable to read file", path, file.errorString().toStdString());
    try {
      sendChunks(file, path);
      finish(name);
    } catch (const std::exception& error) {
      withdraw(error.what());
      throw;
    }
    return id_;
  }

 private:
  void sendChunks(QFile& file, const std::string& path) {
    const std::int64_t all = file.size();
    while (const std::size_t count = fill(file, path)) {
      if (to_.options_.stop && to_.options_.stop->isSet())
        throw TStoreError(TStoreErrorKind::Write, "The operation was cancelled.");
      send(count);
      if (progress_) progress_(length_, std::max(all, length_));
      if (count < chunksAtOnce) return;
    }
  }

  /// The next chunks into documents_; how many there are.
  std::size_t fill(QFile& file, const std::string& path) {
    std::size_t count = 0;
    while (count < chunksAtOnce) {
      const std::int64_t got = readChunk(file, path);
      if (got == 0) break;
      bson_t* document = documents_[count++].get();
      bson_reinit(document);
      bson_oid_t own;
      bson_oid_init(&own, nullptr);
      BSON_APPEND_OID(document, "_id", &own);
      bson_concat(document, head_.get());
      BSON_APPEND_INT32(document, "n", number_++);
      bson_append_binary(document, "data", 4, BSON_SUBTYPE_BINARY,
                         reinterpret_cast<const std::uint8_t*>(buffer_.data()),
                         static_cast<std::uint32_t>(got));
      length_ += got;
      if (got < chunkBytes) break;
    }
    return count;
  }

  /// Full unless the file is at its end.
  std::int64_t readChunk(QFile& file, const std::string& path) {
    std::int64_t got = 0;
    while (got < chunkBytes) {
      const std::int64_t now = file.read(buffer_.data() + got, chunkBytes - got);
      if (now < 0) throw TFileError("Unable to read file", path, file.errorString().toStdString());
      if (now == 0) break;
      got += now;
    }
    return got;
  }

  void send(std::size_t count) {
    const bson_t* documents[chunksAtOnce] = {};
    for (std::size_t i = 0; i < count; ++i) documents[i] = documents_[i].get();
    bson_error_t error{};
    sent_ = true;
    if (!mongoc_collection_insert_many(chunks_.get(), documents, count, unchecked_.get(), nullptr, &error))
      throwMongoError(error);
  }

  void finish(const std::string& name) {
    const TBsonPtr document = exactBson({{"_id", id_},
                                         {"filename", name},
                                         {"length", TValue::wideInt(length_)},
                                         {"chunkSize", chunkBytes},
                                         {"uploadDate", TValue::dateTime(now())}});
    const TMongoCollectionPtr files = to_.link_->collection(to_.database_, to_.place(".files"));
    bson_error_t error{};
    sent_ = true;
    if (!mongoc_collection_insert_one(files.get(), document.get(), nullptr, nullptr, &error))
      throwMongoError(error);
  }

  /// By a connection of its own: the one in use may be lost, or its user's patience at an end.
  void withdraw(const std::string& reason) {
    if (!sent_) return;
    try {
      TStoreOptions options = to_.options_;
      options.stop = nullptr;
      TGridFs(options, to_.database_, to_.root_).remove(id_);
    } catch (const std::exception& error) {
      throw TStoreError(TStoreErrorKind::Write, reason,
                        "What was stored of the file could not be removed: " + std::string(error.what()));
    }
  }

  TGridFs& to_;
  TFileProgress progress_;
  TValue id_ = newIdentifier();
  TMongoCollectionPtr chunks_;
  TBsonPtr unchecked_;
  TBsonPtr head_;
  std::string buffer_;
  std::vector<TBsonPtr> documents_;
  std::int32_t number_ = 0;
  std::int64_t length_ = 0;
  bool sent_ = false;
};

TValue TGridFs::put(const std::string& path, const std::string& name, const TFileProgress& progress) {
  makeIndexes();
  const std::string given = name.empty() ? std::filesystem::path(path).filename().string() : name;
  return TUpload(*this, progress).run(path, given);
}

/// As drivers do before the first file. Who may not make them can store files all the same.
void TGridFs::makeIndexes() {
  try {
    if (!query({}, {{"_id", 1}}, 1).empty()) return;
    const TObject byNumber{
        {"key", TObject{{"files_id", 1}, {"n", 1}}}, {"name", "files_id_1_n_1"}, {"unique", true}};
    const TObject byName{{"key", TObject{{"filename", 1}, {"uploadDate", 1}}},
                         {"name", "filename_1_uploadDate_1"}};
    static_cast<void>(
        link_->run(database_, {{"createIndexes", place(".chunks")}, {"indexes", TList{byNumber}}}));
    static_cast<void>(
        link_->run(database_, {{"createIndexes", place(".files")}, {"indexes", TList{byName}}}));
  } catch (const TMongoError& error) {
    if (!error.accessRefused()) throw;
  }
}

}  // namespace hollowmere
