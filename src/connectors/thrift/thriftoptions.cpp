#include "connectors/thrift/thriftoptions.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace hollowmere {

namespace {

/// A member that is a whole number or the text of one; nothing when it is not there or empty, -1 for
/// anything else.
std::optional<std::int64_t> numberMember(const TValue& record, std::string_view name) {
  if (!record.is(TKind::Object)) return std::nullopt;
  const TValue* member = record.asObject().find(name);
  if (!member || member->isNull()) return std::nullopt;
  if (member->is(TKind::Int)) return member->asInt();
  const std::string text = trimmedMember(record, name);
  if (text.empty() && member->is(TKind::Text)) return std::nullopt;
  std::int64_t number = -1;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && stop == text.data() + text.size() ? number : -1;
}

}  // namespace

std::string trimmedMember(const TValue& record, std::string_view name) {
  if (!record.is(TKind::Object)) return {};
  const TValue* member = record.asObject().find(name);
  if (!member || !member->is(TKind::Text)) return {};
  const std::string& text = member->asText();
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

TThriftOptions thriftOptions(const TStoreOptions& options, const char* store, std::uint16_t usualPort) {
  const auto fail = [store](const char* member, const char* rule) {
    throw TStoreError(TStoreErrorKind::Connect,
                      std::string("The ") + member + " of the " + store + " connection must be " + rule);
  };
  TThriftOptions thrift;
  thrift.stop = options.stop;
  thrift.host = trimmedMember(options.connection, "host");
  if (thrift.host.empty()) thrift.host = "localhost";
  const std::int64_t port = numberMember(options.connection, "port").value_or(usualPort);
  if (port < 1 || port > 65535) fail("port", "a number from 1 to 65535.");
  thrift.port = static_cast<std::uint16_t>(port);
  const auto seconds = numberMember(options.connection, "timeout");
  if (!seconds) return thrift;
  if (*seconds < 1 || *seconds > 86'400) fail("timeout", "1 to 86400 seconds.");
  thrift.answerTime = std::chrono::seconds(*seconds);
  thrift.connectTime = std::min(thrift.connectTime, thrift.answerTime);
  return thrift;
}

}  // namespace hollowmere
