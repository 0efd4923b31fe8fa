#include "settings/connectionhelp.h"

#include "settings/rtftext.h"
#include "settings/safefile.h"

namespace hollowmere {

std::string connectionHelp(const TConnectionType& type, const std::string& programFolder) {
  constexpr std::uint64_t limit = 1024 * 1024;
  const std::string path = programFolder + "/Help/" + std::string(type.helpFile);
  if (!fileExists(path)) return "No help file found: " + path;
  try {
    return rtfText(readWholeFile(path, limit));
  } catch (const TFileError& error) {
    return error.what();
  }
}

}  // namespace hollowmere
