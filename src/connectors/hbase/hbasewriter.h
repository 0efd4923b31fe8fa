#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "connectors/hbase/hbaseclient.h"
#include "connectors/storeapi.h"

namespace hollowmere {

/// Puts rows one by one, or in batches of which one is on its way while the next is made ready. The
/// documents of a batch are kept until the server has answered. A batch that failed is sent again row by
/// row, which does no harm to those that were stored: a put can be repeated.
class THBaseWriter : public TTargetWriter {
 public:
  /// Throws TStoreError (Connect).
  explicit THBaseWriter(const TStoreOptions& options);

  void openTarget(const TDataTarget& target) override;
  void write(TObject&& document, TOutcomeSink& sink) override;
  void flush(TOutcomeSink& sink) override;

 private:
  struct TPending {
    THBaseBatch rows;
    std::vector<TObject> documents;
  };

  bool encode(const TObject& document, THBaseBatch& rows, TOutcomeSink& sink) const;
  [[nodiscard]] bool familiesKnown(const TObject& document) const;
  void addToBatch(TObject&& document, TOutcomeSink& sink);
  void putAlone(const TObject& document, TOutcomeSink& sink);
  void put(THBaseBatch& row);
  void send(TOutcomeSink& sink);
  void settle(TOutcomeSink& sink);
  void resolve(THBaseFault fault, TPending& batch, TOutcomeSink& sink);
  void takeApart(const TPending& batch, TOutcomeSink& sink);
  bool foundDisabled();
  [[nodiscard]] std::string disabledText() const;
  std::string refusalText(const THBaseFault& fault, std::size_t bytes);

  std::unique_ptr<THBaseClient> client_;
  std::size_t batchSize_;
  std::string table_;
  std::set<std::string, std::less<>> families_;
  THBaseBatch single_;
  std::unique_ptr<TPending> filling_;
  std::unique_ptr<TPending> sent_;  ///< on its way when it holds documents
};

}  // namespace hollowmere
