#include "connectors/mongodb/shellrunner.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "connectors/mongodb/childprocess.h"
#include "connectors/mongodb/extendedjson.h"
#include "connectors/mongodb/mongoclient.h"
#include "connectors/mongodb/shellcommandline.h"
#include "connectors/mongodb/shellhome.h"
#include "connectors/mongodb/shelloutput.h"
#include "connectors/mongodb/shelltexts.h"
#include "connectors/mongodb/workfiles.h"
#include "json/json.h"
#include "settings/safefile.h"

namespace hollowmere {

namespace {

/// Why a shell's end is a failure as such; empty when it ended by itself.
std::string faultOf(const TChildResult& ended, const TShellSettings& settings) {
  switch (ended.end) {
    case TChildEnd::Exited: return {};
    case TChildEnd::NotStarted:
      return "Unable to start the MongoDB shell " + settings.program + ": " + std::strerror(ended.code) + ".";
    case TChildEnd::Signalled:
      return "The MongoDB shell was ended by signal " + std::to_string(ended.code) + ".";
    case TChildEnd::Stopped: return "The operation was cancelled.";
    case TChildEnd::TimedOut:
      return "The MongoDB shell did not end within " + std::to_string(settings.timeoutMilliseconds / 1000) +
             " seconds.";
    case TChildEnd::TooMuchOutput:
      return "The MongoDB shell wrote more than " + std::to_string(settings.outputLimit) +
             " bytes. Narrow the query.";
  }
  return {};
}

std::string exitText(const TChildResult& ended) {
  return "The MongoDB shell ended with exit code " + std::to_string(ended.code) + ".";
}

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

/// The driver may repeat the connection string that it could not read.
std::string withoutSecret(std::string text, const std::string& secret) {
  if (secret.empty()) return text;
  for (const std::string& form : {secret, percentEncoded(secret)})
    for (std::size_t at = 0; (at = text.find(form, at)) != std::string::npos; at += 8)
      text.replace(at, form.size(), "********");
  return text;
}

std::string randomMark() {
  std::random_device device;
  std::string mark = "#";
  for (int i = 0; i < 4; ++i) mark += std::to_string(device()) + ".";
  return mark;
}

bool meansNoAccess(const std::string& error) {
  return error.find("not authorized") != std::string::npos ||
         error.find("requires authentication") != std::string::npos ||
         error.find("Error Code: 13\r") != std::string::npos;
}

TChildJob childJob(const TShellSettings& settings) {
  TChildJob job;
  job.timeoutMilliseconds = settings.timeoutMilliseconds;
  job.outputLimit = settings.outputLimit;
  job.stop = settings.stop;
  return job;
}

/// Sorts out the lines that today's shell prints as they come.
class TMarkedLines {
 public:
  TMarkedLines(std::string mark, TShellResult& result) : mark_(std::move(mark)), result_(result) {}

  void add(std::string_view piece) {
    while (true) {
      const std::size_t end = piece.find('\n');
      line_.append(piece, 0, end);
      if (end == std::string_view::npos) return;
      finish();
      piece.remove_prefix(end + 1);
    }
  }

  void finish() {
    if (line_.starts_with(mark_) && line_.size() > mark_.size())
      take(line_[mark_.size()], std::string_view(line_).substr(mark_.size() + 1));
    else if (!line_.empty() || !result_.text.empty())
      result_.text.append(line_) += '\n';
    line_.clear();
  }

 private:
  void take(char kind, std::string_view json) {
    if (kind == 'M') {
      result_.more = true;
      return;
    }
    TValue value = fromExtendedJson(reader_.read(json));
    if (kind == 'R') return result_.values.push_back(std::move(value));
    const TValue* code = value.asObject().find("code");
    const TValue* message = value.asObject().find("errmsg");
    const std::int64_t number = code && code->is(TKind::Int) ? code->asInt() : 0;
    const std::string text = message && message->is(TKind::Text) ? message->asText() : std::string();
    result_.error = number != 0 ? mongoErrorText(static_cast<std::uint32_t>(number), text) : text;
  }

  std::string mark_;
  TShellResult& result_;
  std::string line_;
  TJsonReader reader_;
};

}  // namespace

TShellRunner::TShellRunner(TShellSettings settings, const TDateTimeText& dates)
    : settings_(std::move(settings)), dates_(dates) {}

/// Asked once: a start of the program takes a good part of a second.
const TShellProgram& TShellRunner::program() {
  if (!program_) program_ = recogniseShell(settings_.program, settings_.stop);
  return *program_;
}

TShellResult TShellRunner::run(const std::string& recordText, const TShellCommand& command) {
  TShellResult result;
  try {
    if (program().kind == TShellKind::Today) {
      result = runToday(recordText, command);
    } else {
      bool failed = false;
      const std::string output = RunShell(recordText, command, &failed);
      if (failed)
        result.error = output;
      else
        result = readShellOutput(output, dates_);
    }
  } catch (const std::exception& error) {
    result.error = error.what();
  }
  result.accessRefused = meansNoAccess(result.error);
  return result;
}

std::string TShellRunner::RunShell(const std::string& recordText, const TShellCommand& command, bool* error) {
  if (error) *error = true;
  const auto login = shellLogin(recordText);
  if (const auto* message = std::get_if<std::string>(&login)) return *message;
  const TWorkFiles files(settings_.dataFolder + "data/");
  const std::string out = files.path(files.outFile());
  files.writeCommand(shellCommandLine(settings_.program, std::get<TShellLogin>(login), command.database,
                                      settings_.dataFolder, files.runFile(), files.outFile()));
  files.writeScript(legacyScript(command));
  TChildJob job = childJob(settings_);
  job.program = "/bin/sh";
  job.arguments = {"-c", "umask 077; exec /bin/sh \"$1\"", "sh", files.path(files.commandFile())};
  job.goesOn = [&] {
    struct stat found {};
    if (stat(out.c_str(), &found) != 0) return true;
    if (settings_.progress) settings_.progress(static_cast<std::size_t>(found.st_size));
    return static_cast<std::size_t>(found.st_size) <= settings_.outputLimit;
  };
  const TChildResult ended = runChild(job);
  if (const std::string fault = faultOf(ended, settings_); !fault.empty()) return fault;
  if (!fileExists(out)) return shelltexts::noResult + out;
  const std::string output = withoutUseEcho(readWholeFile(out, settings_.outputLimit));
  // Its last line having failed, the shell says so in its output.
  const bool silent = ended.code != 0 && readShellOutput(output, dates_).error.empty();
  if (silent) return trimmed(exitText(ended) + " " + trimmed(ended.errors) + " " + output);
  if (error) *error = false;
  return output;
}

TShellResult TShellRunner::runToday(const std::string& recordText, const TShellCommand& command) {
  TShellResult result;
  // The same checks for both shells.
  if (const auto login = shellLogin(recordText); const auto* message = std::get_if<std::string>(&login)) {
    result.error = *message;
    return result;
  }
  const TShellHome home;
  const TWorkFiles files(settings_.dataFolder + "data/");
  const std::string mark = randomMark();
  const TValue record = parseJson(recordText);
  files.writeScript(todayScript(command, record, mark));
  TChildJob job = childJob(settings_);
  job.program = settings_.program;
  job.arguments = {"--quiet", "--norc", "--nodb", "--file", files.path(files.runFile())};
  job.changed = home.environment();
  TMarkedLines lines(mark, result);
  std::size_t bytes = 0;
  job.output = [&](std::string_view piece) {
    lines.add(piece);
    bytes += piece.size();
    if (settings_.progress) settings_.progress(bytes);
  };
  const TChildResult ended = runChild(job);
  lines.finish();
  if (const std::string fault = faultOf(ended, settings_); !fault.empty()) result.error = fault;
  // Of an error that is no marked one only the first line: the others show pieces of the script.
  const std::string first = trimmed(ended.errors.substr(0, ended.errors.find('\n')));
  if (result.error.empty() && ended.code != 0) result.error = first.empty() ? exitText(ended) : first;
  result.error = withoutSecret(result.error, textMember(record, "password"));
  result.text = trimmed(result.text);
  if (!result.error.empty()) result.more = false;
  return result;
}

TShellResult TShellRunner::runCommand(const std::string& recordText, const std::string& database,
                                      const std::string& command) {
  TShellCommand asked;
  asked.database = database;
  asked.command = command;
  return run(recordText, asked);
}

namespace {

/// The elements of the one list that a shell printed; throws with that text when it did not.
const TList& onlyList(const TShellResult& result, const char* text) {
  if (!result.error.empty()) throw TStoreError(TStoreErrorKind::Read, text, "(" + result.error + ")");
  if (result.values.size() != 1 || !result.values.front().is(TKind::List))
    throw TStoreError(TStoreErrorKind::Read, text);
  return result.values.front().asList();
}

bool isPlainName(const std::string& name) {
  constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.";
  return name.find_first_not_of(plain) == std::string::npos && !name.starts_with('.') &&
         name.find_first_of("0123456789") != 0;
}

}  // namespace

std::vector<std::string> TShellRunner::collectionNames(const std::string& recordText,
                                                       const std::string& database) {
  const TShellResult result = runCommand(recordText, database, "db.getCollectionNames()");
  std::vector<std::string> names;
  for (const TValue& name : onlyList(result, shelltexts::badCollections)) {
    if (!name.is(TKind::Text)) throw TStoreError(TStoreErrorKind::Read, shelltexts::badCollections);
    names.push_back(name.asText());
  }
  return names;
}

std::vector<TObject> TShellRunner::indexes(const std::string& recordText, const std::string& database,
                                           const std::string& collection) {
  // Names that are no words of the shell's language need the longer form.
  const std::string place =
      isPlainName(collection) ? "db." + collection : "db.getCollection(" + toJson(TValue(collection)) + ")";
  const TShellResult result = runCommand(recordText, database, place + ".getIndexes()");
  std::vector<TObject> found;
  for (const TValue& index : onlyList(result, shelltexts::badIndexes)) {
    if (!index.is(TKind::Object)) throw TStoreError(TStoreErrorKind::Read, shelltexts::badIndexes);
    found.push_back(index.asObject());
  }
  return found;
}

std::string TShellRunner::serverVersion(const std::string& recordText, const std::string& database) {
  const TShellResult result = runCommand(recordText, database, "db.version()");
  if (!result.error.empty()) return shelltexts::unknownVersion;
  // The legacy shell prints a text without quotes.
  if (result.values.size() == 1 && result.values.front().is(TKind::Text))
    return result.values.front().asText();
  const bool number = !result.text.empty() && result.text.find_first_of(" \n{") == std::string::npos;
  return number ? result.text : shelltexts::unknownVersion;
}

}  // namespace hollowmere
