#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "settings/cipher.h"
#include "settings/connectionrecord.h"
#include "settings/prompt.h"
#include "settings/safefile.h"

namespace hollowmere {

/// The list file cannot be read or written. what() is the fixed text with the path; reason() says why,
/// without anything of the file's content.
class TConnectionListError : public std::runtime_error {
 public:
  TConnectionListError(const std::string& text, const std::string& reason)
      : std::runtime_error(text), reason_(reason) {}
  [[nodiscard]] const std::string& reason() const { return reason_; }

 private:
  std::string reason_;
};

/// The connections that the user keeps for later. A plain value.
class TConnectionList {
 public:
  [[nodiscard]] const std::vector<ConnectionConfig>& records() const { return records_; }
  /// Whether a record text is in the list: the whole text, letter case ignored.
  [[nodiscard]] bool connListFind(std::string_view recordText) const;

  void add(ConnectionConfig record) { records_.push_back(std::move(record)); }
  /// The place must be in the list (an assertion).
  void replace(std::size_t place, ConnectionConfig record);
  void remove(std::size_t place);

  bool operator==(const TConnectionList&) const = default;

 private:
  std::vector<ConnectionConfig> records_;
};

/// The file of that list: enciphered bytes of {"connections":[record, ...]}, for its owner only. Cipher and
/// files outlive it.
class TConnectionListFile {
 public:
  TConnectionListFile(std::string path, const TCipher& cipher, TSafeFiles& files)
      : path_(std::move(path)), cipher_(cipher), files_(files) {}

  [[nodiscard]] const std::string& path() const { return path_; }
  /// A missing file is an empty list. Throws TConnectionListError; the file stays as it is.
  [[nodiscard]] TConnectionList load() const;
  /// Replaces the file whole. One that is there but holds no list is first renamed to a free name beside
  /// it, which is given back. Throws TConnectionListError.
  std::optional<std::string> save(const TConnectionList& list) const;

 private:
  [[nodiscard]] std::optional<std::string> keepForeignFile() const;

  std::string path_;
  const TCipher& cipher_;
  TSafeFiles& files_;
};

/// Asks whether a new connection is to be kept, unless the list has it; on Yes adds it, saves the list and
/// gives true. A list that cannot be saved is reported.
bool offerToKeep(TConnectionList& list, const TConnectionListFile& file, const ConnectionConfig& record,
                 TPrompt& prompt);

}  // namespace hollowmere
