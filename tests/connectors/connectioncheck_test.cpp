#include "connectors/connectioncheck.h"

#include <gtest/gtest.h>

#include <future>

#include "support/callstore.h"

namespace hollowmere {
namespace {

/// What a check says at its end.
std::string faultOf(TCallStore::TCheck call) {
  const TCallStore store("Toy", std::move(call));
  std::promise<void> ended;
  TConnectionCheck check(store, {{"host", "h"}}, [&ended] { ended.set_value(); });
  ended.get_future().wait();
  EXPECT_TRUE(check.isOver());
  return check.fault();
}

TEST(ConnectionCheck, TellsSuccessAndTheStoresOwnMessage) {
  EXPECT_EQ(faultOf([](const TStoreOptions& options) {
              EXPECT_EQ(options.connection.asObject().find("host")->asText(), "h");
            }),
            "");
  EXPECT_EQ(faultOf([](const TStoreOptions&) {
              throw TStoreError(TStoreErrorKind::Connect, "Unable to connect to source Toy.", "nobody there");
            }),
            "nobody there");
  EXPECT_EQ(faultOf([](const TStoreOptions&) { throw TStoreError(TStoreErrorKind::Connect, "no detail"); }),
            "no detail");
  EXPECT_EQ(faultOf([](const TStoreOptions&) { throw std::runtime_error("odd"); }), "odd");
}

TEST(ConnectionCheck, EndingItStopsTheStoreAndWaits) {
  std::atomic<bool> left = false;
  const TCallStore store("Toy", [&left](const TStoreOptions& options) {
    while (!options.stop->isSet()) std::this_thread::yield();
    left = true;
  });
  {
    const TConnectionCheck check(store, {}, [] {});
  }
  EXPECT_TRUE(left);
}

}  // namespace
}  // namespace hollowmere
