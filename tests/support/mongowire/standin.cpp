#include "support/mongowire/standin.h"

#include <algorithm>
#include <stdexcept>

namespace hollowmere::mongowire {

class TMongoStandIn::TStandInSession : public TSession {
 public:
  explicit TStandInSession(TMongoStandIn& owner) : owner_(owner) {}

  bool open(TConnection& connection) override { return admit(owner_.faults_.manner(), connection); }

  bool serve(TConnection& connection, const TRequest& request) override {
    const TFaultScript::TPlan plan = owner_.faults_.planFor(request.command);
    owner_.record(connection, request);
    if (plan.pause.count() > 0 && !connection.pauseUntil(connection.receivedAt() + plan.pause)) return false;
    if (plan.fault && plan.fault->kind == TFault::TKind::close) return false;
    if (plan.fault && plan.fault->kind == TFault::TKind::silence) {
      connection.waitForPeer();
      return false;
    }
    if (plan.fault && plan.fault->kind == TFault::TKind::answer)
      return connection.reply(request, plan.fault->document);
    owner_.answer(connection, request, plan, connection.frame());
    if (!request.answerWanted) return true;
    return plan.fault ? sendSpoilt(*plan.fault, connection, connection.frame())
                      : connection.send(connection.frame());
  }

 private:
  TMongoStandIn& owner_;
};

TMongoStandIn::TMongoStandIn(TServerOptions options)
    : commands_(store_, faults_),
      server_(options, [this](TConnection&) { return std::make_unique<TStandInSession>(*this); }) {}

std::string TMongoStandIn::uri() const { return "mongodb://127.0.0.1:" + std::to_string(port()) + "/"; }

void TMongoStandIn::setWireVersions(std::int32_t lowest, std::int32_t highest) {
  const std::lock_guard lock(mutex_);
  hello_.minWireVersion = lowest;
  hello_.maxWireVersion = highest;
}

void TMongoStandIn::setHello(const THello& hello) {
  const std::lock_guard lock(mutex_);
  hello_ = hello;
}

THello TMongoStandIn::hello() const {
  const std::lock_guard lock(mutex_);
  return hello_;
}

void TMongoStandIn::fill(const std::string& database, const std::string& collection,
                         const std::vector<TBson>& documents) {
  for (const TBson& document : documents)
    if (const auto refused = store_.insert(database + "." + collection, document.bytes()))
      throw std::invalid_argument(*refused);
}

void TMongoStandIn::fillJson(const std::string& database, const std::string& collection,
                             const std::vector<std::string>& documents) {
  for (const std::string& document : documents) fill(database, collection, {TBson::fromJson(document)});
}

std::vector<TBson> TMongoStandIn::documents(const std::string& database,
                                            const std::string& collection) const {
  return store_.rows(database + "." + collection);
}

std::vector<std::string> TMongoStandIn::documentsJson(const std::string& database,
                                                      const std::string& collection) const {
  std::vector<std::string> texts;
  for (const TBson& row : documents(database, collection)) texts.push_back(row.json());
  return texts;
}

std::vector<TSeenRequest> TMongoStandIn::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

std::vector<TSeenRequest> TMongoStandIn::requests(std::string_view command) const {
  std::vector<TSeenRequest> found = requests();
  std::erase_if(found, [command](const TSeenRequest& seen) { return seen.command != command; });
  return found;
}

std::size_t TMongoStandIn::requestCount(std::string_view command) const {
  const std::lock_guard lock(mutex_);
  const auto named = [command](const TSeenRequest& seen) { return seen.command == command; };
  return static_cast<std::size_t>(std::count_if(requests_.begin(), requests_.end(), named));
}

void TMongoStandIn::record(const TConnection& connection, const TRequest& request) {
  TSeenRequest seen{connection.id(), std::string(request.command), std::string(request.database), {}, {}, 0};
  seen.body = TBson(request.body);
  const TBsonView body(request.body);
  seen.collection = textField(body.get(), seen.command.c_str());
  for (const char* list : {"documents", "updates", "deletes"}) seen.rows += listSize(request, list).documents;
  const std::lock_guard lock(mutex_);
  requests_.push_back(std::move(seen));
}

void TMongoStandIn::answer(const TConnection& connection, const TRequest& request,
                           const TFaultScript::TPlan& plan, std::string& frame) {
  if (const std::optional<TBson> common = commonReply(hello(), connection, request)) {
    frame.clear();
    appendReply(frame, request, common->bytes());
    return;
  }
  commands_.carryOut(request, plan, frame);
}

}  // namespace hollowmere::mongowire
