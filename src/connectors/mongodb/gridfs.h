#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/mongodb/mongoerror.h"
#include "connectors/storeapi.h"
#include "settings/prompt.h"
#include "settings/safefile.h"

namespace hollowmere {

class TMongoLink;

/// A file in GridFS.
struct TGridFsFile {
  TValue id;
  std::string name;
  std::int64_t length = 0;
  std::int64_t chunkSize = 0;
  std::int64_t uploaded = 0;  ///< milliseconds since 1970 UTC
  std::string md5;            ///< as it was stored; often empty

  /// "600000 Bytes"
  [[nodiscard]] std::string lengthText() const;
};

/// Told the bytes done and those of the whole file.
using TFileProgress = std::function<void(std::int64_t done, std::int64_t all)>;

/// The files of one database, in the layout that the drivers share: collections <root>.files and
/// <root>.chunks, chunks of 261120 bytes. A file goes through in pieces: memory stays within a few megabytes
/// whatever its size. Owns a connection; belongs to one thread. The stop flag of the options ends a transfer
/// between two pieces. Throws TMongoError for what the server refuses, TStoreError for the rest, TFileError
/// for the disk's faults.
class TGridFs {
 public:
  static constexpr std::int32_t chunkBytes = 261120;

  /// Throws TStoreError (Connect).
  TGridFs(const TStoreOptions& options, std::string database, std::string root = "fs");
  ~TGridFs();

  /// All files, or those whose name matches the regular expression, by name and moment of upload.
  std::vector<TGridFsFile> list(const std::string& namePattern = {});
  /// The newest of that name. Throws TStoreError when there is none.
  TGridFsFile find(const std::string& name);

  /// Stores a file of the disk under a name (empty: its own, without folders); gives its identifier. When it
  /// fails or is stopped, nothing of it stays. Until it is done it is not listed.
  TValue put(const std::string& path, const std::string& name = {}, const TFileProgress& progress = {});
  /// Writes a file to that path, whole or not at all.
  void get(const TGridFsFile& file, const std::string& path, TSafeFiles& files,
           const TFileProgress& progress = {});
  /// Into a folder, under its own name without folders; gives the path. Throws TStoreError for a name that
  /// would lead out of the folder.
  std::string getInto(const TGridFsFile& file, const std::string& folder, TSafeFiles& files,
                      const TFileProgress& progress = {});
  void remove(const TValue& id);
  /// In hexadecimal: the server's own, or where it no longer has the command, computed from the chunks.
  std::string md5(const TGridFsFile& file, const TFileProgress& progress = {});

 private:
  class TUpload;

  [[nodiscard]] std::string place(const char* part) const { return root_ + part; }
  void makeIndexes();
  void readChunks(const TGridFsFile& file, const std::function<void(std::string_view)>& take,
                  const TFileProgress& progress);
  std::vector<TGridFsFile> query(const TObject& filter, const TObject& sort, std::int64_t limit);

  TStoreOptions options_;
  std::string database_;
  std::string root_;
  std::unique_ptr<TMongoLink> link_;
};

/// The name under which a file of GridFS may be written into a folder: without what stands before the last
/// slash or backslash. Throws TStoreError when nothing usable is left.
std::string gridFsFileName(const std::string& name);

/// Tells the user where a file was saved, and on Yes opens it.
void offerToOpen(TPrompt& prompt, const std::string& path,
                 const std::function<void(const std::string&)>& open);

/// The text around a refused access to GridFS.
std::string gridFsFault(const std::string& error);

}  // namespace hollowmere
