// The actions of "mongo" on GridFS.
#include <iostream>
#include <map>

#include "cli/mongocall.h"
#include "connectors/mongodb/gridfs.h"
#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

namespace {

int listFiles(const TMongoCall& call, TGridFs& files) {
  for (const TGridFsFile& file : files.list(call.hasArgument(1) ? call.argument(1, "") : std::string()))
    call.streams.out << toJson(TObject{{"_id", file.id},
                                       {"filename", file.name},
                                       {"length", file.length},
                                       {"uploadDate", toIsoText(file.uploaded)}})
                     << '\n';
  return 0;
}

int putFile(const TMongoCall& call, TGridFs& files) {
  const TValue id = files.put(call.argument(1, "FILE"), call.hasArgument(2) ? call.argument(2, "") : "");
  call.streams.err << "Files have been successfully saved to GridFS.\n";
  call.streams.out << toJson(id) << '\n';
  return 0;
}

int getFile(const TMongoCall& call, TGridFs& files) {
  const TGridFsFile file = files.find(call.argument(1, "NAME"));
  std::string path;
  if (call.hasArgument(2))
    files.get(file, path = call.argument(2, ""), call.program.files);
  else
    path = files.getInto(file, ".", call.program.files);
  call.streams.err << "File has been successfully saved to " << path << '\n';
  return 0;
}

int deleteFile(const TMongoCall& call, TGridFs& files) {
  files.remove(files.find(call.argument(1, "NAME")).id);
  return 0;
}

int digestFile(const TMongoCall& call, TGridFs& files) {
  call.streams.out << files.md5(files.find(call.argument(1, "NAME"))) << '\n';
  return 0;
}

using TAction = int (*)(const TMongoCall&, TGridFs&);

}  // namespace

int gridFsCommand(const TMongoCall& call) {
  static const std::map<std::string, TAction> table{
      {"list", listFiles}, {"put", putFile}, {"get", getFile}, {"delete", deleteFile}, {"md5", digestFile}};
  const auto action = table.find(call.argument(0, "list, put, get, delete or md5"));
  if (action == table.end()) throw TUsageError("unknown action gridfs " + call.argument(0, ""));
  TGridFs files(call.options(), call.needDatabase());
  try {
    return action->second(call, files);
  } catch (const TMongoError& error) {
    if (!error.accessRefused()) throw;
    throw TStoreError(TStoreErrorKind::Read, gridFsFault(error.what()));
  }
}

}  // namespace hollowmere
