#include "fuzz/targets.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

#include "connectors/cassandra/cassbind.h"
#include "connectors/cassandra/cassvalue.h"
#include "connectors/cassandra/rootplan.h"
#include "connectors/datetimetext.h"
#include "connectors/hbase/hbasefiltertext.h"
#include "connectors/hbase/hbasequery.h"
#include "connectors/hbase/hbaserow.h"
#include "connectors/jsonfile/linereader.h"
#include "connectors/jsonquery.h"
#include "connectors/mongodb/bsonvalue.h"
#include "connectors/mongodb/extendedjson.h"
#include "connectors/mongodb/shelloutput.h"
#include "connectors/mongodb/shellstatements.h"
#include "connectors/nosqlcommon.h"
#include "connectors/storeerror.h"
#include "engine/xmltojson.h"
#include "json/encoding.h"
#include "json/json.h"
#include "project/projectdocument.h"
#include "settings/cipher.h"
#include "settings/rtftext.h"
#include "sqlmongo/sqltomongo.h"
#include "support/hbasewire/standin.h"
#include "support/jsshell.h"
#include "support/tempfolder.h"

namespace hollowmere::fuzz {

namespace {

#define REQUIRE(condition)                                                 \
  do {                                                                     \
    if (!(condition)) {                                                    \
      std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                        \
    }                                                                      \
  } while (false)

const TDateTimeText& dates() {
  static const TDateTimeText texts("en_US");
  return texts;
}

/// What is read can be written and read again, and is the same.
void json(std::string_view bytes) {
  try {
    const TValue value = parseJson(bytes);
    REQUIRE(isUtf8(bytes));
    REQUIRE(parseJson(toJson(value)) == value);
  } catch (const TJsonError& error) {
    REQUIRE(error.offset() <= bytes.size());
  }
}

std::vector<std::string> splitPlainly(std::string text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  std::vector<std::string> lines(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    if (text[i] == '\r' || text[i] == '\n')
      lines.emplace_back();
    else
      lines.back() += text[i];
  }
  if (lines.back().empty()) lines.pop_back();
  return lines;
}

/// A small buffer gives the lines that a plain loop over the whole text gives.
void lines(std::string_view bytes) {
  static const TTempFolder folder;
  const std::string path = folder.file("lines");
  std::string text(bytes);
  // Long enough for the buffer to be filled several times.
  while (!text.empty() && text.size() < 2000) text += bytes;
  std::ofstream(path, std::ios::binary) << text;
  TLineReader reader(path, 1);
  for (const std::string& line : splitPlainly(text)) {
    const auto read = reader.next();
    REQUIRE(read && *read == line);
  }
  REQUIRE(!reader.next());
}

void query(std::string_view bytes) {
  try {
    (void)TJsonQuery(bytes).bind(TObject{{"id", TValue("x\", \"$where\": \"1")}, {"n", TValue(5)}});
  } catch (const TJsonError&) {
  } catch (const TStoreError&) {
  }
}

/// A date-time that was read is written so that it is read again as the same moment.
void date(std::string_view bytes) {
  const auto moment = dates().parse(bytes);
  if (moment) REQUIRE(dates().parse(toIsoText(*moment)) == moment);
}

void markers(std::string_view bytes) {
  try {
    convertText(std::string(bytes), false, dates());
    convertText(std::string(bytes), true, dates());
  } catch (const std::runtime_error&) {
  }
}

void shell(std::string_view bytes) { MongoShellToJson(bytes, dates()); }

/// A statement is refused with a message, or becomes a text that a shell can read.
void sql(std::string_view bytes) {
  static TJsShell engine;
  for (const TShellForm form : {TShellForm::Classic, TShellForm::Modern}) {
    const TSqlToMongo result = SqlToMongo(bytes, form);
    REQUIRE(result.translated() != result.shellText.empty());
    REQUIRE(result.place <= bytes.size());
    if (result.translated()) engine.parse(result.shellText);
  }
}

void shellOutput(std::string_view bytes) { readShellOutput(bytes, dates()); }

void statements(std::string_view bytes) {
  std::size_t length = 0;
  for (const TShellStatement& each : splitStatements(bytes)) length += each.text.size();
  REQUIRE(length <= bytes.size());
}

void extendedJson(std::string_view bytes) {
  try {
    fromExtendedJson(parseJson(bytes));
  } catch (const TJsonError&) {
    return;
  }
}

/// A filter is read or refused, and no value of a parameter can end the text that it stands in.
void filter(std::string_view bytes) {
  try {
    parseHBaseFilter(NormalizeHBaseFilter(bytes));
  } catch (const THBaseFilterError&) {
  }
  const std::string value(bytes);
  const TObject parent{{"v", TValue::binary(value)}};
  const THBaseFilter bound =
      parseHBaseFilter(bindHBaseFilter("PrefixFilter(:v) AND RowFilter(=, 'binary::v')", parent));
  REQUIRE(bound.parts.size() == 2);
  // An empty one lets nothing pass.
  const auto& first = bound.parts[0].arguments;
  REQUIRE(value.empty() ? first.at(1).text == "binary:" : first.at(0).text == value);
  REQUIRE(bound.parts[1].arguments[1].text == "binary:" + value);
}

void cassandra(std::string_view bytes) {
  const std::size_t zero = std::min(bytes.find('|'), bytes.size());
  const std::string_view type = bytes.substr(0, zero);
  const std::string_view value = bytes.substr(std::min(zero + 1, bytes.size()));
  try {
    CassandraBytesToText(value, CassandraValidatorToCqlType(type), false, dates());
    CassandraBytesToText(value, type, true, dates(), TCollectionLengths::Short16);
  } catch (const std::runtime_error&) {
  }
}

/// "TYPE|TEXT": what a text is as a column's bytes is read, and written again is read as the same.
void cassbind(std::string_view bytes) {
  const std::size_t bar = std::min(bytes.find('|'), bytes.size());
  const TCassType type = TCassType::fromClass(bytes.substr(0, bar));
  const TValue text(std::string(bytes.substr(std::min(bar + 1, bytes.size()))));
  for (const TCollectionLengths lengths : {TCollectionLengths::Short16, TCollectionLengths::Int32}) {
    std::string bound;
    try {
      bound = cassBytes(text, type, lengths, dates());
    } catch (const std::runtime_error&) {
      continue;
    }
    const TValue read = cassValue(bound, type, lengths, dates());
    // A text may hold what is a marker once its own are gone.
    if (read.isNull() || toJson(read).find('&') != std::string::npos) continue;
    REQUIRE(toJson(cassValue(cassBytes(read, type, lengths, dates()), type, lengths, dates())) ==
            toJson(read));
  }
}

/// A statement is refused, or taken apart so that its pieces are statements, too.
void cql(std::string_view bytes) {
  std::size_t end = 0;
  for (const TCqlToken& token : cqlTokens(bytes)) {
    REQUIRE(token.begin >= end && !token.text.empty());
    end = token.begin + token.text.size();
  }
  REQUIRE(end <= bytes.size());
  const TMarkedCql marked = markParameters(bytes);
  if (!selectFault(bytes).empty()) return;
  const std::string plain = withoutComments(bytes);
  REQUIRE(withoutComments(plain) == plain);
  const TCqlSelect select(bytes);
  REQUIRE(selectFault(select.withLimit(5)).empty());
  REQUIRE(selectFault(select.countCql()).empty());
  const std::vector<TCassColumn> columns = {{"p", "int", TKeyRole::Partition, 0, false},
                                            {"a", "int", TKeyRole::Clustering, 0, true}};
  std::string why;
  if (const auto plan = planRoot(select, columns, false, why)) {
    // What was appended must not end in something of the user's.
    REQUIRE(plan->firstCql(false, false, 5).find(" limit 5") != std::string::npos);
    REQUIRE(cqlTokens(plan->select).size() >= 4);
  } else {
    REQUIRE(!why.empty());
  }
}

void cassValueOf(std::string_view bytes) {
  const std::size_t bar = std::min(bytes.find('|'), bytes.size());
  const TCassType type = TCassType::fromClass(bytes.substr(0, bar));
  (void)type.cql();
  for (const TCollectionLengths lengths : {TCollectionLengths::Short16, TCollectionLengths::Int32}) try {
      toJson(cassValue(bytes.substr(std::min(bar + 1, bytes.size())), type, lengths, dates()));
    } catch (const std::runtime_error&) {
    }
}

/// An HBase that answers a fetch of rows with bytes of ours.
class TOddHBase {
 public:
  [[nodiscard]] TThriftOptions options() const {
    TThriftOptions made;
    made.host = "127.0.0.1";
    made.port = server_.port();
    made.answerTime = std::chrono::milliseconds(50);
    return made;
  }
  void answerWith(std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    answer_ = bytes;
  }

 private:
  std::optional<std::string> answer(const std::string& method) {
    const std::lock_guard lock(mutex_);
    return method == "scannerGetList" ? std::optional(answer_) : std::nullopt;
  }

  std::mutex mutex_;
  std::string answer_;
  hbasewire::THBaseStandIn server_{
      {.quick = [this](const std::string& method, const std::string& /*call*/) { return answer(method); }}};
};

/// Whatever a server answers is rows, which are documents, or a fault.
void hbase(std::string_view bytes) {
  static TOddHBase server;
  static THBaseClient client(server.options());
  server.answerWith(bytes);
  THBaseRange range;
  range.table = "t";
  std::vector<THBaseRow> rows;
  try {
    client.nextRows(client.openScanner(range, 100), 100, range.table, rows);
    for (const THBaseRow& row : rows) {
      const TObject document = rowDocument(row);
      REQUIRE(document.size() == row.cells.size() + 1);
    }
  } catch (const THBaseFault&) {
  }
}

void xml(std::string_view bytes) { xmlToJson(bytes); }

void bson(std::string_view bytes) {
  bson_t document;
  if (!bson_init_static(&document, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size())) return;
  try {
    const TBsonPtr written(bson_new());
    JsonToBson(BsonToJson(document), written.get(), dates());
    BsonToJson(*written.get());
  } catch (const std::runtime_error&) {
  }
}

/// A project that is read is written as a document that is read as the same project.
void project(std::string_view bytes) {
  try {
    const TProject read = fromDocument(parseJson(bytes));
    REQUIRE(toDocument(fromDocument(toDocument(read))) == toDocument(read));
  } catch (const TJsonError&) {
  } catch (const TProjectError&) {
  }
}

void rtf(std::string_view bytes) { REQUIRE(isUtf8(rtfText(bytes))); }

void cipher(std::string_view bytes) {
  static const TCipher sealed;
  try {
    (void)sealed.decryptString(bytes);
    (void)sealed.decryptStream(bytes);
  } catch (const TCipherError&) {
  }
}

using namespace std::string_view_literals;

constexpr std::string_view projectSeed =
    R"({"vgGeneralProjectName":"p","vgGeneralProjectComment":"","vgGeneralSourceFetchLimit":100,)"
    R"("vgGeneralTargetDegree":1,"vgGeneralLoadNum":0,"vgGeneralIgnoreNulls":true,"vgGeneralDiscNum":0,)"
    R"("vgGeneralLogFile":"l","vgGeneralDiscFile":"d","vgGeneralCategorySourceDB":{"dbtype":"MongoDB",)"
    R"("vgGeneralSourceConn":{"host":"h"}},"vgGeneralCategoryTargetDB":{"vgGeneralTargetDBType":"JSON File",)"
    R"("vgGeneralTargetConn":"f"},"datasourcelist":[{"name":"a","datasource":{"query":""},"count":0}],)"
    R"("datatargetlist":[{"name":"t","datatarget":"t","saslpwd":""}],"datamaplist":[{"target":"t",)"
    R"("source":"a","children":[{"target":"x","source":null,"targettype":"Number"}],"targettype":"String"}]})"sv;

constexpr std::string_view sqlSeed =
    "select a.b as x, count(*), avg(n) from t where not (a > = 1 or c like '%a/_b' and d between 1.5 and "
    "\"y\") "
    "and _id in ('0123456789abcdef01234567', null) and e is not null group by a.b having sum(n) <> 2 "
    "order by x desc, avg(n) limit 10, 20"sv;

constexpr std::array table{
    TTarget{"json", json, R"({"a":[1,-2.5e3,"x\u00e9\n",null,true,{"b":{}}],"big":123456789012345678901})"sv},
    TTarget{"lines", lines, "\xEF\xBB\xBF{\"a\":1}\r\n\r{\"b\":2}\n\n{\"c\":3}"sv},
    TTarget{"query", query, R"({"a": :id, "b": ":n", "c": {"$gt": 5, "d": [":id", true]}})"sv},
    TTarget{"date", date, "2026-01-02T03:04:05.678+01:30"sv},
    TTarget{"markers", markers, "&base64;AAE= &quot;1/2/2026 3:04 PM&quot; &str;"sv},
    TTarget{"shell", shell,
            R"({ "a" : NumberLong("5"), "d" : ISODate("2020-01-02T03:04:05Z"), "n" : NaN })"sv},
    TTarget{"sql", sql, sqlSeed},
    TTarget{
        "shelloutput", shellOutput,
        "switched to db x\n{ \"a\" : 1 }\nType \"it\" for more\nError: error: { \"code\" : 13, \"errmsg\" : \"x\" }"sv},
    TTarget{"statements", statements,
            "use x; db.c.find({a: /b;/i})\n  .sort() // d\nvar e = `f`\nshow dbs"sv},
    TTarget{
        "extendedjson", extendedJson,
        R"({"a":{"$oid":"0123456789abcdef01234567"},"b":{"$date":{"$numberLong":"5"}},"c":{"$binary":{"base64":"AAE=","subType":"00"}},"d":{"$timestamp":{"t":1,"i":2}}})"sv},
    TTarget{"filter", filter, "SingleColumnValueFilter('f','c',=,'binary:a and b') and PageFilter(5)"sv},
    TTarget{"cassandra", cassandra, "map<text,list<int>>|\0\1\0\1a\0\6\0\1\0\4\0\0\0\5"sv},
    TTarget{
        "cassbind", cassbind,
        R"(TupleType(Int32Type,UUIDType,DurationType,TimeType,DecimalType,InetAddressType,TimestampType,MapType(UTF8Type,ListType(IntegerType)))|[-5,"550e8400-e29b-41d4-a716-446655440000","1y2mo3d4h5m6s7ms","13:14:15.016","-12.50e3","::1","2026-01-02T03:04:05Z",{"a":["-170141183460469231731687303715884105728",1]}])"sv},
    TTarget{"cql", cql,
            "select a, writetime(v) as w from \"K\".t where m = {'k' : :p} and b in (1, 'x''y') -- c\n"
            "per partition limit 3 limit 4 allow filtering;"sv},
    TTarget{"cassvalue", cassValueOf,
            "MapType(UTF8Type,FrozenType(TupleType(IntegerType,UserType(k,61,78:DecimalType))))|"
            "\0\0\0\1\0\0\0\1a\0\0\0\6\0\0\0\2\1\0"sv},
    TTarget{
        "hbase", hbase,
        "\x80\1\0\2\0\0\0\16scannerGetList\0\0\0\0\xf\0\0\xc\0\0\0\1"
        "\xb\0\1\0\0\0\1k\xd\0\2\xb\xc\0\0\0\1\0\0\0\4cf:a\xb\0\1\0\0\0\1v\xa\0\2\0\0\0\0\0\0\0\5\0\0\0"sv},
    TTarget{"xml", xml, "<a x='1'><b>t</b><b/><![CDATA[c]]>&amp;</a>"sv},
    TTarget{"bson", bson, "\x16\0\0\0\2k\0\3\0\0\0ab\0\4l\0\5\0\0\0\0\0"sv},
    TTarget{"project", project, projectSeed},
    TTarget{"cipher", cipher, "SE0BAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"sv},
    TTarget{"rtf", rtf, R"({\rtf1\uc2{\*\x;}\b a\u-10179\u-8704 ??\'e9\par\bin3 abc})"sv},
};

}  // namespace

std::span<const TTarget> targets() { return table; }

}  // namespace hollowmere::fuzz
