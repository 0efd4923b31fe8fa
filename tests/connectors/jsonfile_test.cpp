#include <gtest/gtest.h>

#include "connectors/jsonfile/jsonfileconnector.h"
#include "json/json.h"
#include "support/tempfolder.h"

namespace hollowmere {

namespace {

class JsonFile : public testing::Test {
 protected:
  TTempFolder folder;
  std::unique_ptr<TStoreConnector> connector = makeJsonFileConnector();
  std::string name = folder.file("rows.json");

  TStoreOptions options(std::size_t bufferBytes = 1000) {
    TStoreOptions made;
    made.connection = name;
    made.bufferBytes = bufferBytes;
    return made;
  }

  /// The rows' texts; "!" and the text for one that is refused.
  std::vector<std::string> read(const std::string& bytes, std::size_t bufferBytes = 1000) {
    writeBytes(name, bytes);
    const auto reader = connector->connectSource(options(bufferBytes));
    reader->openRoot({}, {});
    std::vector<std::string> rows;
    for (;;) {
      try {
        const auto row = reader->next();
        if (!row) break;
        EXPECT_EQ(toJson(parseJson(reader->rowText())), toJson(*row));
        rows.push_back(toJson(*row));
      } catch (const TStoreError& error) {
        EXPECT_EQ(error.kind(), TStoreErrorKind::Read);
        rows.push_back("!" + reader->rowText());
      }
    }
    EXPECT_EQ(reader->position(), static_cast<std::int64_t>(bytes.size()));
    return rows;
  }
};

using TTexts = std::vector<std::string>;

TEST_F(JsonFile, KnowsEveryLineEnd) {
  const TTexts two = {R"({"a":1})", R"({"b":2})"};
  for (const char* end : {"\n", "\r", "\r\n", "\n\n", "\r\r", "\r\n\r\n", "\n\r", " \t\n  \n"})
    for (const char* last : {"", end})
      EXPECT_EQ(read(std::string("{\"a\":1}") + end + "{\"b\":2}" + last), two)
          << testing::PrintToString(end);
  EXPECT_EQ(read("\xEF\xBB\xBF{\"a\":1}\r\n{\"b\":2}"), two);
  EXPECT_EQ(read("\n\r\n{\"a\":1}\r{\"b\":2}\n"), two);
  EXPECT_EQ(read(""), TTexts());
  EXPECT_EQ(read("\xEF\xBB\xBF"), TTexts());
  EXPECT_EQ(read("\n \n"), TTexts());
}

TEST_F(JsonFile, LinesOfEveryLengthFitTheBuffer) {
  for (const char* end : {"\r\n", "\r", "\n"}) {
    std::string bytes;
    TTexts expected;
    for (std::size_t length = 0; length < 700; length += 1) {
      expected.push_back("{\"x\":\"" + std::string(length, 'y') + "\"}");
      bytes += expected.back() + end;
    }
    // The smallest buffer is 512 bytes.
    EXPECT_EQ(read(bytes, 1), expected);
  }
}

TEST_F(JsonFile, PassesOverALineThatIsNoObject) {
  const std::string lengthy = "{\"x\":" + std::string(500, 'y');
  EXPECT_EQ(read("{\"a\":1}\n" + lengthy + "\n[1]\n5\n{\"b\":2} {}\n{\"c\":\"\xFF\"}\n{\"a\":2}"),
            (TTexts{R"({"a":1})", "!" + lengthy, "![1]", "!5", "!{\"b\":2} {}", "!{\"c\":\"\xFF\"}",
                    R"({"a":2})"}));
  writeBytes(name, "\n\n" + lengthy);
  const auto reader = connector->connectSource(options());
  reader->openRoot({}, {});
  try {
    reader->next();
    ADD_FAILURE();
  } catch (const TStoreError& error) {
    EXPECT_EQ(error.text(), "Unable to parse text " + lengthy.substr(0, 300) + "...");
    EXPECT_TRUE(error.detail().starts_with("(line 3: ")) << error.detail();
  }
}

TEST_F(JsonFile, NamesWhatCannotBeOpened) {
  const auto fault = [&](auto call) {
    try {
      call();
    } catch (const TStoreError& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  EXPECT_EQ(fault([&] { connector->connectSource(options()); }), "Unable to find source JSON file " + name);
  EXPECT_EQ(folder.entries(), 0);
  const std::string missing = folder.file("no/rows.json");
  name = missing;
  EXPECT_TRUE(fault([&] {
                connector->connectTarget(options());
              }).starts_with("Unable to create target JSON file " + missing));
  EXPECT_EQ(fault([&] { connector->checkTarget(options()); }),
            "Unable to create target JSON file " + missing + ": the folder does not exist");
  name = folder.file("");
  EXPECT_NE(fault([&] { connector->checkTarget(options()); }), "");
  name = folder.file("plain.json");
  const auto reader = (writeBytes(name, "{}"), connector->connectSource(options()));
  EXPECT_EQ(fault([&] { reader->next(); }), "Source file stream is not initialized.");
}

/// Counts and keeps what comes back.
struct TOutcomes : TOutcomeSink {
  void stored(std::int64_t count) override { storedCount += count; }
  void skipped(std::int64_t) override { ADD_FAILURE(); }
  void refused(std::string documentText, const std::string& message) override {
    texts.push_back(std::move(documentText));
    lastMessage = message;
  }
  std::int64_t storedCount = 0;
  TTexts texts;
  std::string lastMessage;
};

TEST_F(JsonFile, WritesADocumentALine) {
  writeBytes(name, "what stood here before and is longer than what comes");
  TOutcomes outcomes;
  {
    const auto writer = connector->connectTarget(options());
    EXPECT_EQ(readBytes(name), "");
    writer->openTarget({});
    writer->write(TObject{{"a", "say \"hi\"\r\n"}, {"b", TValue::dateTime(0)}}, outcomes);
    writer->write(TObject{}, outcomes);
    writer->write(TObject{{"b", TValue::binary("\xFF")}, {"c\"", TList{"\""}}}, outcomes);
    writer->flush(outcomes);
  }
  EXPECT_EQ(outcomes.storedCount, 3);
  EXPECT_EQ(readBytes(name),
            "{\"a\":\"say &quot;hi&quot;\\r\\n\",\"b\":\"1970-01-01T00:00:00.000Z\"}\r{}\r"
            "{\"b\":\"&base64;/w==\",\"c\\\"\":[\"&quot;\"]}\r");
}

TEST_F(JsonFile, AFullDiskRefusesEveryDocument) {
  // Through a link: a device itself must not be in danger, whatever the writer does.
  name = folder.file("full.json");
  std::filesystem::create_symlink("/dev/full", name);
  TOutcomes outcomes;
  const auto writer = connector->connectTarget(options());
  for (int i = 1; i <= 3; ++i) writer->write(TObject{{"_id", i}}, outcomes);
  writer->flush(outcomes);
  EXPECT_EQ(outcomes.storedCount, 0);
  EXPECT_EQ(outcomes.texts, (TTexts{"{\"_id\":1}", "{\"_id\":2}", "{\"_id\":3}"}));
  EXPECT_EQ(outcomes.lastMessage,
            "Unable to write the target JSON file " + name + ": No space left on device");
}

}  // namespace

}  // namespace hollowmere
