// What is HBase's own.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <set>
#include <thread>

#include "conformance/bed.h"
#include "connectors/hbase/hbaseclient.h"
#include "connectors/hbase/hbaseconnector.h"
#include "connectors/hbase/hbasefiltertext.h"
#include "connectors/hbase/hbasequery.h"
#include "connectors/mongodb/mongoconnector.h"
#include "json/encoding.h"
#include "json/json.h"
#include "support/hbasewire/standin.h"
#include "support/tempfolder.h"

namespace hollowmere {

namespace {

using hbasewire::THBaseStandIn;

std::string freshTable() {
  static int last = 0;
  return "own" + std::to_string(++last);
}

/// The row key of a row.
std::string textOf(const TObject& row) {
  const TValue& key = *row.find("rowkey");
  return key.is(TKind::Text) ? key.asText() : "(bytes)";
}

/// A server with a table of its own: the real one or the stand-in.
std::string filterFault(const std::string& text) {
  try {
    parseHBaseFilter(text);
  } catch (const THBaseFilterError& error) {
    return error.what();
  }
  return {};
}

class HBase : public testing::TestWithParam<bool> {
 protected:
  HBase() {
    if (!GetParam()) standIn = std::make_unique<THBaseStandIn>();
    port = standIn ? standIn->port() : sharedHBase().port();
    makeHBaseTable(port, table, {"cf", "n"});
  }

  [[nodiscard]] TStoreOptions options(std::int64_t bulkSize = 0) const {
    TStoreOptions made = optionsFor(hbaseRecord(port));
    made.bulkSize = bulkSize;
    made.fetchLimit = 3;
    return made;
  }

  void write(const std::vector<TObject>& documents, std::int64_t bulkSize = 100) {
    const auto writer = connector->connectTarget(options(bulkSize));
    writer->openTarget({"target", table, {}});
    for (const TObject& document : documents) writer->write(TObject(document), sink);
    writer->flush(sink);
  }

  [[nodiscard]] std::string read(const std::string& query = {}, const TShare& share = {}) const {
    const auto reader = connector->connectSource(options());
    reader->openRoot(hbaseSource(table, query), share);
    std::string rows;
    while (const auto row = reader->next()) rows += toJson(*row, TTextForm::Markers);
    return rows;
  }

  /// The keys alone, a blank behind each.
  std::string keys(const std::string& query = {}, const TShare& share = {}) const {
    const auto reader = connector->connectSource(options());
    reader->openRoot(hbaseSource(table, query), share);
    std::string found;
    while (const auto row = reader->next()) found += row->find("rowkey")->asText() + " ";
    return found;
  }

  /// All of the table.
  std::vector<THBaseRow> rowsOf(THBaseClient& client) const {
    const THBaseScanner scanner = client.openScanner({table, "", "", "", true}, 1000);
    std::vector<THBaseRow> rows;
    client.nextRows(scanner, 1000, table, rows);
    client.closeScanner(scanner);
    return rows;
  }

  void fillNumbered(int count) {
    std::vector<TObject> documents;
    for (int i = 1; i <= count; ++i)
      documents.push_back(
          TObject{{"rowkey", "r" + std::to_string(100 + i)}, {"cf:a", std::to_string(i)}, {"n:b", "x"}});
    write(documents);
    ASSERT_EQ(sink.storedCount, count);
  }

  std::unique_ptr<THBaseStandIn> standIn;
  std::uint16_t port = 0;
  std::string table = freshTable();
  std::unique_ptr<TStoreConnector> connector = makeHBaseConnector();
  TRecordingSink sink;
};

TEST_P(HBase, RowsAreDocumentsAndBack) {
  const std::string odd("\xFF\x00", 2);
  write({TObject{{"rowkey", "k1"}, {"cf:bytes", "&base64;/wA="}, {"cf:text", "a:b"}, {"n:int", 5}},
         TObject{{"rowkey", TValue::binary(odd)}, {"cf:x", TValue::binary("plain")}, {"n:yes", true}},
         TObject{{"ROWKEY", "&base64;/wE="}, {"&base64;Y2Y6/w==", "odd name"}, {"cf:", "no qualifier"}},
         TObject{{"rowkey", 7},
                 {"cf:said", "say &quot;hi&quot;, &str;7 & so on"},
                 {"n:double", 1.5},
                 {"n:null", nullptr},
                 {"n:list", TList{1, "a"}}}});
  EXPECT_EQ(sink.storedCount, 4);
  EXPECT_TRUE(sink.refusals.empty());
  const std::string expected =
      R"({"rowkey":"7","cf:said":"say \"hi\", 7 & so on","n:double":"1.50","n:list":"[1,\"a\"]","n:null":""})"
      R"({"rowkey":"k1","cf:bytes":"&base64;/wA=","cf:text":"a:b","n:int":"5"})"
      R"({"rowkey":"&base64;/wA=","cf:x":"plain","n:yes":"true"})"
      R"({"rowkey":"&base64;/wE=","cf:":"no qualifier","&base64;Y2Y6/w==":"odd name"})";
  const auto plain = [this] {
    const auto reader = connector->connectSource(options());
    reader->openRoot(hbaseSource(table), {});
    std::string rows;
    std::vector<TObject> documents;
    while (auto row = reader->next()) {
      rows += toJson(*row);
      documents.push_back(std::move(*row));
    }
    return std::pair(rows, documents);
  };
  const auto [rows, documents] = plain();
  EXPECT_EQ(rows, expected);
  // Read and written back, the bytes are the same.
  write(documents, 2);
  EXPECT_EQ(sink.storedCount, 8);
  EXPECT_EQ(plain().first, expected);
  EXPECT_EQ(THBaseClient(thriftOptions(options(), "HBase", 9090)).row(table, "k1").cells.at(0).value, odd);
}

/// Cells that are text for UTF-8 alone: numbers, what is written like a marker, and blanks at the ends.
TEST_P(HBase, BytesAreTheSameBehindOtherStores) {
  using namespace std::string_literals;
  const std::vector<std::string> cells{"\0\0\0\0\0\0\0A"s, "\0\0\0\0\0\0\0 "s, "\x01"s,        "a &quot; b"s,
                                       "&str;5"s,          "&base64;AAE="s,    " indented\n"s, "plain"s};
  TObject row{{"rowkey", TValue::binary("\0\0\0\x07"s)}};
  for (std::size_t i = 0; i < cells.size(); ++i)
    row.add("cf:c" + std::to_string(i), TValue::binary(cells[i]));
  row.add("&base64;" + toBase64("cf:\0\x10"s), "binary name");
  write({row});
  ASSERT_EQ(sink.storedCount, 1);
  const auto bytesOf = [this] {
    std::string all;
    for (const THBaseCell& cell :
         THBaseClient(thriftOptions(options(), "HBase", 9090)).row(table, "\0\0\0\x07"s).cells)
      all += cell.column + "=" + cell.value + "|";
    return all;
  };
  const std::string before = bytesOf();
  const auto theRow = [](const TStoreConnector& from, const TStoreOptions& with, const TDataSource& source) {
    const auto reader = from.connectSource(with);
    reader->openRoot(source, {});
    return *reader->next();
  };
  const TObject read = theRow(*connector, options(), hbaseSource(table));
  write({read});
  EXPECT_EQ(bytesOf(), before) << "from HBase to HBase";

  const auto mongo = makeMongoConnector();
  const TStoreOptions there = optionsFor(mongoRecord(sharedServer().port()));
  const auto writer = mongo->connectTarget(there);
  const std::string collection = table + (GetParam() ? "real" : "");
  writer->openTarget({"target", collection, {}});
  writer->write(TObject(read), sink);
  writer->flush(sink);
  ASSERT_EQ(sink.storedCount, 3);
  TObject back = theRow(*mongo, there, mongoSource(collection));
  back.remove("_id");
  EXPECT_EQ(toJson(back, TTextForm::Markers), toJson(read, TTextForm::Markers));
  THBaseClient(thriftOptions(options(), "HBase", 9090)).deleteRow(table, "\0\0\0\x07"s);
  write({back});
  EXPECT_EQ(bytesOf(), before) << "by way of MongoDB";
}

TEST_P(HBase, FiltersLimitTheRows) {
  fillNumbered(20);
  EXPECT_EQ(keys("PrefixFilter('r11') and ValueFilter(!=, 'binary:12')\r\nOR RowFilter(=, 'binary:r101')"),
            "r101 r110 r111 r112 r113 r114 r115 r116 r117 r118 r119 ");
  EXPECT_EQ(keys("RowFilter(=,'binary:r105')"), "r105 ");
  EXPECT_EQ(keys("PrefixFilter('r12') AND SingleColumnValueFilter('cf','a',=,'binary:20')"), "r120 ");
  EXPECT_EQ(read("SingleColumnValueFilter('cf', 'a', =, 'substring:11')"),
            R"({"rowkey":"r111","cf:a":"11","n:b":"x"})");
  EXPECT_EQ(faultOf(TStoreErrorKind::DataSource, [&] { keys("PrefixFilter('z')"); }),
            "Unable to retrieve rows from HBase table " + table);
  for (const char* query : {"", "PrefixFilter('r11')", "ValueFilter(=, 'binary:x')",
                            "SingleColumnValueFilter('cf', 'a', =, 'substring:1') AND PrefixFilter('r1')"}) {
    SCOPED_TRACE(query);
    std::string found = keys(query);
    EXPECT_EQ(connector->count(options(), hbaseSource(table, query)),
              std::count(found.begin(), found.end(), ' '));
  }
}

TEST_P(HBase, SharesBeginAndEndAtTheirRows) {
  fillNumbered(12);
  EXPECT_EQ(keys({}, {1, 2, 0, 2}), "r101 r102 ");
  EXPECT_EQ(keys({}, {2, 3, 4, 3}), "r105 r106 r107 ");
  EXPECT_EQ(keys("ValueFilter(=, 'binary:x')", {2, 2, 4, 8}), "r105 r106 r107 r108 r109 r110 r111 r112 ");
  // What cannot be begun anywhere else is read from its beginning.
  EXPECT_EQ(keys("PageFilter(7)", {2, 2, 4, 8}), "r105 r106 r107 ");
  // A thread whose rows are gone goes on with the next source.
  EXPECT_EQ(keys({}, {2, 2, 12, 3}), "");
}

TEST_P(HBase, SharesAreDisjointWhateverComesAndGoes) {
  for (const int degree : {1, 2, 3, 7}) {
    SCOPED_TRACE(degree);
    fillNumbered(40);
    sink = {};
    TDataSource source = hbaseSource(table);
    source.notes = connector->makeNotes();
    source.count = connector->count(options(), source);
    THBaseClient client(thriftOptions(options(), "HBase", 9090));
    const auto insert = [&](const std::string& key) {
      THBaseBatch batch;
      batch.beginRow(key);
      batch.put("cf:a", "1");
      client.mutateRow(table, batch);
    };
    std::multiset<std::string> found;
    std::vector<std::unique_ptr<TSourceReader>> readers;
    // The threads come one by one, and between them half of the rows go, from the front, and others come.
    for (int number = degree; number >= 1; --number) {
      const std::int64_t rows = source.count / degree, start = (number - 1) * rows;
      readers.push_back(connector->connectSource(options()));
      readers.back()->openRoot(source,
                               {number, degree, start, number == degree ? source.count - start : rows});
      for (int i = 0; i < 20 / degree; ++i) {
        const int gone = 101 + 2 * ((degree - number) * (20 / degree) + i);
        client.deleteRow(table, "r" + std::to_string(gone));
        insert("r" + std::to_string(gone) + "new");
        insert("q" + std::to_string(gone) + "new");
        insert("s" + std::to_string(gone) + "new");
      }
    }
    for (const auto& reader : readers)
      while (const auto row = reader->next()) found.insert(row->find("rowkey")->asText());
    for (int i = 102; i <= 140; i += 2) EXPECT_EQ(found.count("r" + std::to_string(i)), 1U) << i;
    for (const std::string& key : found) EXPECT_EQ(found.count(key), 1U) << key;
    for (const THBaseRow& row : rowsOf(client)) client.deleteRow(table, row.key);
  }
}

TEST_P(HBase, KeysOfTheGreatestLength) {
  const std::string key(32767, 'k');
  // A server cannot find out by such a key where the table's only region is; it must know already.
  write({TObject{{"rowkey", "l"}, {"cf:a", "1"}}});
  write({TObject{{"rowkey", key}, {"cf:a", "1"}}});
  EXPECT_EQ(keys("RowFilter(=, 'binary:" + key + "')"), key + " ");
  EXPECT_EQ(keys({}, {1, 2, 0, 1}), key + " ");
  // Its rows are gone: it begins behind the last key, which has none behind it that is longer.
  THBaseClient(thriftOptions(options(), "HBase", 9090)).deleteRow(table, "l");
  EXPECT_EQ(keys({}, {2, 2, 1, 1}), "");
}

TEST_P(HBase, AFilterThatSeesAllRowsIsNotCutShort) {
  if (!GetParam()) return;  // the stand-in has no WHILE
  write({TObject{{"rowkey", "ab"}, {"cf:a", "1"}}, TObject{{"rowkey", "ac"}, {"cf:a", "2"}},
         TObject{{"rowkey", "b1"}, {"cf:a", "3"}}, TObject{{"rowkey", "b2"}, {"cf:a", "4"}, {"cf:b", "5"}},
         TObject{{"rowkey", "b3"}, {"cf:a", "6"}}});
  const auto none = [&](const std::string& query) {
    return faultOf(TStoreErrorKind::DataSource, [&] { keys(query); });
  };
  EXPECT_EQ(none("WHILE RowFilter(!=, 'binary:ac') AND PrefixFilter('b')"),
            "Unable to retrieve rows from HBase table " + table);
  EXPECT_EQ(keys("WHILE RowFilter(!=, 'binary:b2')", {2, 2, 1, 2}), "ac b1 ");
  EXPECT_EQ(keys("ColumnCountGetFilter(2)", {1, 1, 0, {}}), keys("ColumnCountGetFilter(2)"));
}

TEST_P(HBase, AFilterThatTheServerRefusesIsExplained) {
  fillNumbered(1);
  for (const auto& [query, fault] :
       {std::pair("ValueFilter(LESS, 'binary:5')",
                  "\"LESS\" is neither a comparison (<, <=, =, !=, >, >=), a number, true or false, nor a "
                  "text in ' "
                  "at character 13."),
        std::pair("MyFilter('x')", "The server does not know the filter MyFilter."),
        std::pair("PageFilter('x')", "Argument 1 of PageFilter is not a number from 0 at character 12."),
        std::pair("RowFilter(=, 'regexstring:[')",
                  "The server refused it without giving a reason: RowFilter(=, 'regexstring:[')")}) {
    EXPECT_EQ(faultOf(TStoreErrorKind::DataSource, [&] { keys(query); }),
              std::string("Invalid filter expression. ") + fault);
    EXPECT_EQ(
        faultOf(TStoreErrorKind::DataSource, [&] { connector->count(options(), hbaseSource(table, query)); }),
        std::string("Invalid filter expression. ") + fault);
  }
  EXPECT_EQ(keys(), "r101 ");
}

/// What we say of a filter's arguments is what the server thinks of them.
TEST_P(HBase, ArgumentsAreCheckedAsAServerDoes) {
  if (!GetParam()) return;  // the stand-in has few filters
  fillNumbered(1);
  THBaseClient client(thriftOptions(options(), "HBase", 9090));
  for (const char* text : {"KeyOnlyFilter()",
                           "KeyOnlyFilter(true)",
                           "KeyOnlyFilter('x', true)",
                           "FirstKeyOnlyFilter()",
                           "FirstKeyOnlyFilter(1)",
                           "PrefixFilter('a')",
                           "PrefixFilter(1)",
                           "PrefixFilter()",
                           "PrefixFilter('a', 'b')",
                           "ColumnPrefixFilter('a')",
                           "ColumnPrefixFilter(true)",
                           "MultipleColumnPrefixFilter('a', 'b', 'c')",
                           "MultipleColumnPrefixFilter('a', 1)",
                           "ColumnCountGetFilter(1)",
                           "ColumnCountGetFilter('1')",
                           "ColumnCountGetFilter(-1)",
                           "PageFilter(1)",
                           "PageFilter(true)",
                           "PageFilter(-1)",
                           "ColumnPaginationFilter(1, 0)",
                           "ColumnPaginationFilter(1)",
                           "ColumnPaginationFilter(1, -1)",
                           "InclusiveStopFilter('a')",
                           "InclusiveStopFilter(1)",
                           "TimestampsFilter(1, 2)",
                           "TimestampsFilter(-1)",
                           "TimestampsFilter('1')",
                           "RowFilter(=, 'binary:a')",
                           "RowFilter('a', 'binary:a')",
                           "FamilyFilter(=, 'binary:a')",
                           "QualifierFilter(=, 'binary:a', true)",
                           "ValueFilter(=)",
                           "DependentColumnFilter('cf', 'a')",
                           "DependentColumnFilter('cf', 'a', true)",
                           "DependentColumnFilter('cf', 'a', true, =)",
                           "DependentColumnFilter('cf', 'a', FALSE, =, 'binary:a')",
                           "DependentColumnFilter('cf', 'a', 'true', =, 'binary:a')",
                           "ColumnRangeFilter('a', true, 'b', False)",
                           "ColumnRangeFilter('a', 'true', 'b', false)",
                           "ColumnRangeFilter('a', true, 'b')",
                           "SingleColumnValueFilter('cf', 'a', =, 'binary:1')",
                           "SingleColumnValueFilter('cf', 'a', =, 'binary:1', true)",
                           "SingleColumnValueFilter('cf', 'a', =, 'binary:1', true, false)",
                           "SingleColumnValueExcludeFilter('cf', 'a', =, 'binary:1', 1, 0)",
                           "ColumnValueFilter('cf', 'a', =, 'binary:1')",
                           "ColumnValueFilter('cf', 'a', =, 'binary:1', true)"}) {
    bool taken = true;
    try {
      std::vector<THBaseRow> rows;
      const THBaseScanner scanner = client.openScanner({table, text, "", "", true}, 1);
      client.closeScanner(scanner);
    } catch (const THBaseFault&) {
      taken = false;
    }
    EXPECT_EQ(filterFault(text).empty(), taken) << text << ": " << filterFault(text);
  }
}

TEST_P(HBase, NestedQueriesTakeTheParentsValues) {
  write({TObject{{"rowkey", "a'1"}, {"cf:dept", "5"}}, TObject{{"rowkey", "b2"}, {"cf:dept", "6"}},
         TObject{{"rowkey", "c3"}, {"cf:dept", "a.*"}, {"n:x", "1"}},
         TObject{{"rowkey", TValue::binary("d\xFF")}, {"cf:dept", "5' OR PrefixFilter('')"}}});
  const auto reader = connector->connectSource(options());
  reader->openRoot(hbaseSource(table), {});
  ASSERT_TRUE(reader->next());
  const auto nested = [&](const std::string& query, const TObject& parent, int most = 100) {
    std::string found;
    reader->nested(hbaseSource(table, query), parent, [&](TObject&& row) {
      found += textOf(row) + " ";
      return --most > 0;
    });
    return found;
  };
  const char byDept[] = "SingleColumnValueFilter('cf', 'dept', =, 'binary::ID')";
  EXPECT_EQ(nested(byDept, TObject{{"id", 5}}), "a'1 ");
  EXPECT_EQ(nested(byDept, TObject{{"id", "5' OR PrefixFilter('"}}), "");
  EXPECT_EQ(nested(byDept, TObject{{"id", "5' OR PrefixFilter('')"}}), "(bytes) ");
  EXPECT_EQ(nested("PrefixFilter(:cf:key)", TObject{{"cf:key", "a'1"}}), "a'1 ");
  EXPECT_EQ(nested("RowFilter(=, :K)", TObject{{"K", TValue::binary("d\xFF")}}), "(bytes) ");
  EXPECT_EQ(nested("SingleColumnValueFilter('cf','dept',=,'regexstring:^:\"ID\"$')", TObject{{"ID", "a.*"}}),
            "c3 ");
  EXPECT_EQ(nested("", TObject(), 2), "a'1 b2 ");
  EXPECT_EQ(nested("PrefixFilter(:K)", TObject{{"K", nullptr}}), "");
  EXPECT_EQ(nested("PrefixFilter(:K) OR RowFilter(=, :id)", TObject{{"K", ""}, {"id", "b2"}}), "b2 ");
  EXPECT_EQ(faultOf(TStoreErrorKind::Read,
                    [&] {
                      nested(byDept, TObject{{"no", 5}});
                    }),
            "The parent row has no field for the query parameter :ID");
  EXPECT_EQ(
      faultOf(TStoreErrorKind::Read, [&] { nested("NoFilter", TObject()); }),
      "Invalid filter expression. \"NoFilter\" is neither a filter nor an operator (AND, OR, SKIP, WHILE) at "
      "character 1.");
  // The root scan goes on where it was.
  EXPECT_EQ(textOf(*reader->next()), "b2");
}

TEST_P(HBase, RefusesWhatIsNoRow) {
  const std::string longKey(40'000, 'k');
  for (const std::int64_t bulkSize : {0, 4, 100}) {
    SCOPED_TRACE(bulkSize);
    sink = {};
    write(
        {TObject{{"rowkey", "good1"}, {"cf:a", "1"}}, TObject{{"cf:a", "1"}},
         TObject{{"rowkey", ""}, {"cf:a", "1"}}, TObject{{"rowkey", nullptr}, {"cf:a", "1"}},
         TObject{{"rowkey", longKey}, {"cf:a", "1"}}, TObject{{"rowkey", "k"}},
         TObject{{"rowkey", "k"}, {"cf:a", "1"}, {"plain", "1"}}, TObject{{"rowkey", "k"}, {":q", "1"}},
         TObject{{"rowkey", "good2"}, {"cf:a", "1"}}, TObject{{"rowkey", "k"}, {"cf:a", "1"}, {"no:x", "1"}},
         TObject{{"rowkey", "k"}, {"cf:a", "&base64;?"}}, TObject{{"rowkey", "good3"}, {"cf:a", "1"}}},
        bulkSize);
    EXPECT_EQ(sink.storedCount, 3);
    std::string reasons;
    for (const auto& [text, reason] : sink.refusals) reasons += reason + "\n";
    EXPECT_EQ(reasons,
              "rowkey value is not provided.\n"
              "rowkey value is not provided.\n"
              "rowkey value is not provided.\n"
              "The row key is 40000 bytes long; HBase takes at most 32767.\n"
              "The document has no column; HBase stores no row without one.\n"
              "The column \"plain\" is not of the form family:qualifier.\n"
              "The column \":q\" is not of the form family:qualifier.\n"
              "The table " +
                  table +
                  " has no column family no.\n"
                  "The value of \"cf:a\": what follows &base64; is no Base64\n");
    EXPECT_EQ(sink.refusals.at(5).first, R"({"rowkey":"k","cf:a":"1","plain":"1"})");
    EXPECT_EQ(keys(), "good1 good2 good3 ");
  }
}

TEST_P(HBase, ARowBeyondAFrameIsRefusedAlone) {
  const std::string large(20 * 1024 * 1024, 'x');
  for (const std::int64_t bulkSize : {0, 10}) {
    sink = {};
    write({TObject{{"rowkey", "a"}, {"cf:a", "1"}}, TObject{{"rowkey", "b"}, {"cf:a", large}},
           TObject{{"rowkey", "c"}, {"cf:a", "1"}}},
          bulkSize);
    EXPECT_EQ(sink.storedCount, 2);
    ASSERT_EQ(sink.refusals.size(), 1U);
    EXPECT_NE(sink.refusals[0].second.find("a server takes 2097152 bytes at most unless"), std::string::npos)
        << sink.refusals[0].second;
    EXPECT_EQ(keys(), "a c ");
  }
}

TEST_P(HBase, TheLastOfARowsTwinsWins) {
  for (const std::int64_t bulkSize : {0, 100}) {
    write({TObject{{"rowkey", "k"}, {"cf:a", "1"}}, TObject{{"rowkey", "k"}, {"cf:a", "2"}, {"cf:b", "2"}},
           TObject{{"rowkey", "k"}, {"cf:a", "3"}}},
          bulkSize);
    EXPECT_EQ(read(), R"({"rowkey":"k","cf:a":"3","cf:b":"2"})");
  }
}

TEST_P(HBase, NamesATableThatIsMissingOrDisabled) {
  fillNumbered(1);
  const auto openTarget = [this](const std::string& name) {
    connector->connectTarget(options())->openTarget({"target", name, {}});
  };
  const auto open = [this](const std::string& name) {
    connector->connectSource(options())->openRoot(hbaseSource(name), {});
  };
  const auto count = [this](const std::string& name) { connector->count(options(), hbaseSource(name)); };
  for (const auto& use :
       {std::function<void(const std::string&)>(openTarget), std::function<void(const std::string&)>(open),
        std::function<void(const std::string&)>(count)})
    EXPECT_EQ(faultOf(TStoreErrorKind::DataSource, [&] { use("missing"); }),
              "The table missing does not exist.");
  // A server gives no reason for a name that cannot be a table's, whatever the filter.
  const auto openFiltered = [this](const std::string& name) {
    connector->connectSource(options())->openRoot(hbaseSource(name, "PrefixFilter('r')"), {});
  };
  for (const auto& use : {std::function<void(const std::string&)>(openTarget),
                          std::function<void(const std::string&)>(openFiltered)})
    EXPECT_EQ(faultOf(TStoreErrorKind::DataSource, [&] { use("my table"); }),
              "The table my table does not exist.");
  EXPECT_EQ(faultOf(TStoreErrorKind::DataSource, [&] { openTarget(""); }),
            "Data target target names no HBase table.");
  EXPECT_EQ(faultOf(TStoreErrorKind::DataSource, [&] { open(""); }), "Data source  names no HBase table.");
  THBaseClient client(thriftOptions(options(), "HBase", 9090));
  client.disable(table);
  for (const auto& use :
       {std::function<void(const std::string&)>(openTarget), std::function<void(const std::string&)>(open)})
    EXPECT_EQ(faultOf(TStoreErrorKind::DataSource, [&] { use(table); }),
              "The table " + table + " is disabled.");
  client.drop(table);
}

TEST_P(HBase, ATableThatIsDisabledInTheMiddle) {
  THBaseClient client(thriftOptions(options(), "HBase", 9090));
  for (const std::int64_t bulkSize : {0, 4}) {
    sink = {};
    const auto writer = connector->connectTarget(options(bulkSize));
    writer->openTarget({"target", table, {}});
    const auto writeFive = [&](const std::string& keys) {
      for (int i = 0; i < 5; ++i)
        writer->write(TObject{{"rowkey", keys + std::to_string(i)}, {"cf:a", i}}, sink);
      writer->flush(sink);
    };
    writeFive("a");
    EXPECT_EQ(sink.storedCount, 5);
    client.disable(table);
    writeFive("b");
    EXPECT_EQ(sink.storedCount, 5);
    ASSERT_EQ(sink.refusals.size(), 5U);
    for (const auto& [text, message] : sink.refusals)
      EXPECT_EQ(message, "The table " + table + " is disabled.");
    client.enable(table);
    writeFive("c");
    EXPECT_EQ(sink.storedCount, 10);
  }
  EXPECT_EQ(keys(), "a0 a1 a2 a3 a4 c0 c1 c2 c3 c4 ");
}

/// The rows of a batch that can be stored are, and the others are told apart.
TEST_P(HBase, ABatchThatFailsInPart) {
  const auto writer = connector->connectTarget(options(100));
  writer->openTarget({"target", table, {}});
  THBaseClient client(thriftOptions(options(), "HBase", 9090));
  client.drop(table);
  client.create(table, {{.name = "cf"}});
  for (int i = 0; i < 10; ++i)
    writer->write(TObject{{"rowkey", "r" + std::to_string(i)}, {i % 5 == 3 ? "n:a" : "cf:a", i}}, sink);
  writer->flush(sink);
  EXPECT_EQ(sink.storedCount, 8);
  ASSERT_EQ(sink.refusals.size(), 2U);
  for (const auto& [text, message] : sink.refusals)
    EXPECT_EQ(message, "The table " + table + " has no column family n.");
  EXPECT_EQ(keys(), "r0 r1 r2 r4 r5 r6 r7 r9 ");
}

TEST_P(HBase, TablesAreMadeAndChanged) {
  THBaseClient client(thriftOptions(options(), "HBase", 9090));
  const std::string name = freshTable();
  const std::vector<THBaseFamily> families{{.name = "a"},
                                           {.name = "b",
                                            .maxVersions = 3,
                                            .compression = "GZ",
                                            .timeToLive = 86'400,
                                            .bloomFilter = "ROW",
                                            .inMemory = true,
                                            .blockCache = false}};
  client.create(name, families);
  const auto faultText = [](const std::function<void()>& call) {
    try {
      call();
    } catch (const THBaseFault& fault) {
      return std::string(fault.what());
    }
    return std::string();
  };
  EXPECT_EQ(faultText([&] { client.create(name, families); }), "The table " + name + " exists already.");
  EXPECT_NE(faultText([&] { client.create(name + "x", {}); }), "");
  EXPECT_TRUE(client.families(name) == families);
  const auto names = client.tables();
  EXPECT_NE(std::find(names.begin(), names.end(), name), names.end());
  ASSERT_EQ(client.regions(name).size(), 1U);
  EXPECT_TRUE(client.regions(name)[0].name.starts_with(name + ","));

  THBaseBatch batch;
  for (const char* value : {"1", "2", "3", "4"}) {
    batch.clear();
    batch.beginRow("k");
    batch.put("b:x", value);
    client.mutateRow(name, batch);
    // Two puts within a millisecond are one version.
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  const auto versions = client.versions(name, "k", "b:x", 2);
  ASSERT_EQ(versions.size(), 2U);
  EXPECT_EQ(versions[0].value + versions[1].value, "43");
  EXPECT_GT(versions[0].timestamp, versions[1].timestamp);
  EXPECT_EQ(client.row(name, "k").cells.at(0).timestamp, versions[0].timestamp);
  client.deleteRow(name, "k");
  EXPECT_TRUE(client.row(name, "k").cells.empty());

  EXPECT_TRUE(client.isEnabled(name));
  client.disable(name);
  EXPECT_FALSE(client.isEnabled(name));
  client.enable(name);
  client.compact(name, false);
  client.compact(name, true);
  client.mutateRow(name, batch);
  client.truncate(name);
  EXPECT_TRUE(client.row(name, "k").cells.empty());
  EXPECT_TRUE(client.families(name) == families);
  client.drop(name);
  EXPECT_EQ(faultText([&] { client.isEnabled(name); }), "The table " + name + " does not exist.");
}

INSTANTIATE_TEST_SUITE_P(Servers, HBase, testing::Bool(),
                         [](const auto& real) { return real.param ? "Server" : "StandIn"; });

TEST(HBaseStandIn, SendsWhatIsWrittenDown) {
  THBaseStandIn server;
  for (int i = 1; i <= 9; ++i) server.tables().put("t", "r" + std::to_string(i), "cf:a", "1");
  TStoreOptions options = optionsFor(hbaseRecord(server.port()));
  options.fetchLimit = 4;
  const auto reader = makeHBaseConnector()->connectSource(options);
  reader->openRoot(hbaseSource(" t ", " \r\n"), {});
  EXPECT_EQ(server.server().calls("scannerOpen"), 1U);
  reader->openRoot(hbaseSource("t", "ValueFilter(=, 'binary:1') and\r\nPrefixFilter('r') "), {});
  EXPECT_EQ(server.tables().scans().back().filterString, "ValueFilter(=, 'binary:1') AND PrefixFilter('r')");
  EXPECT_EQ(server.server().calls("scannerOpenWithScan"), 1U);
  EXPECT_EQ(server.server().calls("scannerGetList"), 2U);
  EXPECT_EQ(server.tables().openScanners(), 1U) << "the one before is closed";
  while (reader->next()) continue;
  EXPECT_EQ(server.tables().openScanners(), 0U);
  EXPECT_EQ(server.server().connections(), 2U) << "one to prove it, one to work";
}

TEST(HBaseStandIn, SharesReadNothingTwiceThatWasCounted) {
  THBaseStandIn server;
  constexpr int rows = 12'000;
  char key[16];
  for (int i = 0; i < rows; ++i) {
    std::snprintf(key, sizeof key, "r%06d", i);
    server.tables().put("t", key, "cf:a", "1");
  }
  TStoreOptions options = optionsFor(hbaseRecord(server.port()));
  options.fetchLimit = 1000;
  const auto connector = makeHBaseConnector();
  TDataSource source = hbaseSource("t");
  source.notes = connector->makeNotes();
  source.count = connector->count(options, source);
  EXPECT_EQ(source.count, rows);
  const auto readShare = [&](const TShare& share) {
    const std::uint64_t before = server.tables().rowsGiven();
    const auto reader = connector->connectSource(options);
    reader->openRoot(source, share);
    int found = 0;
    while (reader->next()) ++found;
    EXPECT_EQ(found, share.rows);
    return server.tables().rowsGiven() - before - static_cast<std::uint64_t>(found);
  };
  EXPECT_EQ(readShare({3, 3, 10'001, 1999}), 2U) << "from the mark at 10,000";
  EXPECT_EQ(readShare({2, 3, 5'002, 4'999}), 3U) << "from the mark at 5,000; its end is known";
  source.notes.reset();
  EXPECT_EQ(readShare({3, 3, 10'001, 1999}), 10'002U) << "keys alone, nothing known";
}

TEST(HBaseFilterText, FindsWhatAServerRefuses) {
  for (const char* good :
       {"KeyOnlyFilter()", "KeyOnlyFilter ( )", "PrefixFilter('it''s')", "SKIP ValueFilter(!=, 'binary:0')",
        "WHILE (KeyOnlyFilter())",
        "(RowFilter(=, 'binary:Row 1') AND TimestampsFilter(74689, 5)) OR "
        "ColumnRangeFilter('abc', true, 'xyz', FALSE)",
        "DependentColumnFilter('a','b',true,<=,'binaryprefix:x')", "Own.Filter_1('a', -1)"})
    EXPECT_EQ(filterFault(good), "") << good;
  for (const auto& [bad, fault] :
       {std::pair("KeyOnlyFilter() and KeyOnlyFilter()",
                  "\"and\" is not an operator (AND, OR) at character 17."),
        std::pair("NOT KeyOnlyFilter()",
                  "\"NOT\" is neither a filter nor an operator (AND, OR, SKIP, WHILE) at character 1."),
        std::pair("KeyOnlyFilter() && KeyOnlyFilter()",
                  "\"&&\" is not an operator (AND, OR) at character 17."),
        std::pair("KeyOnlyFilter();", "\";\" is not an operator (AND, OR) at character 16."),
        std::pair("RowFilter(==, 'binary:a')",
                  "\"==\" is neither a comparison (<, <=, =, !=, >, >=), a number, true or false, nor a text "
                  "in ' at "
                  "character 11."),
        std::pair("RowFilter(=, 'a')",
                  "What is compared with must be a text such as 'binary:value' (binary, binaryprefix, "
                  "regexstring, substring) at character 14."),
        std::pair("KeyOnlyFilter() AND ColumnRangeFilter('a', true, 'b')",
                  "ColumnRangeFilter has 3 arguments instead of 4 at character 21."),
        std::pair("DependentColumnFilter('a')",
                  "DependentColumnFilter has 1 arguments instead of 2, 3 or 5 at character 1."),
        std::pair(
            "SingleColumnValueFilter('a', 'b', 'c', 'd')",
            "Argument 3 of SingleColumnValueFilter is not a comparison (<, <=, =, !=, >, >=) at character "
            "35."),
        std::pair("RowFilter(<, 'substring:a')",
                  "\"<\" cannot compare with substring (only = and != can) at character 14."),
        std::pair("PrefixFilter('a)", "The text that begins with a ' does not end at character 14."),
        std::pair("PrefixFilter('a'", "The arguments of PrefixFilter have no \")\" at character 17."),
        std::pair("(KeyOnlyFilter()", "There is a \"(\" without its \")\" at character 1."),
        std::pair("KeyOnlyFilter())", "There is a \")\" without its \"(\" at character 16."),
        std::pair("PrefixFilter('a' 'b')", "There is \"'\" where a comma should be at character 18."),
        std::pair("PrefixFilter", "\"PrefixFilter\" has no arguments in parentheses at character 1."),
        std::pair("KeyOnlyFilter() AND",
                  "The operator AND needs a blank or \"(\" behind it at character 20."),
        std::pair("KeyOnlyFilter() AND ", "A filter is missing at character 21."),
        std::pair("\tKeyOnlyFilter()", "There is a tab, use a blank at character 1."),
        std::pair("PageFilter(\"5\")",
                  "\"\"5\"\" is neither a comparison (<, <=, =, !=, >, >=), a number, true or false, nor a "
                  "text in ' at "
                  "character 12.")})
    EXPECT_EQ(filterFault(bad), fault) << bad;
}

TEST(HBaseFilterText, BearsAnyDepth) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth - 1, '(') + "KeyOnlyFilter()" + std::string(depth - 1, ')');
  };
  EXPECT_EQ(filterFault(nested(100'000)), "The filter stands too deep in others at character 201.");
  // One level more is added when keys alone are read.
  THBaseStandIn server;
  server.tables().put("t", "k", "cf:a", "1");
  const TStoreOptions options = optionsFor(hbaseRecord(server.port()));
  EXPECT_EQ(makeHBaseConnector()->count(options, hbaseSource("t", nested(199))), 1);
}

TEST(HBaseFilterText, IsCheckedWhileItIsWritten) {
  const auto store = makeHBaseConnector();
  for (const auto& [query, fault] :
       {std::pair("", ""), std::pair(" \n", ""),
        std::pair("PrefixFilter(:cf:ID) and RowFilter(=, :\"a 'b\") AND PageFilter(:n)", ""),
        std::pair("ColumnRangeFilter(':a', :b, 'x-:\"c\"', true)", ""),
        std::pair("\n PrefixFilter(:)",
                  "Invalid filter expression. A parameter's name is missing at character 16."),
        std::pair(
            "RowFilter(:o, 'binary:x')",
            "Invalid filter expression. Argument 1 of RowFilter is not a comparison (<, <=, =, !=, >, >=) at "
            "character 11."),
        std::pair(
            "\n\tPageFilter('x')",
            "Invalid filter expression. Argument 1 of PageFilter is not a number from 0 at character 14.")})
    EXPECT_EQ(store->checkQuery(TObject{{"table", "t"}, {"query", query}}), fault) << query;
  EXPECT_EQ(store->checkQuery(TObject{{"table", "t"}}), "");
  EXPECT_EQ(store->checkQuery(TValue("text")), "");
}

TEST(HBaseFilterText, LimitsTheKeysToBeLookedAt) {
  const auto limits = [](const char* text) {
    const THBaseKeyLimits found = keyLimits(parseHBaseFilter(text));
    return found.from + " " + found.before;
  };
  EXPECT_EQ(limits("PrefixFilter('ab')"), "ab ac");
  EXPECT_EQ(limits("PrefixFilter('a\xFF')"), "a\xFF b");
  EXPECT_EQ(limits("PrefixFilter('\xFF')"), "\xFF ");
  EXPECT_EQ(limits("RowFilter(=, 'binary:k') AND KeyOnlyFilter()"), std::string("k k\0", 4));
  EXPECT_EQ(limits("PrefixFilter('b') AND PrefixFilter('bb')"), "bb bc");
  for (const char* open :
       {"PrefixFilter('a') OR PrefixFilter('b')", "RowFilter(!=, 'binary:k')", "SKIP PrefixFilter('a')",
        "RowFilter(=, 'substring:k')", "WHILE KeyOnlyFilter() AND PrefixFilter('a')",
        "Own() AND PrefixFilter('a')", "PrefixFilter('a') AND (ColumnCountGetFilter(1) OR KeyOnlyFilter())"})
    EXPECT_EQ(limits(open), " ") << open;
  EXPECT_EQ(limits("PageFilter(1) AND PrefixFilter('a')"), "a b");
  EXPECT_EQ(limits("RowFilter(=, 'binary:')"), std::string("\0 \0", 3)) << "no row has an empty key";
  for (const auto& [text, alone] :
       {std::pair("PageFilter(1)", false), std::pair("KeyOnlyFilter() OR WHILE KeyOnlyFilter()", false),
        std::pair("SKIP ColumnCountGetFilter(1)", false), std::pair("Own()", false),
        std::pair("SKIP ValueFilter(=, 'binary:a') OR InclusiveStopFilter('b')", true)})
    EXPECT_EQ(judgesRowsAlone(parseHBaseFilter(text)), alone) << text;
}

TEST(HBaseFilterText, ParametersCannotBreakOut) {
  const TObject parent{{"id", "a'b"},    {"N", 5},      {"cf:x", "c"}, {"odd name", "(d)"},
                       {"nul", nullptr}, {"none)", ""}, {"yes", true}, {"t", "TRUE"}};
  for (const auto& [text, bound] :
       {std::pair("PrefixFilter(:ID)", "PrefixFilter('a''b')"),
        std::pair("PrefixFilter(':id')", "PrefixFilter('a''b')"),
        std::pair("PrefixFilter(:n)", "PrefixFilter('5')"), std::pair("PageFilter(:n)", "PageFilter(5)"),
        std::pair("PageFilter(:id)", "PageFilter('a''b')"),
        std::pair("RowFilter(>=, :id)", "RowFilter(>=, 'binary:a''b')"),
        std::pair("RowFilter(=, 'binary::cf:x')", "RowFilter(=, 'binary:c')"),
        std::pair("RowFilter(=, 'binary:user:bob')", "RowFilter(=, 'binary:user:bob')"),
        std::pair("RowFilter(=, 'binary:k-:\"odd name\"-:\"n\"')", "RowFilter(=, 'binary:k-(d)-5')"),
        std::pair("RowFilter(=, 'regexstring::\"odd name\"')", "RowFilter(=, 'regexstring:\\(d\\)')"),
        std::pair("RowFilter(=, 'binary::nul')", "RowFilter(=, 'binary:')"),
        std::pair("ColumnRangeFilter(:n, :yes, :t, :T)", "ColumnRangeFilter('5', true, 'TRUE', TRUE)"),
        std::pair("ColumnRangeFilter(:n, :id, :t, false)", "ColumnRangeFilter('5', 'a''b', 'TRUE', false)"),
        // Each of these would let every row pass.
        std::pair("PrefixFilter(:nul)", "RowFilter(=, 'binary:')"),
        std::pair("(KeyOnlyFilter() OR PrefixFilter ( ':\"none)\"' )) AND PageFilter(:n)",
                  "(KeyOnlyFilter() OR RowFilter(=, 'binary:')) AND PageFilter(5)"),
        std::pair("SingleColumnValueFilter('a', 'b)', =, 'substring::nul', true, true)",
                  "RowFilter(=, 'binary:')"),
        std::pair("MultipleColumnPrefixFilter(:n, :nul, 'x')", "RowFilter(=, 'binary:')"),
        std::pair("PrefixFilter('c-:\"nul\"')", "PrefixFilter('c-')"),
        std::pair("PrefixFilter('it''s :\"n\"')", "PrefixFilter('it''s 5')")})
    EXPECT_EQ(bindHBaseFilter(text, parent), bound) << text;
}

/// A table of four regions, read whole, in shares, and over a pause in which the server forgets the scanner.
TEST(HBaseServer, RegionsAndAScannerThatExpired) {
  const std::string table = freshTable(), port = std::to_string(sharedHBase().port());
  makeHBaseTable(sharedHBase().port(), table, {"cf"});
  TStoreOptions options = optionsFor(hbaseRecord(sharedHBase().port()));
  options.fetchLimit = 7;
  THBaseClient client(thriftOptions(options, "HBase", 9090));
  const std::string split = HOLLOWMERE_TESTS_DIR "/servers/hbase split ";
  ASSERT_EQ(std::system((split + port + " " + table + " r120 r121 r140").c_str()), 0);
  std::string all;
  for (int i = 101; i <= 160; ++i) {
    THBaseBatch batch;
    batch.beginRow("r" + std::to_string(i));
    batch.put("cf:a", i % 2 == 0 ? "even" : "odd");
    client.mutateRow(table, batch);
    all += "r" + std::to_string(i) + " ";
  }
  std::string borders;
  for (const THBaseRegion& region : client.regions(table)) borders += region.from + "-" + region.before + " ";
  EXPECT_EQ(borders, "-r120 r120-r121 r121-r140 r140- ");

  const auto connector = makeHBaseConnector();
  TDataSource source = hbaseSource(table);
  EXPECT_EQ(connector->count(options, hbaseSource(table, "ValueFilter(=, 'binary:odd')")), 30);
  for (const int degree : {1, 3, 8}) {
    source.notes = connector->makeNotes();
    source.count = connector->count(options, source);
    EXPECT_EQ(source.count, 60);
    std::string found;
    for (int number = 1; number <= degree; ++number) {
      const std::int64_t rows = source.count / degree, start = (number - 1) * rows;
      const auto reader = connector->connectSource(options);
      reader->openRoot(source, {number, degree, start, number == degree ? source.count - start : rows});
      if (degree == 1) std::this_thread::sleep_for(std::chrono::milliseconds(2000 * hbaseLeaseSeconds + 500));
      while (const auto row = reader->next()) found += textOf(*row) + " ";
    }
    EXPECT_EQ(found, all);
  }
}

/// What an independent client finds is what our writer was given.
TEST(HBaseServer, AnotherClientReadsWhatWasWritten) {
  const std::string table = freshTable();
  const std::uint16_t port = sharedHBase().port();
  const std::string script = HOLLOWMERE_TESTS_DIR "/servers/hbase";
  TTempFolder folder;
  if (std::system((script + " client >" + folder.file("python") + " 2>/dev/null").c_str()) != 0)
    GTEST_SKIP() << "happybase cannot be had";
  makeHBaseTable(port, table, {"cf"});
  TStoreOptions options = optionsFor(hbaseRecord(port));
  options.bulkSize = 100;
  const auto writer = makeHBaseConnector()->connectTarget(options);
  writer->openTarget({"target", table, {}});
  TRecordingSink sink;
  for (int i = 0; i < 250; ++i)
    writer->write(TObject{{"rowkey", "r" + std::to_string(1000 + i)},
                          {"cf:n", i},
                          {"cf:text", "h\xC3\xA9 " + std::to_string(i)},
                          {"cf:bytes", "&base64;/wAn"}},
                  sink);
  writer->flush(sink);
  ASSERT_EQ(sink.storedCount, 250);
  writeBytes(folder.file("read.py"), R"(import sys, happybase
rows = list(happybase.Connection('127.0.0.1', int(sys.argv[1]), transport='framed').table(sys.argv[2]).scan())
assert len(rows) == 250, len(rows)
for i, (key, cells) in enumerate(rows):
    assert key == b'r%d' % (1000 + i), key
    wanted = {b'cf:n': b'%d' % i, b'cf:text': 'h\u00e9 {}'.format(i).encode(), b'cf:bytes': b'\xff\x00\''}
    assert cells == wanted, cells
)");
  const std::string command = "\"$(cat " + folder.file("python") + ")\" " + folder.file("read.py") + " " +
                              std::to_string(port) + " " + table;
  EXPECT_EQ(std::system(command.c_str()), 0);
}

}  // namespace

}  // namespace hollowmere
