#include "connectors/mongodb/mongoerror.h"

#include <map>

#include "connectors/mongodb/mongoclient.h"

namespace hollowmere {

namespace {

constexpr std::uint32_t unauthorized = 13;

}  // namespace

TMongoError::TMongoError(std::uint32_t code, const std::string& message, const std::string& advice)
    : TStoreError(TStoreErrorKind::Read, mongoErrorText(code, message), advice),
      code_(code),
      message_(message) {}

bool TMongoError::accessRefused() const {
  return code_ == unauthorized || message_.find("not authorized") != std::string::npos;
}

std::string removedCommandAdvice(const std::string& command) {
  static const std::map<std::string, std::string> instead{
      {"group", "aggregate with the stage $group"},
      {"mapReduce", "aggregate with the stages $group and $merge"},
      {"mapreduce", "aggregate with the stages $group and $merge"},
      {"filemd5", "the digest that this program computes"},
      {"eval", "the commands themselves, or a script of the shell"},
      {"$eval", "the commands themselves, or a script of the shell"},
      {"geoNear", "aggregate with the stage $geoNear"},
      {"geoSearch", "find or aggregate with $near"},
      {"copydb", "copying each collection"},
      {"clone", "copying each collection"},
      {"cloneCollection", "copying the collection"},
      {"parallelCollectionScan", "find"},
      {"repairDatabase", "the server's own option --repair"},
      {"getLastError", "write concerns"},
      {"getlasterror", "write concerns"},
      {"getPrevError", "write concerns"},
      {"touch", "find"},
      {"reIndex", "dropping and creating the indexes"},
      {"collStats", "aggregate with the stage $collStats"},
      {"collstats", "aggregate with the stage $collStats"}};
  const auto found = instead.find(command);
  if (found == instead.end()) return {};
  return "The server no longer has the command " + command + "; use " + found->second + " instead.";
}

}  // namespace hollowmere
