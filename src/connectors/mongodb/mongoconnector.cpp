#include "connectors/mongodb/mongoconnector.h"

#include "connectors/jsonquery.h"
#include "connectors/mongodb/mongoclient.h"
#include "connectors/mongodb/mongoreader.h"
#include "connectors/mongodb/mongowriter.h"
#include "json/json.h"

namespace hollowmere {

namespace {

class TMongoConnector : public TStoreConnector {
 public:
  [[nodiscard]] const std::string& dbType() const override { return dbType_; }
  [[nodiscard]] const TStoreTraits& traits() const override { return traits_; }

  std::unique_ptr<TSourceReader> connectSource(const TStoreOptions& options) const override {
    return std::make_unique<TMongoReader>(options);
  }

  std::unique_ptr<TTargetWriter> connectTarget(const TStoreOptions& options) const override {
    return std::make_unique<TMongoWriter>(options);
  }

  // The run control says which side it is; the detail is all it needs.
  void checkSource(const TStoreOptions& options) const override {
    check(options, "Unable to connect to source MongoDB.");
  }
  void checkTarget(const TStoreOptions& options) const override {
    check(options, "Unable to connect to target MongoDB.");
  }

  std::int64_t count(const TStoreOptions& options, const TDataSource& source) const override;

  [[nodiscard]] std::string checkQuery(const TValue& definition) const override {
    try {
      // With its parameters: nobody knows yet whether it will be a nested one.
      const TJsonQuery query(TMongoSource({"", definition, 0}).query);
    } catch (const TJsonError& error) {
      return std::string("Invalid MongoDB JSON query. (") + error.what() + ")";
    } catch (const TStoreError&) {
      return "The data source names no MongoDB database and collection.";
    }
    return {};
  }

 private:
  static void check(const TStoreOptions& options, const char* fixedText) { connectMongo(options, fixedText); }

  std::string dbType_ = "MongoDB";
  TStoreTraits traits_;
};

std::int64_t TMongoConnector::count(const TStoreOptions& options, const TDataSource& source) const {
  const TMongoSource query(source);
  const TMongoClientPtr client = connectMongo(options, "Unable to connect to source MongoDB.");
  const TBsonPtr filter = query.filter(TDateTimeText());
  const TMongoCollectionPtr collection(
      mongoc_client_get_collection(client.get(), query.database.c_str(), query.collection.c_str()));
  bson_error_t error{};
  const std::int64_t counted =
      mongoc_collection_count_documents(collection.get(), filter.get(), nullptr, nullptr, nullptr, &error);
  if (counted < 0) throw TStoreError(TStoreErrorKind::DataSource, mongoErrorText(error));
  return counted;
}

}  // namespace

std::unique_ptr<TStoreConnector> makeMongoConnector() { return std::make_unique<TMongoConnector>(); }

}  // namespace hollowmere
