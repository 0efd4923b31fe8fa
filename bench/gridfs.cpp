// The driver's own GridFS: stores a file, or fetches it by its name into one, as its documentation shows.

#include <mongoc/mongoc.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

void check(bool good, const bson_error_t& error) {
  if (!good) throw std::runtime_error(error.message);
}

void put(mongoc_gridfs_bucket_t* bucket, const std::string& file, const char* name) {
  bson_error_t error{};
  mongoc_stream_t* source = mongoc_stream_file_new_for_path(file.c_str(), O_RDONLY, 0);
  if (!source) throw std::runtime_error("no such file");
  check(mongoc_gridfs_bucket_upload_from_stream(bucket, name, source, nullptr, nullptr, &error), error);
  mongoc_stream_destroy(source);
}

void get(mongoc_gridfs_bucket_t* bucket, const std::string& file, const char* name) {
  bson_t filter = BSON_INITIALIZER;
  BSON_APPEND_UTF8(&filter, "filename", name);
  mongoc_cursor_t* cursor = mongoc_gridfs_bucket_find(bucket, &filter, nullptr);
  const bson_t* document = nullptr;
  bson_iter_t iter;
  if (!mongoc_cursor_next(cursor, &document) || !bson_iter_init_find(&iter, document, "_id"))
    throw std::runtime_error("not in GridFS");
  bson_error_t error{};
  mongoc_stream_t* target = mongoc_stream_file_new_for_path(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  check(target && mongoc_gridfs_bucket_download_to_stream(bucket, bson_iter_value(&iter), target, &error),
        error);
  mongoc_stream_destroy(target);
  mongoc_cursor_destroy(cursor);
  bson_destroy(&filter);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fputs("usage: hm-bench-gridfs put|get URI FILE NAME\n", stderr);
    return 2;
  }
  mongoc_init();
  mongoc_client_t* client = mongoc_client_new(argv[2]);
  mongoc_database_t* database = mongoc_client_get_database(client, "bench");
  int code = 0;
  try {
    bson_error_t error{};
    mongoc_gridfs_bucket_t* bucket = mongoc_gridfs_bucket_new(database, nullptr, nullptr, &error);
    check(bucket != nullptr, error);
    (std::strcmp(argv[1], "put") == 0 ? put : get)(bucket, argv[3], argv[4]);
    mongoc_gridfs_bucket_destroy(bucket);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "hm-bench-gridfs: %s\n", error.what());
    code = 1;
  }
  mongoc_database_destroy(database);
  mongoc_client_destroy(client);
  mongoc_cleanup();
  return code;
}
