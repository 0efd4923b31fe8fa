#include "http/download.h"

#include <curl/curl.h>

#include <array>
#include <memory>
#include <mutex>

namespace hollowmere {

namespace {

constexpr char protocols[] = "http,https";
constexpr long mostRedirections = 5;

struct TBody {
  std::string bytes;
  std::size_t limit;
  bool tooLong = false;
};

std::size_t take(char* data, std::size_t size, std::size_t count, void* to) {
  auto& body = *static_cast<TBody*>(to);
  if (body.bytes.size() + size * count > body.limit) {
    body.tooLong = true;
    return 0;
  }
  body.bytes.append(data, size * count);
  return size * count;
}

int mayGoOn(void* flag, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  return static_cast<const TStopFlag*>(flag)->isSet() ? 1 : 0;
}

using TCurl = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;

TCurl makeCurl() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
  return {curl_easy_init(), curl_easy_cleanup};
}

void setBounds(CURL* curl, const TDownloadLimits& limits, const TStopFlag& stop) {
  curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(limits.time.count()));
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, protocols);
  curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
  curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(curl, CURLOPT_MAXREDIRS, mostRedirections);
  curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, mayGoOn);
  curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &stop);
  // Signals would hit any thread; a name server that is silent must not hold up the end.
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_QUICK_EXIT, 1L);
}

}  // namespace

std::string download(const std::string& address, const TDownloadLimits& limits, const TStopFlag& stop) {
  const auto fail = [&address](const std::string& reason) {
    throw THttpError("Unable to download " + address + ": " + reason);
  };
  const TCurl curl = makeCurl();
  if (!curl) fail("the HTTP library cannot be used");
  TBody body{{}, limits.bytes};
  std::array<char, CURL_ERROR_SIZE> reason{};
  setBounds(curl.get(), limits, stop);
  curl_easy_setopt(curl.get(), CURLOPT_URL, address.c_str());
  curl_easy_setopt(curl.get(), CURLOPT_USERAGENT, "Hollowmere/" HOLLOWMERE_VERSION);
  curl_easy_setopt(curl.get(), CURLOPT_ERRORBUFFER, reason.data());
  curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, take);
  curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &body);
  const CURLcode code = curl_easy_perform(curl.get());
  if (body.tooLong) fail("it is larger than " + std::to_string(limits.bytes) + " bytes");
  if (code != CURLE_OK) fail(reason[0] ? reason.data() : curl_easy_strerror(code));
  return std::move(body.bytes);
}

bool isWebAddress(const std::string& text) {
  const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
  if (!url || curl_url_set(url.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) return false;
  char* scheme = nullptr;
  if (curl_url_get(url.get(), CURLUPART_SCHEME, &scheme, 0) != CURLUE_OK) return false;
  const std::string found(scheme);
  curl_free(scheme);
  return found == "http" || found == "https";
}

}  // namespace hollowmere
