#pragma once

#include <functional>
#include <string>
#include <utility>

#include "connectors/storeapi.h"

namespace hollowmere {

/// A store of which only the connection check is of interest: it is a call of the test's own.
class TCallStore : public TStoreConnector {
 public:
  using TCheck = std::function<void(const TStoreOptions&)>;

  TCallStore(std::string dbType, TCheck check) : dbType_(std::move(dbType)), check_(std::move(check)) {}

  [[nodiscard]] const std::string& dbType() const override { return dbType_; }
  [[nodiscard]] const TStoreTraits& traits() const override { return traits_; }
  std::unique_ptr<TSourceReader> connectSource(const TStoreOptions&) const override { return nullptr; }
  std::unique_ptr<TTargetWriter> connectTarget(const TStoreOptions&) const override { return nullptr; }
  void checkSource(const TStoreOptions& options) const override { check_(options); }
  void checkTarget(const TStoreOptions& options) const override { check_(options); }
  std::int64_t count(const TStoreOptions&, const TDataSource&) const override { return 0; }

 private:
  std::string dbType_;
  TStoreTraits traits_;
  TCheck check_;
};

}  // namespace hollowmere
