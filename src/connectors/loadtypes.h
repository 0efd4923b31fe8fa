#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "json/value.h"

namespace hollowmere {

/// What a store finds out about a source while it counts it, for the threads that read it in the same run.
/// Only the store knows what it is. Safe from every thread.
class TSourceNotes {
 public:
  TSourceNotes() = default;
  TSourceNotes(const TSourceNotes&) = delete;
  TSourceNotes& operator=(const TSourceNotes&) = delete;
  virtual ~TSourceNotes() = default;
};

/// One named query of a project. The definition is the store's query object, or plain text for a store
/// whose sources are files.
struct TDataSource {
  std::string name;
  TValue definition;
  std::int64_t count = 0;                 ///< rows, or bytes where the store counts bytes; 0 when not counted
  std::shared_ptr<TSourceNotes> notes{};  ///< of this run; null: none

  bool operator==(const TDataSource&) const = default;
};

/// One named place that receives documents.
struct TDataTarget {
  std::string name;
  std::string target;   ///< the store's object: collection, table, bucket, file
  std::string saslPwd;  ///< password of the object itself, where a store has such

  bool operator==(const TDataTarget&) const = default;
};

/// One node of the mapping tree. At the top level source and target name a data source and a data target.
struct TMapNode {
  std::string target;
  std::string source;
  std::string targetType = "String";
  std::vector<TMapNode> children;

  bool operator==(const TMapNode&) const = default;
};

/// The part of a root data source that one thread reads: thread number of degree, and the rows from start
/// when they are known. A plain value, so that several machines can each run some of the shares.
struct TShare {
  int number = 1;  ///< from 1
  int degree = 1;
  std::int64_t start = 0;            ///< rows to pass over, from 0
  std::optional<std::int64_t> rows;  ///< rows to read; nothing: to the end
};

/// Tells work in another thread to end soon. Set once, never cleared.
class TStopFlag {
 public:
  void set() {
    std::int64_t never = 0;
    setAt_.compare_exchange_strong(never, now(), std::memory_order_relaxed);
  }
  [[nodiscard]] bool isSet() const { return setAt_.load(std::memory_order_relaxed) != 0; }
  /// Milliseconds since it was set; 0 as long as it is not.
  [[nodiscard]] std::int64_t milliseconds() const {
    const std::int64_t since = setAt_.load(std::memory_order_relaxed);
    return since == 0 ? 0 : now() - since;
  }

 private:
  static std::int64_t now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
  }

  std::atomic<std::int64_t> setAt_ = 0;
};

}  // namespace hollowmere
