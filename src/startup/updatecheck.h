#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hollowmere {

/// What a download page says of the published program.
struct TPublishedRelease {
  std::string link;  ///< as it stands in the page
  std::string version;
  std::string released;
};

/// Reads a download page: the first link to a file whose name begins with the product's, and behind it the
/// words after "version " and the text after "released ". Nothing when there is no such link or version.
std::optional<TPublishedRelease> parseDownloadPage(std::string_view page);

/// Whether a published version is to be announced: it is one, and neither the running version nor the one
/// that the user was told about. Versions are compared as texts.
bool announces(const std::string& published, const std::string& running, const std::string& warned);

namespace updatetexts {
inline constexpr char question[] =
    "New Hollowmere version is available. Would you like to visit Tamsbury Software web site to download the "
    "latest software release?";
}  // namespace updatetexts

}  // namespace hollowmere
