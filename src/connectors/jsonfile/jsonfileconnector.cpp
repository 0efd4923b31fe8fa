#include "connectors/jsonfile/jsonfileconnector.h"

#include <QFileInfo>
#include <algorithm>

#include "connectors/jsonfile/jsonfilereader.h"
#include "connectors/jsonfile/jsonfilewriter.h"

namespace hollowmere {

namespace {

class TJsonFileConnector : public TStoreConnector {
 public:
  TJsonFileConnector() {
    traits_.parallel = false;
    traits_.countsBytes = true;
    traits_.connectionIsText = true;
  }

  [[nodiscard]] const std::string& dbType() const override { return dbType_; }
  [[nodiscard]] const TStoreTraits& traits() const override { return traits_; }

  std::unique_ptr<TSourceReader> connectSource(const TStoreOptions& options) const override {
    return std::make_unique<TJsonFileReader>(options);
  }

  std::unique_ptr<TTargetWriter> connectTarget(const TStoreOptions& options) const override {
    return std::make_unique<TJsonFileWriter>(options);
  }

  void checkSource(const TStoreOptions& options) const override { connectSource(options); }

  void checkTarget(const TStoreOptions& options) const override {
    const std::string name = jsonFileName(options.connection);
    const QFileInfo file(QString::fromStdString(name));
    const QFileInfo folder(file.absolutePath());
    std::string reason;
    if (!folder.isDir())
      reason = "the folder does not exist";
    else if (file.isDir())
      reason = "it is a folder";
    else if (!folder.isWritable() || (file.exists() && !file.isWritable()))
      reason = "permission denied";
    if (!reason.empty())
      throw TStoreError(TStoreErrorKind::Connect, "Unable to create target JSON file " + name + ":", reason);
  }

  /// The file that is read is the connection's; a data source only names it again.
  std::int64_t count(const TStoreOptions& options, const TDataSource& /*source*/) const override {
    return QFileInfo(QString::fromStdString(jsonFileName(options.connection))).size();
  }

 private:
  std::string dbType_ = "JSON File";
  TStoreTraits traits_;
};

}  // namespace

std::unique_ptr<TStoreConnector> makeJsonFileConnector() { return std::make_unique<TJsonFileConnector>(); }

std::string jsonFileName(const TValue& connection) {
  if (!connection.is(TKind::Text))
    throw TStoreError(TStoreErrorKind::Connect, "The connection of a JSON file must be its name.");
  std::string name = connection.asText();
  std::erase(name, '"');
  return name;
}

}  // namespace hollowmere
