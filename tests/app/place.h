#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "connectors/storeapi.h"
#include "project/projectmodel.h"
#include "support/casswire/standin.h"
#include "support/hbasewire/standin.h"
#include "support/mongowire/standin.h"
#include "support/tempfolder.h"

namespace hollowmere {

/// A store as a load project sees it: it holds people, and items that belong to them. A place is named by the
/// test: "people" or "items" and whatever follows.
class TPlace {
 public:
  explicit TPlace(std::unique_ptr<TStoreConnector> connector) : connector_(std::move(connector)) {}
  virtual ~TPlace() = default;

  [[nodiscard]] const std::string& dbType() const { return connector_->dbType(); }
  [[nodiscard]] virtual TProjectSide side(const std::string& name) const = 0;
  /// Makes room for documents.
  virtual void make(const std::string& /*name*/) {}
  [[nodiscard]] virtual TDataSource source(const std::string& name) const = 0;
  /// The items of the row above, by a query; no definition where there are no queries.
  [[nodiscard]] virtual TDataSource nested(const std::string& /*items*/) const { return {}; }
  [[nodiscard]] virtual std::string target(const std::string& name) const { return name; }
  /// A field as this store names it.
  [[nodiscard]] virtual std::string field(const std::string& name) const { return name; }
  [[nodiscard]] bool isFile() const { return connector_->traits().connectionIsText; }

  /// What is there, kinds told apart, in the order of the text.
  [[nodiscard]] virtual std::vector<std::string> content(const std::string& name) const;

 protected:
  std::unique_ptr<TStoreConnector> connector_;
};

/// A store of each kind: files, and the three databases as stand-ins or as servers of the test program's own.
std::unique_ptr<TPlace> makeFilePlace(const TTempFolder& folder);
std::unique_ptr<TPlace> makeMongoPlace(std::uint16_t port);
std::unique_ptr<TPlace> makeCassandraPlace(std::uint16_t port);
std::unique_ptr<TPlace> makeCassandraPlace(casswire::TCassandraStandIn& server);
std::unique_ptr<TPlace> makeHBasePlace(std::uint16_t port);

}  // namespace hollowmere
