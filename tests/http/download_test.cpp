#include "http/download.h"

#include <gtest/gtest.h>

#include "support/httppeer.h"

namespace hollowmere {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// The error's text, or "nothing".
std::string faultOf(const std::string& address, const TDownloadLimits& limits = {}) {
  try {
    const TStopFlag stop;
    download(address, limits, stop);
  } catch (const THttpError& error) {
    return error.what();
  }
  return "nothing";
}

TEST(Download, GivesTheBodyOrNamesAddressAndReason) {
  const TStopFlag stop;
  {
    const THttpPeer peer(THttpPeer::ok("hello"));
    EXPECT_EQ(download(peer.address(), {}, stop), "hello");
    EXPECT_EQ(faultOf(peer.address(), {milliseconds(5000), 4}),
              "Unable to download " + peer.address() + ": it is larger than 4 bytes");
  }
  const THttpPeer missing("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
  EXPECT_NE(faultOf(missing.address("/x")).find("404"), std::string::npos);
  const THttpPeer away("HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\nContent-Length: 0\r\n\r\n");
  EXPECT_NE(faultOf(away.address()), "nothing") << "a redirection to a file of this machine";
  EXPECT_NE(faultOf("file:///etc/passwd"), "nothing");
}

TEST(Download, ASilentServerIsWaitedForNoLongerThanAllowed) {
  const THttpPeer silent("");
  const auto begun = steady_clock::now();
  EXPECT_NE(faultOf(silent.address(), {milliseconds(200), 1000}), "nothing");
  EXPECT_LT(steady_clock::now() - begun, milliseconds(5000));
  TStopFlag stop;
  stop.set();
  EXPECT_THROW(download(silent.address(), {milliseconds(60000), 1000}, stop), THttpError);
  EXPECT_LT(steady_clock::now() - begun, milliseconds(30000)) << "the stop was not seen";
}

TEST(Download, KnowsWebAddresses) {
  for (const char* address : {"http://example.com", "https://example.com/a?b=c"})
    EXPECT_TRUE(isWebAddress(address)) << address;
  for (const char* other : {"", "example.com", "file:///etc/passwd", "javascript:alert(1)", "https://"})
    EXPECT_FALSE(isWebAddress(other)) << other;
}

}  // namespace
}  // namespace hollowmere
