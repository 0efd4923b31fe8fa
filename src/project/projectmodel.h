#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "connectors/loadtypes.h"
#include "json/value.h"
#include "settings/settings.h"

namespace hollowmere {

/// The whole message for content that is no project, and the start of that for one with a fault inside.
inline constexpr std::string_view invalidProjectFile = "Invalid project file.";

/// A project that cannot be read, written or built. what() is for the user and holds no secrets.
class TProjectError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Where a project's documents come from or go to.
struct TProjectSide {
  std::string dbType;             ///< one of dbtype::all, or empty
  TValue connection = TObject();  ///< a ConnectionConfig, or a file name as text; empty object: none

  bool operator==(const TProjectSide&) const = default;
};

/// A load project. A fresh one holds what is written for settings that nobody has set. A plain value.
struct TProject {
  std::string projectName;
  std::string comment;
  std::int64_t fetchLimit = 100;
  std::int64_t bulkInsert = 0;
  std::int64_t degree = 1;
  std::int64_t loadNum = 0;  ///< 0: all
  bool ignoreNulls = false;
  bool nestedPLSQL = false;
  bool skipCount = false;
  std::int64_t discNum = 0;  ///< 0: never stop
  std::int64_t skipNum = 0;  ///< 0: never stop
  std::string logFile;
  std::string discFile;
  TProjectSide source;
  TProjectSide target;
  std::vector<TDataSource> dataSources;
  std::vector<TDataTarget> dataTargets;
  std::vector<TMapNode> mapping;

  // Not saved:
  std::string fileName;  ///< where it was opened from or last saved to; empty: new
  bool changed = false;

  bool operator==(const TProject&) const = default;
};

using TProjectMember = std::variant<std::string TProject::*, bool TProject::*, std::int64_t TProject::*>;

/// One general setting of a project.
struct TProjectField {
  std::string_view key;  ///< in the project file and of the row
  TProjectMember member;
  std::string_view caption;
  std::string_view rowDefault;  ///< in the settings grid
  bool required = true;         ///< a file without it is not read
  std::int64_t lowest = 0;      ///< bounds of an integer
  std::int64_t highest = 2147483647;
};

/// The general settings in the order of the project file.
std::span<const TProjectField> projectFields();

/// The names under which a project file and the settings grid know the source or the target.
struct TProjectSideField {
  TProjectSide TProject::*member;
  std::string_view category;
  std::string_view categoryCaption;
  std::string_view dbType;
  std::string_view connection;
};
inline constexpr std::string_view dbTypeCaption = "Database Type";
inline constexpr std::string_view connectionCaption = "Connection Properties";
inline constexpr std::array<TProjectSideField, 2> projectSides = {{
    {&TProject::source, "vgGeneralCategorySourceDB", "Source Database", "vgGeneralSourceDBType",
     "vgGeneralSourceConn"},
    {&TProject::target, "vgGeneralCategoryTargetDB", "Target Database", "vgGeneralTargetDBType",
     "vgGeneralTargetConn"},
}};

/// A project as "New Project" makes it.
TProject newProject(const TSettings& settings, const TDataFolder& folder);

/// What a cell that holds a connection or a query means: empty or "{}" is an empty object, the JSON text of
/// an object is that object, anything else is plain text (a file name).
TValue definitionFromText(std::string_view text);
/// The text of such a cell: the JSON text of an object, a plain text as it stands.
std::string definitionText(const TValue& definition);

}  // namespace hollowmere
