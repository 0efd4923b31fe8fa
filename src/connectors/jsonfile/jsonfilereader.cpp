#include "connectors/jsonfile/jsonfilereader.h"

#include "connectors/jsonfile/jsonfileconnector.h"

namespace hollowmere {

namespace {

bool isBlank(std::string_view line) { return line.find_first_not_of(" \t") == std::string_view::npos; }

/// At most count characters of UTF-8 text; a character is never cut.
std::string_view firstCharacters(std::string_view text, std::size_t count) {
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    const bool startsCharacter = (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
    if (startsCharacter && count-- == 0) break;
  }
  return text.substr(0, at);
}

}  // namespace

TJsonFileReader::TJsonFileReader(const TStoreOptions& options)
    : lines_(jsonFileName(options.connection), options.bufferBytes) {}

void TJsonFileReader::openRoot(const TDataSource& /*source*/, const TShare& /*share*/) {
  lines_.rewind();
  opened_ = true;
}

std::optional<TObject> TJsonFileReader::getJSONFromFile() {
  if (!opened_) throw TStoreError(TStoreErrorKind::DataSource, "Source file stream is not initialized.");
  std::optional<std::string_view> line;
  do {
    line = lines_.next();
    if (!line) return std::nullopt;
  } while (isBlank(*line));
  line_ = *line;
  std::string reason = "it is not an object";
  try {
    TValue value = json_.read(line_);
    if (value.is(TKind::Object)) return std::move(value.asObject());
  } catch (const TJsonError& error) {
    reason = error.what();
  }
  throw TStoreError(TStoreErrorKind::Read,
                    "Unable to parse text " + std::string(firstCharacters(line_, 300)) + "...",
                    "(line " + std::to_string(lines_.lineNumber()) + ": " + reason + ")");
}

void TJsonFileReader::nested(const TDataSource& source, const TObject& /*parent*/, const TRowSink& /*row*/) {
  throw TStoreError(TStoreErrorKind::Read,
                    "A JSON file has no nested data sources: unable to query " + source.name);
}

}  // namespace hollowmere
