// The modern form against a SQL database: the same rows, the same statements, the same results.

#include <gtest/gtest.h>
#include <mongoc/mongoc.h>
#include <sqlite3.h>

#include <algorithm>
#include <cmath>

#include "connectors/mongodb/bsonvalue.h"
#include "json/json.h"
#include "sqlmongo/sqltomongo.h"
#include "sqlmongo/statementmaker.h"
#include "support/jsshell.h"
#include "support/localserver.h"

namespace hollowmere {

namespace {

using TRow = std::vector<std::string>;
using TRows = std::vector<TRow>;

std::string numberForm(double number) {
  char text[40];
  std::snprintf(text, sizeof text, "%.9g", number == 0 ? 0 : number);
  return text;
}

std::string valueForm(const TValue* value) {
  if (!value || value->isNull()) return "null";
  if (value->is(TKind::Int)) return numberForm(static_cast<double>(value->asInt()));
  if (value->is(TKind::Double)) return numberForm(value->asDouble());
  return toJson(*value);
}

class TSqlite {
 public:
  TSqlite() {
    sqlite3_open(":memory:", &database_);
    run("pragma case_sensitive_like = on");
  }
  TSqlite(const TSqlite&) = delete;
  TSqlite& operator=(const TSqlite&) = delete;
  ~TSqlite() { sqlite3_close(database_); }

  TRows run(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    TRows rows;
    if (sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
      ADD_FAILURE() << sqlite3_errmsg(database_) << " in " << sql;
      return rows;
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
      TRow row;
      for (int i = 0; i < sqlite3_column_count(statement); ++i) row.push_back(form(statement, i));
      rows.push_back(row);
    }
    sqlite3_finalize(statement);
    return rows;
  }

 private:
  static std::string form(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
      case SQLITE_NULL: return "null";
      case SQLITE_TEXT:
        return toJson(
            TValue(std::string_view(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)))));
      default: return numberForm(sqlite3_column_double(statement, column));
    }
  }

  sqlite3* database_ = nullptr;
};

TBsonPtr toBson(const TValue& value) {
  const std::string text = toJson(value);
  bson_error_t error;
  TBsonPtr made(bson_new_from_json(reinterpret_cast<const std::uint8_t*>(text.data()),
                                   static_cast<ssize_t>(text.size()), &error));
  if (!made.get()) throw std::runtime_error(error.message + (" in " + text));
  return made;
}

/// Sends what the shell would send for a noted command.
class TMongo {
 public:
  explicit TMongo(std::uint16_t port) {
    mongoc_init();
    mongoc_log_set_handler(nullptr, nullptr);
    client_ = mongoc_client_new(("mongodb://127.0.0.1:" + std::to_string(port)).c_str());
    collection_ = mongoc_client_get_collection(client_, "sqltest", "t");
  }
  TMongo(const TMongo&) = delete;
  TMongo& operator=(const TMongo&) = delete;
  ~TMongo() {
    mongoc_collection_destroy(collection_);
    mongoc_client_destroy(client_);
  }

  void fill(const std::vector<TObject>& documents) {
    const TBsonPtr all(bson_new());
    check(mongoc_collection_delete_many(collection_, all.get(), nullptr, nullptr, &error_));
    mongoc_bulk_operation_t* bulk = mongoc_collection_create_bulk_operation_with_opts(collection_, nullptr);
    for (const TObject& document : documents) mongoc_bulk_operation_insert(bulk, toBson(document).get());
    const bool done = mongoc_bulk_operation_execute(bulk, nullptr, &error_) != 0;
    mongoc_bulk_operation_destroy(bulk);
    check(done);
  }

  TRows run(const TValue& noted, const std::vector<std::string>& columns) {
    const TList& calls = noted.asObject().find("calls")->asList();
    const std::string name = calls[0].asObject().find("name")->asText();
    const TList& arguments = calls[0].asObject().find("arguments")->asList();
    const TBsonPtr first = toBson(arguments.at(0));
    if (name == "find") return rowsOf(find(first, calls), columns);
    if (name == "aggregate")
      return rowsOf(
          mongoc_collection_aggregate(collection_, MONGOC_QUERY_NONE, first.get(), nullptr, nullptr),
          columns);
    if (name == "countDocuments")
      return {{numberForm(static_cast<double>(
          mongoc_collection_count_documents(collection_, first.get(), nullptr, nullptr, nullptr, &error_)))}};
    if (name == "updateMany")
      check(mongoc_collection_update_many(collection_, first.get(), toBson(arguments.at(1)).get(), nullptr,
                                          nullptr, &error_));
    else if (name == "deleteMany")
      check(mongoc_collection_delete_many(collection_, first.get(), nullptr, nullptr, &error_));
    else
      throw std::runtime_error("unexpected call " + name);
    return {};
  }

 private:
  void check(bool done) const {
    if (!done) throw std::runtime_error(error_.message);
  }

  mongoc_cursor_t* find(const TBsonPtr& filter, const TList& calls) {
    TObject options;
    const TList& arguments = calls[0].asObject().find("arguments")->asList();
    if (arguments.size() > 1) options.add("projection", arguments[1]);
    for (std::size_t i = 1; i < calls.size(); ++i)
      options.add(calls[i].asObject().find("name")->asText(),
                  calls[i].asObject().find("arguments")->asList().at(0));
    return mongoc_collection_find_with_opts(collection_, filter.get(), toBson(options).get(), nullptr);
  }

  TRows rowsOf(mongoc_cursor_t* cursor, const std::vector<std::string>& columns) {
    TRows rows;
    const bson_t* document = nullptr;
    while (mongoc_cursor_next(cursor, &document)) {
      char* text = bson_as_relaxed_extended_json(document, nullptr);
      const TValue value = parseJson(text);
      bson_free(text);
      TRow row;
      for (const std::string& column : columns) row.push_back(valueForm(value.asObject().find(column)));
      EXPECT_LE(value.asObject().size(), columns.size() + (columns.size() == allColumns().size()))
          << toJson(value);
      rows.push_back(row);
    }
    const bool failed = mongoc_cursor_error(cursor, &error_);
    mongoc_cursor_destroy(cursor);
    check(!failed);
    return rows;
  }

  mongoc_client_t* client_;
  mongoc_collection_t* collection_;
  bson_error_t error_{};
};

std::string joined(const TRows& rows) {
  std::string out;
  for (const TRow& row : rows) {
    for (const std::string& value : row) out += value + " ";
    out += "\n";
  }
  return out;
}

class SqlMongoServer : public testing::Test {
 protected:
  void refill() {
    sqlite.run("drop table if exists t");
    sqlite.run("create table t (id integer, a integer, b real, c text, d text)");
    std::vector<TObject> documents;
    for (const TSampleRow& row : sampleRows()) {
      sqlite.run("insert into t values (" + row.sqlValues + ")");
      documents.push_back(row.document);
    }
    mongo.fill(documents);
  }

  TRows mongoRows(const TMadeStatement& made) {
    const TSqlToMongo text = SqlToMongo(made.sql, TShellForm::Modern);
    if (!text.translated()) throw std::runtime_error(placeText(made.sql, text.place) + ": " + text.message);
    return mongo.run(parseJson(shell.run(text.shellText)), made.columns);
  }

  void compare(const TMadeStatement& made) {
    SCOPED_TRACE(made.sql + "\n" + SqlToMongo(made.sql, TShellForm::Modern).shellText);
    TRows wanted = sqlite.run(made.sqliteText), found;
    ASSERT_NO_THROW(found = mongoRows(made));
    if (made.writes) {
      const TMadeStatement all = wholeTable();
      wanted = sqlite.run(all.sqliteText);
      found = mongoRows(all);
      refill();
    }
    if (!made.ordered) {
      std::sort(wanted.begin(), wanted.end());
      std::sort(found.begin(), found.end());
    }
    rows += wanted.size();
    ASSERT_EQ(joined(found), joined(wanted));
  }

  TSqlite sqlite;
  TLocalServer server;
  TMongo mongo{server.port()};
  TJsShell shell;
  std::size_t rows = 0;
};

TEST_F(SqlMongoServer, StatementsGiveWhatSqlGives) {
  refill();
  TStatementMaker maker(20);
  for (int i = 0; i < 500 && !HasFatalFailure(); ++i) compare(maker.make());
  // Most statements have something to compare.
  EXPECT_GT(rows, 5000U);
}

}  // namespace

}  // namespace hollowmere
