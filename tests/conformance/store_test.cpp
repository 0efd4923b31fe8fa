// What every store must do, whatever it is.
#include <algorithm>
#include <atomic>
#include <set>
#include <thread>

#include "conformance/bed.h"
#include "support/typedjson.h"

namespace hollowmere {

namespace {

/// Never used before, also on a server that other tests share.
std::string freshName() {
  static std::atomic<int> last = 0;
  return "c" + std::to_string(++last);
}

std::vector<TObject> numbered(int count) {
  std::vector<TObject> documents;
  for (int i = 1; i <= count; ++i)
    documents.push_back(TObject{{"_id", i}, {"name", "row " + std::to_string(i)}});
  return documents;
}

std::vector<std::string> texts(const std::vector<TObject>& documents) {
  std::vector<std::string> all;
  for (const TObject& document : documents) all.push_back(typedText(document));
  return all;
}

std::vector<TObject> byId(std::vector<TObject> documents) {
  std::sort(documents.begin(), documents.end(), [](const TObject& a, const TObject& b) {
    return a.find("_id")->asInt() < b.find("_id")->asInt();
  });
  return documents;
}

class StoreConformance : public testing::TestWithParam<TBedKind> {
 protected:
  std::unique_ptr<TBed> bed = GetParam().make();
  std::string collection = freshName();
  TRecordingSink sink;

  /// The rows in the order in which they were written, where the store has an order of its own.
  std::vector<TObject> read(const TShare& share = {}, std::int64_t fetchLimit = 100) {
    std::vector<TObject> rows = readAll(*bed, collection, share, fetchLimit);
    return bed->keepsOrder ? rows : byId(std::move(rows));
  }

  void fill(const std::vector<TObject>& documents) {
    writeAll(*bed, collection, documents, sink, 100);
    ASSERT_EQ(sink.storedCount, static_cast<std::int64_t>(documents.size()));
    ASSERT_TRUE(sink.refusals.empty());
  }
};

TEST_P(StoreConformance, ReadsAllRowsInOrder) {
  fill(numbered(250));
  EXPECT_EQ(texts(read()), texts(numbered(250)));
  EXPECT_EQ(texts(read({}, 7)), texts(numbered(250))) << "seven at a time";
}

TEST_P(StoreConformance, CountsItsRows) {
  fill(numbered(250));
  const std::int64_t count =
      bed->connector().count(optionsFor(bed->connection(collection)), bed->source(collection));
  if (!bed->connector().traits().countsBytes) {
    EXPECT_EQ(count, 250);
    return;
  }
  const auto reader = bed->connector().connectSource(optionsFor(bed->connection(collection)));
  reader->openRoot(bed->source(collection), {});
  while (reader->next()) continue;
  EXPECT_EQ(reader->position(), count);
}

TEST_P(StoreConformance, SharesHoldEveryRowOnce) {
  if (!bed->connector().traits().parallel) return;
  fill(numbered(10));
  std::vector<TObject> together;
  for (const TShare& share : {TShare{1, 3, 0, 3}, TShare{2, 3, 3, 3}, TShare{3, 3, 6, 4}}) {
    const std::vector<TObject> rows = readAll(*bed, collection, share, 2);
    if (!bed->rangesShares) {
      EXPECT_EQ(static_cast<std::int64_t>(rows.size()), *share.rows);
    }
    together.insert(together.end(), rows.begin(), rows.end());
  }
  EXPECT_EQ(texts(bed->keepsOrder ? together : byId(together)), texts(numbered(10)));
}

TEST_P(StoreConformance, OpensOneCursorAfterTheOther) {
  fill(numbered(30));
  const auto reader = bed->connector().connectSource(optionsFor(bed->connection(collection)));
  for (int round = 0; round < 2; ++round) {
    reader->openRoot(bed->source(collection), {});
    std::int64_t id = 0;
    for (int i = 1; i <= 5; ++i) {
      id = bed->fromStore(*reader->next()).find("_id")->asInt();
      if (bed->keepsOrder) {
        EXPECT_EQ(id, i);
      }
    }
    const TObject fifth{{"_id", id}, {"name", "row " + std::to_string(id)}};
    EXPECT_EQ(reader->rowText(), toJson(bed->toStore(fifth), TTextForm::Markers));
  }
}

TEST_P(StoreConformance, NestedQueriesAreBoundByKind) {
  if (!bed->jsonQueries || !bed->takesAny) return;
  fill({TObject{{"_id", 1}, {"dept", 5}, {"name", "Ann"}},
        TObject{{"_id", 2}, {"dept", "5"}, {"name", "Bob"}},
        TObject{{"_id", 3}, {"dept", 5}, {"name", "Cyd"}},
        TObject{{"_id", 4}, {"dept", nullptr}, {"name", "Dan"}}});
  const auto reader = bed->connector().connectSource(optionsFor(bed->connection(collection)));
  reader->openRoot(bed->source(collection), {});
  ASSERT_TRUE(reader->next());
  const TDataSource nested = bed->source(collection, R"({"dept": :ID})");
  const auto names = [&](const TObject& parent, std::size_t most = 100) {
    std::string found;
    std::size_t count = 0;
    reader->nested(nested, parent, [&](TObject&& row) {
      found += row.find("name")->asText() + " ";
      return ++count < most;
    });
    return found;
  };
  if (!bed->nests) {
    EXPECT_NE(faultOf(TStoreErrorKind::Read, [&] { names(TObject{{"ID", 5}}); }), "");
    return;
  }
  EXPECT_EQ(names(TObject{{"x", 1}, {"id", 5}}), "Ann Cyd ");
  EXPECT_EQ(names(TObject{{"ID", "5"}}), "Bob ");
  EXPECT_EQ(names(TObject{{"ID", nullptr}}), "Dan ");
  EXPECT_EQ(names(TObject{{"ID", 5}}, 1), "Ann ");
  EXPECT_EQ(names(TObject{{"ID", "\"}, \"x\": {\"y\": \""}}), "");
  EXPECT_EQ(faultOf(TStoreErrorKind::Read,
                    [&] {
                      names(TObject{{"NO", 5}});
                    }),
            "The parent row has no field for the query parameter :ID");
  EXPECT_NE(faultOf(TStoreErrorKind::Read, [&] { names(TObject{{"ID", TObject{{"$ne", 0}}}}); }), "");
  // The root cursor goes on where it was.
  EXPECT_EQ(reader->next()->find("name")->asText(), "Bob");
}

TEST_P(StoreConformance, EveryKindOfValueComesBack) {
  if (!bed->takesAny) return;
  const TObject document =
      typedJson(R"({"_id":1,"none":null,"yes":true,"no":false,"int":5,"least":-9223372036854775808,
      "beyond":9007199254740993,"double":2.5,"whole":3.0,"tiny":5e-324,"text":"plain","empty":"","list":[1,[2,[]],{"a":null}],
      "object":{"b":{"c":[]},"d":{}},"date":{"$date":-1},"far":{"$date":253402300799999},"bytes":{"$binary":"AP/+gA=="},
      "nobytes":{"$binary":""},"id":{"$oid":"0123456789abcdef01234567"},"decimal":{"$decimal":"1.50"}})")
          .asObject();
  fill({document});
  TObject expected = document;
  if (!bed->keepsKinds) {
    expected.set("date", "1969-12-31T23:59:59.999Z");
    expected.set("far", "9999-12-31T23:59:59.999Z");
    expected.set("bytes", "&base64;AP/+gA==");
    expected.set("nobytes", "&base64;");
    expected.set("id", "0123456789abcdef01234567");
    expected.set("decimal", 1.5);
  }
  const std::vector<TObject> rows = readAll(*bed, collection);
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(typedText(rows[0]), typedText(expected));
}

TEST_P(StoreConformance, TextsComeBackWhole) {
  if (!bed->takesAny) return;
  std::string every;
  for (int c = 1; c < 128; ++c)
    if (c != '"') every += static_cast<char>(c);
  std::vector<TObject> documents;
  int id = 0;
  for (const std::string& text :
       {std::string("x") + every + "x", std::string("a\0b", 3),
        std::string("\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E\xE2\x80\xA8"), std::string(1'000'000, 'm'),
        std::string("back\\slash \\u0041"), std::string("5"), std::string()})
    documents.push_back(TObject{{"_id", ++id}, {"\xC3\xA9\xE2\x82\xAC", text}});
  fill(documents);
  const std::vector<TObject> rows = readAll(*bed, collection);
  ASSERT_EQ(rows.size(), documents.size());
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_TRUE(rows[i] == documents[i]) << toJson(rows[i]).substr(0, 300);
}

TEST_P(StoreConformance, RefusesExactlyTheDuplicates) {
  if (!bed->hasKeys) return;
  for (const std::int64_t bulkSize : {0, 3, 100}) {
    SCOPED_TRACE(bulkSize);
    const std::string name = freshName();
    TRecordingSink outcomes;
    std::vector<TObject> documents = numbered(5);
    documents.insert(documents.begin() + 2, TObject{{"_id", 2}, {"name", "a \"second\" two"}});
    documents.push_back(TObject{{"_id", 5}, {"name", "second five"}});
    writeAll(*bed, name, documents, outcomes, bulkSize);
    EXPECT_EQ(outcomes.storedCount, 5);
    ASSERT_EQ(outcomes.refusals.size(), 2U);
    EXPECT_EQ(outcomes.refusals[0].first, R"({"_id":2,"name":"a \"second\" two"})");
    EXPECT_EQ(outcomes.refusals[1].first, R"({"_id":5,"name":"second five"})");
    for (const auto& [text, message] : outcomes.refusals)
      EXPECT_TRUE(message.starts_with("Error Code: 11000\rError Message: ")) << message;
    // What stands in the store is what was not refused; the store is as good as before.
    EXPECT_EQ(texts(readAll(*bed, name)), texts(numbered(5)));
    writeAll(*bed, name, {TObject{{"_id", 6}, {"name", "row 6"}}}, outcomes, bulkSize);
    EXPECT_EQ(texts(readAll(*bed, name)), texts(numbered(6)));
  }
}

TEST_P(StoreConformance, AWriterGoesOnBehindARefusal) {
  TStoreOptions options = optionsFor(bed->connection(collection));
  options.bulkSize = 2;
  {
    const auto writer = bed->connector().connectTarget(options);
    for (int round = 0; round < 2; ++round) {
      writer->openTarget({"target", bed->target(collection), {}});
      for (const TObject& document : numbered(5)) writer->write(bed->toStore(document), sink);
      writer->flush(sink);
      EXPECT_EQ(sink.storedCount + static_cast<std::int64_t>(sink.refusals.size()), 5 * (round + 1));
      writer->flush(sink);
      EXPECT_EQ(sink.storedCount + static_cast<std::int64_t>(sink.refusals.size()), 5 * (round + 1));
    }
  }
  EXPECT_EQ(sink.refusals.size(), bed->hasKeys ? 5U : 0U);
  EXPECT_EQ(readAll(*bed, collection).size(), bed->hasKeys || bed->overwrites ? 5U : 10U);
}

TEST_P(StoreConformance, AnEmptySourceHasNoRows) {
  if (bed->emptySource.empty()) {
    EXPECT_TRUE(readAll(*bed, collection).empty());
    return;
  }
  const std::string fault = faultOf(TStoreErrorKind::DataSource, [&] { readAll(*bed, collection); });
  EXPECT_EQ(fault, bed->emptySource.ends_with(' ') ? bed->emptySource + collection : bed->emptySource);
}

TEST_P(StoreConformance, RefusesStrangers) {
  const TStoreOptions options = optionsFor(bed->strangersConnection());
  if (options.connection.isNull()) return;
  for (const auto& call : {std::function<void()>([&] { bed->connector().connectSource(options); }),
                           std::function<void()>([&] { bed->connector().connectTarget(options); }),
                           std::function<void()>([&] { bed->connector().checkSource(options); }),
                           std::function<void()>([&] { bed->connector().checkTarget(options); })}) {
    const std::string fault = faultOf(TStoreErrorKind::Connect, call);
    EXPECT_NE(fault.find(bed->strangerFault), std::string::npos) << fault;
    EXPECT_EQ(fault.find("wrong secret"), std::string::npos) << fault;
  }
}

TEST_P(StoreConformance, TellsThatNobodyIsThere) {
  const TStoreOptions options = optionsFor(bed->nowhere());
  EXPECT_NE(faultOf(TStoreErrorKind::Connect, [&] { bed->connector().connectSource(options); }), "");
  EXPECT_NE(faultOf(TStoreErrorKind::Connect, [&] { bed->connector().connectTarget(options); }), "");
  EXPECT_NE(faultOf(TStoreErrorKind::Connect, [&] { bed->connector().checkTarget(options); }), "");
}

TEST_P(StoreConformance, ChecksChangeNothing) {
  fill(numbered(3));
  const TStoreOptions options = optionsFor(bed->connection(collection));
  bed->connector().checkSource(options);
  bed->connector().checkTarget(options);
  EXPECT_EQ(texts(read()), texts(numbered(3)));
}

TEST_P(StoreConformance, ManyThreadsAtOnce) {
  if (!bed->connector().traits().parallel) return;
  fill(numbered(200));
  std::vector<std::jthread> threads;
  for (int number = 0; number < 4; ++number)
    threads.emplace_back([&, number, name = freshName()] {
      const std::vector<TObject> rows = readAll(*bed, collection, {number + 1, 4, 50 * number, 50}, 9);
      if (!bed->rangesShares) {
        EXPECT_EQ(rows.size(), 50U);
      }
      TRecordingSink outcomes;
      writeAll(*bed, name, rows, outcomes, 20);
      EXPECT_EQ(outcomes.storedCount, static_cast<std::int64_t>(rows.size()));
    });
}

INSTANTIATE_TEST_SUITE_P(Stores, StoreConformance, testing::ValuesIn(bedKinds()),
                         [](const auto& kind) { return kind.param.name; });

}  // namespace

}  // namespace hollowmere
