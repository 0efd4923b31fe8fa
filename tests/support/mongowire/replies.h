#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "support/mongowire/bsondoc.h"
#include "support/mongowire/wire.h"

namespace hollowmere::mongowire {

class TConnection;

/// What the handshake reports. The defaults are those of a stand-alone server of version 6.0.
struct THello {
  std::int32_t minWireVersion = 0;
  std::int32_t maxWireVersion = 17;
  std::int32_t maxBsonObjectSize = 16777216;
  std::int32_t maxMessageSizeBytes = 48000000;
  std::int32_t maxWriteBatchSize = 100000;
};

/// A command refused: becomes {ok: 0, errmsg, code, codeName}.
class TCommandError : public std::runtime_error {
 public:
  TCommandError(std::int32_t code, std::string codeName, const std::string& text)
      : std::runtime_error(text), code_(code), codeName_(std::move(codeName)) {}
  TBson reply() const;

 private:
  std::int32_t code_;
  std::string codeName_;
};

TBson okReply();
/// {ok: 0, code: 59, codeName: "CommandNotFound", errmsg: "no such command: 'x'"}
TBson unknownCommand(std::string_view command);
/// The answer to what every kind of server here answers alike: hello, ping, buildInfo, endSessions, and the
/// refusal of commands in OP_QUERY messages. Nothing for other commands.
std::optional<TBson> commonReply(const THello& hello, const TConnection& connection, const TRequest& request);

/// The document of an answer to a write command, with its writeErrors.
class TWriteReply {
 public:
  void refuse(std::int32_t index, std::int32_t code, std::string_view text);
  /// `n` rows were taken; `modified` adds nModified, and `upserted` that array, as update answers.
  TBson finish(std::int32_t n, std::optional<std::int32_t> modified = std::nullopt,
               const std::optional<TBson>& upserted = std::nullopt);

 private:
  TBsonBuilder errors_;
  std::uint32_t refused_ = 0;
};

}  // namespace hollowmere::mongowire
