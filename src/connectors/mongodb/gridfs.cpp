#include "connectors/mongodb/gridfs.h"

#include <sys/stat.h>

#include <QCryptographicHash>
#include <algorithm>

#include "connectors/mongodb/mongolink.h"
#include "connectors/mongodb/mongotexts.h"
#include "json/json.h"

namespace hollowmere {

namespace {

/// Of a reply: some two megabytes.
constexpr std::int32_t chunksAtOnce = 8;

constexpr char stopped[] = "The operation was cancelled.";

[[noreturn]] void fail(const std::string& text) { throw TStoreError(TStoreErrorKind::Read, text); }

std::string text(const TObject& object, const char* name) {
  const TValue* member = object.find(name);
  return member && member->is(TKind::Text) ? member->asText() : std::string();
}

/// Drivers and shells have written these as any kind of number.
std::int64_t number(const TObject& object, const char* name) {
  const TValue* member = object.find(name);
  if (member && member->is(TKind::Int)) return member->asInt();
  if (member && member->is(TKind::Double)) return static_cast<std::int64_t>(member->asDouble());
  return 0;
}

TGridFsFile readFile(const TObject& document) {
  TGridFsFile file;
  if (const TValue* id = document.find("_id")) file.id = *id;
  file.name = text(document, "filename");
  file.length = number(document, "length");
  file.chunkSize = number(document, "chunkSize");
  if (const TValue* date = document.find("uploadDate"); date && date->is(TKind::DateTime))
    file.uploaded = date->asMilliseconds();
  file.md5 = text(document, "md5");
  return file;
}

struct TChunk {
  std::int64_t number = -1;
  std::string_view data;
};

TChunk readChunk(const bson_t& document) {
  TChunk chunk;
  bson_iter_t iter;
  if (!bson_iter_init(&iter, &document)) return chunk;
  while (bson_iter_next(&iter)) {
    const std::string_view key = bson_iter_key(&iter);
    if (key == "n") chunk.number = bson_iter_as_int64(&iter);
    if (key != "data" || !BSON_ITER_HOLDS_BINARY(&iter)) continue;
    std::uint32_t length = 0;
    const std::uint8_t* bytes = nullptr;
    bson_iter_binary(&iter, nullptr, &length, &bytes);
    chunk.data = {reinterpret_cast<const char*>(bytes), length};
  }
  return chunk;
}

}  // namespace

std::string TGridFsFile::lengthText() const { return std::to_string(length) + " Bytes"; }

TGridFs::TGridFs(const TStoreOptions& options, std::string database, std::string root)
    : options_(options),
      database_(std::move(database)),
      root_(std::move(root)),
      link_(std::make_unique<TMongoLink>(options, mongotexts::cannotConnect)) {}

TGridFs::~TGridFs() = default;

std::vector<TGridFsFile> TGridFs::query(const TObject& filter, const TObject& sort, std::int64_t limit) {
  const TMongoCollectionPtr files = link_->collection(database_, place(".files"));
  TObject options{{"sort", sort}};
  if (limit > 0) options.add("limit", limit);
  const TBsonPtr sentFilter = exactBson(filter);
  const TBsonPtr sentOptions = exactBson(options);
  const TMongoCursorPtr cursor(
      mongoc_collection_find_with_opts(files.get(), sentFilter.get(), sentOptions.get(), nullptr));
  std::vector<TGridFsFile> found;
  for (const TObject& document : TMongoLink::all(cursor)) found.push_back(readFile(document));
  return found;
}

std::vector<TGridFsFile> TGridFs::list(const std::string& namePattern) {
  TObject filter;
  if (!namePattern.empty()) filter.add("filename", TObject{{"$regex", namePattern}});
  return query(filter, {{"filename", 1}, {"uploadDate", 1}}, 0);
}

TGridFsFile TGridFs::find(const std::string& name) {
  const auto found = query({{"filename", name}}, {{"uploadDate", -1}}, 1);
  if (found.empty()) fail("There is no file " + name + " in GridFS.");
  return found.front();
}

void TGridFs::readChunks(const TGridFsFile& file, const std::function<void(std::string_view)>& take,
                         const TFileProgress& progress) {
  const TMongoCollectionPtr chunks = link_->collection(database_, place(".chunks"));
  const TBsonPtr filter = exactBson({{"files_id", file.id}});
  const TBsonPtr options = exactBson({{"sort", TObject{{"n", 1}}}, {"batchSize", chunksAtOnce}});
  const TMongoCursorPtr cursor(
      mongoc_collection_find_with_opts(chunks.get(), filter.get(), options.get(), nullptr));
  std::int64_t next = 0;
  std::int64_t done = 0;
  const bson_t* document = nullptr;
  while (mongoc_cursor_next(cursor.get(), &document)) {
    if (options_.stop && options_.stop->isSet()) fail(stopped);
    checkReply(*document);
    const TChunk chunk = readChunk(*document);
    if (chunk.number != next)
      fail("The file " + file.name + " in GridFS is damaged: chunk " + std::to_string(next) + " is missing.");
    ++next;
    done += static_cast<std::int64_t>(chunk.data.size());
    take(chunk.data);
    if (progress) progress(done, file.length);
  }
  checkCursor(cursor.get());
  if (done != file.length)
    fail("The file " + file.name + " in GridFS is damaged: it has " + std::to_string(done) +
         " bytes instead of " + std::to_string(file.length) + ".");
}

void TGridFs::get(const TGridFsFile& file, const std::string& path, TSafeFiles& files,
                  const TFileProgress& progress) {
  const auto out = files.create(path);
  readChunks(
      file, [&](std::string_view bytes) { out->write(bytes); }, progress);
  out->commit();
}

std::string TGridFs::getInto(const TGridFsFile& file, const std::string& folder, TSafeFiles& files,
                             const TFileProgress& progress) {
  const std::string path = (folder.ends_with('/') ? folder : folder + "/") + gridFsFileName(file.name);
  // Writing through a link would write elsewhere.
  struct stat found {};
  if (lstat(path.c_str(), &found) == 0 && !S_ISREG(found.st_mode))
    fail("Unable to write file " + path + ": there is something else of that name.");
  get(file, path, files, progress);
  return path;
}

void TGridFs::remove(const TValue& id) {
  bson_error_t error{};
  const TBsonPtr chunks = exactBson({{"files_id", id}});
  const TBsonPtr own = exactBson({{"_id", id}});
  if (!mongoc_collection_delete_many(link_->collection(database_, place(".chunks")).get(), chunks.get(),
                                     nullptr, nullptr, &error) ||
      !mongoc_collection_delete_one(link_->collection(database_, place(".files")).get(), own.get(), nullptr,
                                    nullptr, &error))
    throwMongoError(error);
}

std::string TGridFs::md5(const TGridFsFile& file, const TFileProgress& progress) {
  try {
    const TObject reply = link_->run(database_, {{"filemd5", file.id}, {"root", root_}});
    if (const std::string digest = text(reply, "md5"); !digest.empty()) return digest;
  } catch (const TMongoError& error) {
    if (error.accessRefused()) throw;
  }
  QCryptographicHash hash(QCryptographicHash::Md5);
  readChunks(
      file,
      [&](std::string_view bytes) {
        hash.addData({bytes.data(), static_cast<qsizetype>(bytes.size())});
      },
      progress);
  return hash.result().toHex().toStdString();
}

std::string gridFsFileName(const std::string& name) {
  const std::size_t slash = name.find_last_of("/\\");
  const std::string last = slash == std::string::npos ? name : name.substr(slash + 1);
  const bool odd = std::any_of(last.begin(), last.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
  });
  if (last.empty() || last == "." || last == ".." || odd)
    fail("The file name " + toJson(TValue(name)) + " cannot be used in a folder.");
  return last;
}

void offerToOpen(TPrompt& prompt, const std::string& path,
                 const std::function<void(const std::string&)>& open) {
  if (prompt.confirm(mongotexts::savedTo + path + "\r" + mongotexts::openIt) && open) open(path);
}

std::string gridFsFault(const std::string& error) {
  return mongotexts::gridFsFault + error + mongotexts::noPrivileges;
}

}  // namespace hollowmere
