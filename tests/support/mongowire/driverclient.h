#pragma once

#include <mongoc/mongoc.h>

#include <memory>
#include <string>
#include <vector>

#include "support/mongowire/bsondoc.h"

namespace hollowmere::mongowire {

/// libmongoc as the tests of the wire server use it: one client, one collection, error API 2.
class TDriverClient {
 public:
  explicit TDriverClient(const std::string& uri, const char* database = "shop",
                         const char* collection = "rows");

  struct TAnswer {
    bool ok = false;
    bson_error_t error{};
    TBson reply;
    std::string text() const { return error.message; }
  };
  TAnswer command(const std::string& json);
  TAnswer insertOne(const std::string& json);
  TAnswer bulk(const std::vector<TBson>& documents, bool ordered, const char* writeConcern = nullptr);
  /// As JSON texts; the error, if any, goes to `error`.
  std::vector<std::string> find(const std::string& filter = "{}", const std::string& options = "{}",
                                bson_error_t* error = nullptr);
  std::int64_t count(const std::string& filter = "{}", bson_error_t* error = nullptr);
  mongoc_collection_t* collection() { return collection_.get(); }
  mongoc_client_t* client() { return client_.get(); }

 private:
  template <auto destroy>
  struct TDestroy {
    template <typename T>
    void operator()(T* handle) const {
      destroy(handle);
    }
  };
  std::unique_ptr<mongoc_client_t, TDestroy<mongoc_client_destroy>> client_;
  std::unique_ptr<mongoc_collection_t, TDestroy<mongoc_collection_destroy>> collection_;
};

/// {"_id": first}, {"_id": first + 1}, ... each with a text of `padding` bytes.
std::vector<TBson> numberedRows(int first, int count, std::size_t padding = 10);

}  // namespace hollowmere::mongowire
