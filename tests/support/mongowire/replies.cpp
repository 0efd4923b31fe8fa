#include "support/mongowire/replies.h"

#include <chrono>

#include "support/mongowire/server.h"

namespace hollowmere::mongowire {

namespace {

constexpr const char* kVersion = "6.0.0";

TBson helloReply(const THello& hello, const TConnection& connection, const TRequest& request) {
  TBsonBuilder reply;
  reply.boolean("helloOk", true).boolean("ismaster", true);
  reply.int32("maxBsonObjectSize", hello.maxBsonObjectSize);
  reply.int32("maxMessageSizeBytes", hello.maxMessageSizeBytes);
  reply.int32("maxWriteBatchSize", hello.maxWriteBatchSize);
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  BSON_APPEND_DATE_TIME(reply.get(), "localTime",
                        std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
  reply.int32("logicalSessionTimeoutMinutes", 30);
  reply.int32("connectionId", static_cast<std::int32_t>(connection.id()));
  reply.int32("minWireVersion", hello.minWireVersion).int32("maxWireVersion", hello.maxWireVersion);
  reply.boolean("readOnly", false);
  const TBsonView body(request.body);
  if (bson_has_field(body.get(), "saslSupportedMechs")) {
    TBsonBuilder mechanisms;
    mechanisms.text("0", "SCRAM-SHA-1").text("1", "SCRAM-SHA-256");
    reply.array("saslSupportedMechs", mechanisms.take());
  }
  return reply.real("ok", 1.0).take();
}

TBson buildInfo() {
  TBsonBuilder version;
  version.int32("0", 6).int32("1", 0).int32("2", 0).int32("3", 0);
  TBsonBuilder reply;
  reply.text("version", kVersion).array("versionArray", version.take()).array("modules", TBson());
  return reply.int32("bits", 64).int32("maxBsonObjectSize", 16777216).real("ok", 1.0).take();
}

}  // namespace

TBson TCommandError::reply() const {
  TBsonBuilder reply;
  reply.real("ok", 0.0).text("errmsg", what()).int32("code", code_).text("codeName", codeName_);
  return reply.take();
}

TBson okReply() { return TBsonBuilder().real("ok", 1.0).take(); }

TBson unknownCommand(std::string_view command) {
  return TCommandError(59, "CommandNotFound", "no such command: '" + std::string(command) + "'").reply();
}

std::optional<TBson> commonReply(const THello& hello, const TConnection& connection,
                                 const TRequest& request) {
  const std::string_view command = request.command;
  if (command == "hello") return helloReply(hello, connection, request);
  if (request.query)
    return TCommandError(352, "UnsupportedOpQueryCommand",
                         "Unsupported OP_QUERY command: " + std::string(command))
        .reply();
  if (command == "ping" || command == "endSessions") return okReply();
  if (command == "buildInfo" || command == "buildinfo") return buildInfo();
  return std::nullopt;
}

void TWriteReply::refuse(std::int32_t index, std::int32_t code, std::string_view text) {
  TBsonBuilder error;
  error.int32("index", index).int32("code", code).text("errmsg", text);
  errors_.document(std::to_string(refused_++).c_str(), error.take());
}

TBson TWriteReply::finish(std::int32_t n, std::optional<std::int32_t> modified,
                          const std::optional<TBson>& upserted) {
  TBsonBuilder reply;
  reply.int32("n", n);
  if (modified) reply.int32("nModified", *modified);
  if (upserted) reply.array("upserted", *upserted);
  if (refused_ > 0) reply.array("writeErrors", errors_.take());
  return reply.real("ok", 1.0).take();
}

}  // namespace hollowmere::mongowire
