#include "project/projectmodel.h"

#include "json/json.h"

namespace hollowmere {

namespace {

using P = TProject;
constexpr std::array<TProjectField, 13> fields = {{
    {"vgGeneralProjectName", &P::projectName, "Project Name", ""},
    {"vgGeneralProjectComment", &P::comment, "Description", ""},
    {"vgGeneralSourceFetchLimit", &P::fetchLimit, "Fetch Limit", "100", true, 1},
    {"vgGeneralBulkInsert", &P::bulkInsert, "Bulk Insert Documents", "0", false},
    {"vgGeneralTargetDegree", &P::degree, "Parallel Degree", "1", true, 1, 1024},
    {"vgGeneralLoadNum", &P::loadNum, "Rows/Documents To Load", "0"},
    {"vgGeneralIgnoreNulls", &P::ignoreNulls, "Ignore NULLs?", "True"},
    {"vgGeneralNestedPLSQL", &P::nestedPLSQL, "Use PL/SQL for Nested Data Sources", "False", false},
    {"vgGeneralSkipCount", &P::skipCount, "Skip Data Source Rows Counting Step (Oracle)", "False", false},
    {"vgGeneralDiscNum", &P::discNum, "Stop When Rows/Documents Discarded", "0"},
    {"vgGeneralSkipNum", &P::skipNum, "Stop When Rows/Documents Skipped", "0", false},
    {"vgGeneralLogFile", &P::logFile, "Log File", ""},
    {"vgGeneralDiscFile", &P::discFile, "Discard File", ""},
}};

}  // namespace

std::span<const TProjectField> projectFields() { return fields; }

TProject newProject(const TSettings& settings, const TDataFolder& folder) {
  TProject project;
  project.projectName = "NewProject";
  project.fetchLimit = settings.fetchLimit;
  project.degree = settings.loadDegree;
  project.loadNum = settings.loadNum;
  project.discNum = settings.discardNum;
  project.skipNum = settings.skipNum;
  project.ignoreNulls = settings.ignoreNulls;
  project.logFile = folder.logFile();
  project.discFile = folder.discardFile();
  return project;
}

TValue definitionFromText(std::string_view text) {
  if (text.empty()) return TObject();
  try {
    // A file may be called "2024" or "true": what parses as anything but an object is a name.
    TValue value = parseJson(text);
    if (value.is(TKind::Object)) return value;
  } catch (const TJsonError&) {
    // Not JSON, then; that is the other thing which a definition may be.
  }
  return std::string(text);
}

std::string definitionText(const TValue& definition) {
  return definition.is(TKind::Text) ? definition.asText() : toJson(definition);
}

}  // namespace hollowmere
