#include "support/mongowire/faults.h"

#include <algorithm>
#include <memory>

#include "support/mongowire/replies.h"

namespace hollowmere::mongowire {

namespace fault {

namespace {

TFault plain(TFault::TKind kind) {
  TFault fault;
  fault.kind = kind;
  return fault;
}

}  // namespace

TFault delay(std::chrono::milliseconds pause) {
  TFault fault = plain(TFault::TKind::delay);
  fault.pause = pause;
  return fault;
}

TFault answer(TBson document) {
  TFault fault = plain(TFault::TKind::answer);
  fault.document = std::move(document);
  return fault;
}

TFault error(std::int32_t code, std::string_view codeName, std::string_view text) {
  return answer(TCommandError(code, std::string(codeName), std::string(text)).reply());
}

TFault refuseAt(std::vector<std::size_t> indexes, std::int32_t code, std::string_view text) {
  const auto test = [indexes = std::move(indexes)](std::size_t index, const TBsonView&) {
    return std::find(indexes.begin(), indexes.end(), index) != indexes.end();
  };
  return refuseIf(test, code, text);
}

TFault refuseEvery(std::uint64_t every, std::int32_t code, std::string_view text) {
  // Shared by the copies of the rule that requests take.
  const auto seen = std::make_shared<std::uint64_t>(0);
  const auto test = [seen, every](std::size_t, const TBsonView&) { return ++*seen % every == 0; };
  return refuseIf(test, code, text);
}

TFault refuseIf(TRowTest test, std::int32_t code, std::string_view text) {
  TFault fault = plain(TFault::TKind::refuseRows);
  fault.test = std::move(test);
  fault.number = code;
  fault.text = text;
  return fault;
}

TFault silence() { return plain(TFault::TKind::silence); }
TFault close() { return plain(TFault::TKind::close); }
TFault halfThenClose() { return plain(TFault::TKind::halfThenClose); }
TFault halfThenSilence() { return plain(TFault::TKind::halfThenSilence); }
TFault wrongResponse() { return plain(TFault::TKind::wrongResponse); }
TFault garbageFrame() { return plain(TFault::TKind::garbageFrame); }
TFault garbageBody() { return plain(TFault::TKind::garbageBody); }

TFault wrongLength(std::int32_t claimed) {
  TFault fault = plain(TFault::TKind::wrongLength);
  fault.number = claimed;
  return fault;
}

}  // namespace fault

namespace {

bool covers(std::string_view rule, std::string_view command) {
  if (rule == "*") return command != "hello" && command != "endSessions";
  return rule == command;
}

bool sendHalf(TConnection& connection, std::string_view frame) {
  return connection.send(frame.substr(0, frame.size() / 2));
}

}  // namespace

void TFaultScript::onCommand(std::string_view command, std::uint64_t nth, TFault fault) {
  if (command == "isMaster" || command == "ismaster") command = "hello";
  const std::lock_guard lock(mutex_);
  rules_.push_back({std::string(command), nth, 0, std::move(fault)});
}

void TFaultScript::clear() {
  const std::lock_guard lock(mutex_);
  rules_.clear();
  manner_ = TManner::ordinary;
}

void TFaultScript::setManner(TManner manner) {
  const std::lock_guard lock(mutex_);
  manner_ = manner;
}

TManner TFaultScript::manner() const {
  const std::lock_guard lock(mutex_);
  return manner_;
}

TFaultScript::TPlan TFaultScript::planFor(std::string_view command) {
  TPlan plan;
  const std::lock_guard lock(mutex_);
  for (TRule& rule : rules_) {
    if (!covers(rule.command, command)) continue;
    ++rule.seen;
    if (rule.nth != kEvery && rule.nth != rule.seen) continue;
    if (rule.fault.kind == TFault::TKind::delay)
      plan.pause += rule.fault.pause;
    else if (rule.fault.kind == TFault::TKind::refuseRows)
      plan.refusals.push_back(rule.fault);
    else if (!plan.fault)
      plan.fault = rule.fault;
  }
  return plan;
}

const TFault* TFaultScript::refusal(const TPlan& plan, std::size_t index, const TBsonView& row) {
  if (plan.refusals.empty()) return nullptr;
  const std::lock_guard lock(testMutex_);
  // Every test sees every row, so that counting ones do not depend on the others.
  const TFault* found = nullptr;
  for (const TFault& fault : plan.refusals)
    if (fault.test(index, row) && !found) found = &fault;
  return found;
}

bool admit(TManner manner, TConnection& connection) {
  switch (manner) {
    case TManner::ordinary: return true;
    case TManner::closeAtOnce: return false;
    case TManner::neverRead: connection.waitForPeer(); return false;
    case TManner::otherProtocol:
      if (!connection.receiveAnything().empty()) connection.send("HTTP/1.1 400 Bad Request\r\n\r\n");
      return false;
  }
  return false;
}

bool sendSpoilt(const TFault& fault, TConnection& connection, std::string frame) {
  switch (fault.kind) {
    case TFault::TKind::halfThenClose: sendHalf(connection, frame); return false;
    case TFault::TKind::halfThenSilence:
      if (sendHalf(connection, frame)) connection.waitForPeer();
      return false;
    case TFault::TKind::wrongLength: putInt32(frame, 0, fault.number); break;
    case TFault::TKind::wrongResponse: putInt32(frame, 8, -12345); break;
    case TFault::TKind::garbageFrame: frame.assign(64, '\xa5'); break;
    case TFault::TKind::garbageBody:
      std::fill(frame.begin() + static_cast<std::ptrdiff_t>(replyBodyOffset(frame) + 4), frame.end() - 1,
                '\xa5');
      break;
    default: break;
  }
  return connection.send(frame);
}

}  // namespace hollowmere::mongowire
