#include "jsongrid/export.h"

#include <gtest/gtest.h>

#include <QProcess>

#include "json/json.h"
#include "jsongrid/documentlist.h"
#include "jsongrid/exportxlsx.h"
#include "jsongrid/jsongrid.h"
#include "support/failingfiles.h"
#include "support/tempfolder.h"

namespace hollowmere {
namespace {

class GridExport : public ::testing::Test {
 protected:
  GridExport() {
    TList documents;
    documents.emplace_back(TObject{{"id", 1},
                                   {"text", "a,\"b\"\r\n<c> & 'ä€😀'\tz"},
                                   {"when", TValue::dateTime(1767323045678)},
                                   {"on", true},
                                   {"bytes", TValue::binary(std::string("\0\xFF", 2))}});
    documents.emplace_back(TObject{
        {"id", -2.5}, {"text", ""}, {"nested", parseJson(R"({"k":["<&>",null]})")}, {"on", TValue()}});
    documents.emplace_back(TObject{
        {"id", std::int64_t{1234567890123456789}}, {"text", "=1+2"}, {"when", TValue::dateTime(-4e12)}});
    documents.emplace_back(
        TObject{{"id", TValue::decimal("0.1")}, {"text", std::string("\x01_x0041_ \0!", 11)}});
    grid_.load(std::move(documents));
  }

  TValue readBack(const char* format, const std::string& path) {
    QProcess python;
    python.start("python3",
                 {HOLLOWMERE_TESTS_DIR "/jsongrid/readback.py", format, QString::fromStdString(path)});
    python.waitForFinished(60'000);
    EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    return parseJson(python.readAllStandardOutput().toStdString());
  }

  TValue exported(TTextFormat format, const char* reader) {
    const std::string path = temp_.file("out");
    EXPECT_TRUE(exportText(grid_, format, files_, path, "Title <&>", {}));
    return readBack(reader, path);
  }

  TTempFolder temp_;
  TDiskFiles files_;
  TJsonGrid grid_;
};

TEST_F(GridExport, CsvIsReadBackByAnother) {
  EXPECT_EQ(toJson(exported(TTextFormat::Csv, "csv")),
            toJson(TValue(TList{TList{"id", "text", "when", "on", "bytes", "nested"},
                                TList{"1", "a,\"b\"\r\n<c> & 'ä€😀'\tz", "2026-01-02T03:04:05.678Z", "True",
                                      "&base64;AP8=", ""},
                                TList{"-2.5", "", "", "", "", R"({"k":["<&>",null]})"},
                                TList{"1234567890123456789", "=1+2", "1843-03-31T16:53:20.000Z", "", "", ""},
                                TList{"0.1", std::string("\x01_x0041_ \0!", 11), "", "", "", ""}})));
  const std::string bytes = readBytes(temp_.file("out"));
  EXPECT_NE(bytes.find("\r\n-2.5,\"\",,,,"), std::string::npos)
      << "an empty text differs from nothing at all";
  const std::string guarded = tableText(grid_, TTextFormat::CsvGuarded);
  EXPECT_NE(guarded.find(",'=1+2,"), std::string::npos);
  EXPECT_NE(guarded.find("\n-2.5,"), std::string::npos) << "numbers stay numbers";
}

TEST_F(GridExport, MarkupIsReadBackByAnother) {
  const TList html = exported(TTextFormat::Html, "html").asList();
  ASSERT_EQ(html.size(), 6U);
  EXPECT_EQ(html[0], TValue(TList{"Title <&>"}));
  EXPECT_EQ(html[2].asList()[1], TValue("a,\"b\"\r\n<c> & 'ä€😀'\tz"));
  EXPECT_EQ(html[3].asList()[5], TValue(R"({"k":["<&>",null]})"));
  EXPECT_EQ(
      toJson(exported(TTextFormat::Xml, "xml")),
      toJson(TValue(TList{
          TList{TList{"id", "number", "", "1"}, TList{"text", "text", "", "a,\"b\"\r\n<c> & 'ä€😀'\tz"},
                TList{"when", "date-time", "", "2026-01-02T03:04:05.678Z"},
                TList{"on", "boolean", "", "true"}, TList{"bytes", "binary", "", "AP8="}},
          TList{TList{"id", "number", "", "-2.5"}, TList{"text", "text", "", ""}, TList{"on", "null", "", ""},
                TList{"nested", "object", "", R"({"k":["<&>",null]})"}},
          TList{TList{"id", "number", "", "1234567890123456789"}, TList{"text", "text", "", "=1+2"},
                TList{"when", "date-time", "", "1843-03-31T16:53:20.000Z"}},
          TList{TList{"id", "number", "", "0.1"}, TList{"text", "text", "base64", "AV94MDA0MV8gACE="}}})));
}

TEST_F(GridExport, TextKeepsRowsOnLines) {
  const TList tabbed = exported(TTextFormat::Tabbed, "tsv").asList();
  ASSERT_EQ(tabbed.size(), 5U);
  EXPECT_EQ(tabbed[1].asList()[1], TValue("a,\"b\" <c> & 'ä€😀' z"));
  grid_.load(std::move(parseJson(R"([{"n":5,"name":"ä\nb"},{"n":123,"other":"x"}])").asList()));
  EXPECT_EQ(tableText(grid_, TTextFormat::Aligned),
            "n    name  other\n"
            "---  ----  -----\n"
            "  5  ä b\n"
            "123        x\n");
}

TEST_F(GridExport, JsonIsTheDocumentsThemselves) {
  grid_.load(std::move(parseJson(R"([{"b":1,"a":null},7,{"a":[{}]}])").asList()));
  EXPECT_EQ(tableText(grid_, TTextFormat::JsonLines), "{\"b\":1,\"a\":null}\n7\n{\"a\":[{}]}\n");
  EXPECT_EQ(parseDocuments(tableText(grid_, TTextFormat::JsonList)),
            parseDocuments(tableText(grid_, TTextFormat::JsonLines)));
  EXPECT_EQ(tableText(TGridPart(grid_, {2, 0}, {1}), TTextFormat::JsonLines), "{\"a\":[{}]}\n{\"a\":null}\n");
  grid_.load({});
  EXPECT_EQ(parseDocuments(tableText(grid_, TTextFormat::JsonList)), TList{});
}

TEST_F(GridExport, SpreadsheetHoldsNumbersDatesAndTexts) {
  const std::string path = temp_.file("out.xlsx");
  ASSERT_TRUE(exportSpreadsheet(grid_, files_, path, {}));
  const TList sheets = readBack("xlsx", path).asList();
  ASSERT_EQ(sheets.size(), 1U);
  const TList& rows = sheets[0].asList();
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_EQ(rows[0].asList()[3].asList()[3], TValue("on"));
  const TList& first = rows[1].asList();
  EXPECT_EQ(first[0], TValue(TList{"A2", "n", "", "1"}));
  EXPECT_EQ(first[1], TValue(TList{"B2", "inlineStr", "", "a,\"b\"\r\n<c> & 'ä€😀'\tz"}));
  EXPECT_EQ(first[2].asList()[1], TValue("n"));
  EXPECT_NE(first[2].asList()[2], TValue("")) << "a number format makes it a date";
  EXPECT_NEAR(std::stod(first[2].asList()[3].asText()), 46024.127843, 1e-6);
  EXPECT_EQ(first[3], TValue(TList{"D2", "b", "", "1"}));
  EXPECT_EQ(rows[2].asList()[0], TValue(TList{"A3", "n", "", "-2.5"}));
  EXPECT_EQ(rows[3].asList()[0], TValue(TList{"A4", "inlineStr", "", "1234567890123456789"})) << "19 digits";
  EXPECT_EQ(rows[3].asList()[1], TValue(TList{"B4", "inlineStr", "", "=1+2"})) << "never a formula";
  EXPECT_EQ(rows[3].asList()[2].asList()[3], TValue("1843-03-31T16:53:20.000Z"));
  EXPECT_EQ(rows[4].asList()[0], TValue(TList{"A5", "n", "", "0.1"}));
  EXPECT_EQ(rows[4].asList()[1].asList()[3], TValue(std::string("\x01_x0041_ \0!", 11)));
}

TEST_F(GridExport, SpreadsheetKeepsToTheLimitsOfTheFormat) {
  TList documents;
  std::string longText;
  for (int i = 0; i < 20'000; ++i) longText += "😀";  // 40,000 units
  documents.emplace_back(TObject{{"a", longText}});
  std::string escapes;
  for (int i = 0; i < 4'000; ++i) escapes += "_x0041_";
  documents.emplace_back(TObject{{"a", escapes}});
  for (int i = 0; i < 5; ++i) documents.emplace_back(TObject{{"a", i}});
  grid_.load(std::move(documents));
  const std::string path = temp_.file("out.xlsx");
  ASSERT_TRUE(exportSpreadsheet(grid_, files_, path, {}, {.rowsPerSheet = 3}));
  const TList sheets = readBack("xlsx", path).asList();
  ASSERT_EQ(sheets.size(), 3U);
  EXPECT_EQ(sheets[1].asList().size(), 4U) << "each has the captions";
  EXPECT_EQ(sheets[2].asList()[1].asList()[0], TValue(TList{"A2", "n", "", "4"}));
  const std::string cell = sheets[0].asList()[1].asList()[0].asList()[3].asText();
  EXPECT_TRUE(cell.ends_with("😀... (shortened, 40000 characters)"));
  EXPECT_LE(QString::fromStdString(cell).size(), 32'767);
  EXPECT_TRUE(
      sheets[0].asList()[2].asList()[0].asList()[3].asText().ends_with("... (shortened, 28000 characters)"));
  try {
    exportSpreadsheet(grid_, files_, path, {}, {.columns = 0});
    FAIL();
  } catch (const TExportError& error) {
    EXPECT_STREQ(error.what(), "A spreadsheet holds 0 columns; there are 1.");
  }
}

TEST_F(GridExport, AStopAndAFullDiskLeaveTheOldFile) {
  const std::string path = temp_.file("out");
  TList documents;
  for (int i = 0; i < 20'000; ++i) documents.emplace_back(TObject{{"n", i}, {"text", std::string(20, 'x')}});
  grid_.load(std::move(documents));
  const auto attempt = [&](auto write) {
    writeBytes(path, "old");
    const auto entries = temp_.entries();
    TStopFlag stop;
    const TExportWatch watch{[&](std::size_t rows) { rows > 5'000 ? stop.set() : void(); }, &stop};
    EXPECT_FALSE(write(files_, watch));
    TFailingFiles full(70'000);
    EXPECT_THROW(write(full, TExportWatch{}), TFileError);
    EXPECT_EQ(readBytes(path), "old");
    EXPECT_EQ(temp_.entries(), entries);
  };
  for (const TTextFormat format :
       {TTextFormat::Aligned, TTextFormat::Csv, TTextFormat::Html, TTextFormat::Xml, TTextFormat::JsonList})
    attempt([&](TSafeFiles& files, const TExportWatch& watch) {
      return exportText(grid_, format, files, path, "", watch);
    });
  attempt([&](TSafeFiles& files, const TExportWatch& watch) {
    return exportSpreadsheet(grid_, files, path, watch);
  });
  EXPECT_THROW(exportText(grid_, TTextFormat::Csv, files_, temp_.file("none/out"), "", {}), TFileError);
}

TEST_F(GridExport, AHundredThousandRowsAreAllThere) {
  TList documents;
  for (int i = 0; i < 100'000; ++i)
    documents.emplace_back(TObject{{"n", i}, {"text", "row " + std::to_string(i)}});
  grid_.load(std::move(documents));
  const std::string path = temp_.file("out");
  ASSERT_TRUE(exportText(grid_, TTextFormat::Csv, files_, path, "", {}));
  EXPECT_EQ(readBack("csv", path).asList().size(), 100'001U);
  ASSERT_TRUE(exportText(grid_, TTextFormat::JsonLines, files_, path, "", {}));
  EXPECT_EQ(readDocuments(path).size(), 100'000U);
  ASSERT_TRUE(exportSpreadsheet(grid_, files_, path, {}));
  const TList sheets = readBack("xlsx", path).asList();
  ASSERT_EQ(sheets[0].asList().size(), 100'001U);
  EXPECT_EQ(sheets[0].asList().back().asList()[1].asList()[3], TValue("row 99999"));
}

}  // namespace
}  // namespace hollowmere
