#include "cli/commands.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>

#include "app/consolerun.h"
#include "app/program.h"
#include "cli/commandline.h"
#include "cli/help.h"
#include "cli/mongocommand.h"
#include "engine/preview.h"
#include "json/json.h"
#include "project/projectdocument.h"
#include "project/projectoverride.h"
#include "project/runcheck.h"
#include "settings/callqueue.h"
#include "settings/connectionrecord.h"
#include "sqlmongo/sqltomongo.h"

namespace hollowmere {

namespace {

constexpr char maskedSecret[] = "********";

struct TCall {
  const TCommandLine& line;
  const TCliStreams& streams;
  TPrompt& prompt;
};

TProject openProject(TProgram& program, const TCall& call) {
  TProject project = program.projectFile().open(call.line.positional[0]);
  const auto [first, last] = call.line.values.equal_range("--set");
  for (auto at = first; at != last; ++at) overrideSetting(project, at->second);
  return project;
}

TRunServices makeServices(TProgram& program, const TCall& call, TMainThread& mainThread) {
  return {program.stores,
          call.prompt,
          mainThread,
          program.clock,
          program.dates,
          static_cast<std::size_t>(program.settings.bufLen),
          consoleBackground(mainThread),
          {}};
}

void addCounts(TObject& object, const TLoadCounts& counts) {
  object.add("loaded", counts.loaded);
  object.add("discarded", counts.discarded);
  object.add("skipped", counts.skipped);
  object.add("processed", counts.processed());
}

std::string resultJson(const TRunControl& control) {
  const TRunProgress progress = control.progress();
  TObject result;
  addCounts(result, progress.counts);
  result.add("seconds", static_cast<double>(progress.milliseconds) / 1000);
  TList mappings;
  for (const TMappingResult& mapping : control.results()) {
    TObject entry{{"source", mapping.source}, {"target", mapping.target}};
    addCounts(entry, mapping.counts);
    entry.add("complete", mapping.complete);
    mappings.emplace_back(std::move(entry));
  }
  result.add("mappings", std::move(mappings));
  return toJson(result);
}

void printTotals(std::ostream& out, const TRunControl& control) {
  const TRunProgress progress = control.progress();
  for (const TMappingResult& mapping : control.results())
    out << mapping.source << " -> " << mapping.target << ": " << mapping.counts.loaded << " loaded, "
        << mapping.counts.discarded << " discarded, " << mapping.counts.skipped << " skipped"
        << (mapping.complete ? "" : ", not read to the end: see the log") << '\n';
  out << progress.counts.processed() << " processed in " << static_cast<double>(progress.milliseconds) / 1000
      << " s; log " << control.project().logFile << ", discard file " << control.project().discFile << "\n";
}

int runCommand(const TCall& call) {
  TProgram program(call.prompt);
  const bool quiet = call.line.has("--quiet");
  TCallQueue mainThread;
  TRunControl control(openProject(program, call), makeServices(program, call, mainThread), true);
  TConsoleOptions options;
  options.progress = call.streams.errIsTerminal && !quiet;
  options.colour = std::getenv("NO_COLOR") == nullptr;
  watchSignals();
  const int code = runOnConsole(control, mainThread, call.streams.err, options);
  if (control.state() != TRunState::Finished) return code;
  if (!quiet) printTotals(call.streams.err, control);
  if (call.line.has("--json")) call.streams.out << resultJson(control) << std::endl;
  return code;
}

int checkCommand(const TCall& call) {
  TProgram program(call.prompt);
  TCallQueue mainThread;
  watchSignals();
  TRunControl control(openProject(program, call), makeServices(program, call, mainThread), false);
  if (!control.check()) return 1;
  call.streams.err << "The load of " << control.project().projectName << " can start.\n";
  return 0;
}

std::int64_t rowLimit(const TCommandLine& line) {
  const auto given = line.values.find("-n");
  if (given == line.values.end()) return 10;
  const std::string& text = given->second;
  std::int64_t limit = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), limit);
  if (fault != std::errc() || end != text.data() + text.size() || limit < 1)
    throw TUsageError("-n needs a number from 1, not " + text);
  return limit;
}

/// Prints the documents of one root mapping as a file target would hold them; false when a row has no
/// document.
bool printPreview(TSourceReader& reader, const TProject& project, const TMapNode& mapping,
                  const TDateTimeText& dates, std::int64_t limit, const TCliStreams& streams) {
  const bool toFile = project.target.connection.is(TKind::Text);
  bool good = true;
  previewMapping(
      reader, project.dataSources, mapping, project.ignoreNulls, dates, limit, [&](TPreviewRow&& row) {
        if (row.error.empty())
          streams.out << toJson(row.document, toFile ? TTextForm::Markers : TTextForm::Plain) << '\n';
        else
          streams.err << mapping.source << ", row " << row.number << ": " << row.error << '\n';
        good = good && row.error.empty();
        return static_cast<bool>(streams.out);
      });
  return good;
}

int previewCommand(const TCall& call) {
  const std::int64_t limit = rowLimit(call.line);
  TProgram program(call.prompt);
  const TProject project = openProject(program, call);
  const TStoreConnector* store = program.stores.find(project.source.dbType);
  if (!store) throw TProjectError("Source database type is not supported.");
  TStoreOptions options = sourceOptions(project, static_cast<std::size_t>(program.settings.bufLen));
  options.fetchLimit = std::min(limit, project.fetchLimit);
  const auto reader = store->connectSource(options);
  bool good = true;
  for (const TMapNode& mapping : project.mapping)
    good = printPreview(*reader, project, mapping, program.dates, limit, call.streams) && good;
  return good ? 0 : 1;
}

int showCommand(const TCall& call) {
  TProgram program(call.prompt);
  const TObject document = toDocument(program.projectFile().open(call.line.positional[0]));
  const bool secrets = call.line.has("--secrets");
  call.streams.out << toPrettyJson(secrets ? TValue(document) : maskSecrets(document)) << '\n';
  return 0;
}

std::string readText(const std::string& name, std::istream& in) {
  if (name != "-") return readWholeFile(name);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A masked password that is sealed into a file would be lost without anybody noticing.
void refuseMasked(const TValue& value) {
  if (value.is(TKind::Text) && value.asText() == maskedSecret)
    throw TProjectError("The document's passwords are masked; show --secrets prints it with them.");
  if (value.is(TKind::Object))
    for (const TMember& member : value.asObject()) refuseMasked(member.value);
}

int sealCommand(const TCall& call) {
  TProgram program(call.prompt);
  const std::string& name = call.line.positional[0];
  TProject project;
  try {
    project = fromDocument(parseJson(readText(name, call.streams.in)));
  } catch (const TJsonError& error) {
    throw TProjectError((name == "-" ? "Standard input" : name) + " is no JSON text: " + error.what());
  }
  refuseMasked(project.source.connection);
  refuseMasked(project.target.connection);
  program.projectFile().save(project, call.line.positional[1]);
  return 0;
}

int newCommand(const TCall& call) {
  TProgram program(call.prompt);
  call.streams.out << toPrettyJson(toDocument(newProject(program.settings, program.folder))) << '\n';
  return 0;
}

/// Standard input is the statement; the message alone goes to standard error, for callers that show it.
int sqlToMongoCommand(const TCall& call) {
  const std::string sql = readText("-", call.streams.in);
  const bool modern = call.line.has("--modern");
  TSqlToMongo result = SqlToMongo(sql, modern ? TShellForm::Modern : TShellForm::Classic);
  if (!result.translated()) {
    call.streams.err << (modern ? placeText(sql, result.place) + ": " : "") << result.message << '\n';
    return 1;
  }
  // Carriage returns alone would write one line over the other.
  if (call.streams.outIsTerminal) std::replace(result.shellText.begin(), result.shellText.end(), '\r', '\n');
  call.streams.out << result.shellText << '\n';
  return 0;
}

int mongo(const TCall& call) { return mongoCommand(call.line, call.streams, call.prompt); }

struct TCommand {
  TCommandSyntax syntax;
  std::function<int(const TCall&)> run;
};

const std::map<std::string, TCommand>& commands() {
  static const std::map<std::string, TCommand> table{
      {"run", {{{"PROJECT"}, {"--json", "--quiet"}, {"--set"}}, runCommand}},
      {"check", {{{"PROJECT"}, {}, {"--set"}}, checkCommand}},
      {"preview", {{{"PROJECT"}, {}, {"-n", "--set"}}, previewCommand}},
      {"show", {{{"PROJECT"}, {"--secrets"}, {}}, showCommand}},
      {"seal", {{{"FILE", "PROJECT"}, {}, {}}, sealCommand}},
      {"new", {{{}, {}, {}}, newCommand}},
      {"sql2mongo", {{{}, {"--modern"}, {}}, sqlToMongoCommand}},
      {"mongo", {mongoSyntax(), mongo}},
  };
  return table;
}

bool asksFor(const std::vector<std::string>& arguments, const char* option) {
  return std::find(arguments.begin(), arguments.end(), option) != arguments.end();
}

int runCommandLine(const std::vector<std::string>& arguments, const TCliStreams& streams, TPrompt& prompt) {
  const std::string command = arguments.empty() ? std::string() : arguments[0];
  const auto found = commands().find(command);
  if (found == commands().end())
    throw TUsageError(command.empty() ? "a command is missing" : "unknown command " + command);
  const TCommandLine line = parseCommandLine({arguments.begin() + 1, arguments.end()}, found->second.syntax);
  return found->second.run({line, streams, prompt});
}

}  // namespace

int runCli(const std::vector<std::string>& arguments, const TCliStreams& streams) {
  if (!arguments.empty() && arguments[0] == "--version") {
    streams.out << "hollowmere-cli " HOLLOWMERE_VERSION "\n";
    return 0;
  }
  if (asksFor(arguments, "--help") || asksFor(arguments, "-h")) {
    streams.out << helpText(arguments[0]);
    return 0;
  }
  TConsolePrompt prompt(streams.err, "hollowmere-cli: ");
  try {
    return runCommandLine(arguments, streams, prompt);
  } catch (const TUsageError& error) {
    streams.err << "hollowmere-cli: " << error.what() << "; see hollowmere-cli --help\n";
    return 2;
  } catch (const std::exception& error) {
    prompt.error(error.what());
    return 1;
  }
}

}  // namespace hollowmere
