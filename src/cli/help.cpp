#include "cli/help.h"

#include <map>

namespace hollowmere {

namespace {

constexpr char programHelp[] =
    R"(hollowmere-cli moves data between databases and JSON files by load projects.

  hollowmere-cli run PROJECT      run the load
  hollowmere-cli check PROJECT    all checks before a load, both connections included; loads nothing
  hollowmere-cli preview PROJECT  print the first documents; writes nothing to the target
  hollowmere-cli show PROJECT     print the project's document
  hollowmere-cli seal FILE PROJECT   make a project file of a project's document
  hollowmere-cli new              print the document of a new project
  hollowmere-cli sql2mongo        translate a SQL statement into a MongoDB shell command
  hollowmere-cli mongo CONNECTION ACTION   look at and work on a MongoDB server, its files too
  hollowmere-cli COMMAND --help   more about one command
  hollowmere-cli --version

Data goes to standard output, messages to standard error. Exit codes: 0 done, 1 refused or failed,
2 wrong command line, 130 stopped by a signal (the totals are still written).
HOLLOWMERE_DATA moves the data folder, HOLLOWMERE_SETTINGS the settings file.
)";

const std::map<std::string, std::string>& commandHelp() {
  static const std::map<std::string, std::string> texts{
      {"run", R"(hollowmere-cli run [--set KEY=VALUE]... [--json] [--quiet] PROJECT

Runs the load of a project file. The log and discard files are those that the project names.
  --set KEY=VALUE  another value for a general setting of the project, such as vgGeneralBulkInsert=1000;
                   vgGeneralSourceConn and vgGeneralTargetConn only where they are file names
  --json           one last line of JSON on standard output: loaded, discarded, skipped, processed,
                   seconds, mappings
  --quiet          no progress and no totals on standard error
The first Ctrl-C stops the load and still writes the totals, the second ends at once. The exit code is 0
after a run to its end, whatever was discarded or skipped.
)"},
      {"check", R"(hollowmere-cli check [--set KEY=VALUE]... PROJECT

Makes every check of a load's start: log and discard file, types, both connections, lists, mapping.
Loads nothing. The exit code is 0 when the load could start.
)"},
      {"preview", R"(hollowmere-cli preview [-n COUNT] [--set KEY=VALUE]... PROJECT

Reads the first COUNT rows (10) of each root mapping, assembles them, and prints the documents, one a line.
Rows that cannot be read or assembled are named on standard error. Connects to the source only.
)"},
      {"show", R"(hollowmere-cli show [--secrets] PROJECT

Prints the document of a project file as JSON text. Passwords are shown as ******** unless --secrets is
given; seal refuses a document with such passwords.
)"},
      {"seal", R"(hollowmere-cli seal FILE PROJECT

Reads a project's document as JSON text from FILE ("-": standard input) and writes the project file.
What is no project is refused, naming the member; an existing project file is then left as it was.
)"},
      {"new", R"(hollowmere-cli new

Prints the document of a new project with the defaults of the settings.
)"},
      {"sql2mongo", R"(hollowmere-cli sql2mongo [--modern]

Reads one SELECT, UPDATE or DELETE statement from standard input and prints it as a MongoDB shell command.
Without --modern the command is for shells that still have group, update and remove, and its lines end in
carriage returns, which a terminal shows as line ends.
  --modern  for today's shells: aggregation pipelines, updateMany, deleteMany, countDocuments
A statement that cannot be translated is told on standard error, with its place under --modern; the exit code is 1.
)"},
      {"mongo", R"(hollowmere-cli mongo [--db DATABASE] CONNECTION ACTION

CONNECTION is HOST[:PORT][/DATABASE], with the login of the kept connection to that host and port when there is
one; or a file with a connection record as JSON text ("-": standard input). Results are JSON, one a line.
  databases                      names
  collections                    names, kinds and options
  indexes COLLECTION
  stats [COLLECTION]             of the database, or of a collection
  find COLLECTION [FILTER]       documents; --sort, --projection: JSON; --skip, -n: numbers; --read: preference
  command JSON                   a database command
  run COMMAND                    of MongoDB's shell, or SQL; "-": the command comes from standard input; --page N: the
                                 further pages, from 0; --shell: the program, else that of the settings
  copy COLLECTION CONNECTION [COLLECTION]   to another server, or under another name
  gridfs list [PATTERN]          files, those whose name matches a regular expression
  gridfs put FILE [NAME]
  gridfs get NAME [FILE]         without FILE into this folder under its own name
  gridfs delete NAME
  gridfs md5 NAME
Ctrl-C stops; the exit code is 130 then.
)"}};
  return texts;
}

}  // namespace

std::string helpText(const std::string& command) {
  const auto found = commandHelp().find(command);
  return found == commandHelp().end() ? programHelp : found->second;
}

}  // namespace hollowmere
