#pragma once

/// The fixed texts of project editing, letter by letter as dialogs show them.
namespace hollowmere::edittexts {

inline constexpr char noProjectName[] = "Project name is not specified.";
inline constexpr char noSourceType[] = "Please specify source database type.";
inline constexpr char noTargetType[] = "Please specify target database type.";
inline constexpr char resetSources[] = "Would you like to reset all existing data sources and data mappings?";
inline constexpr char resetTargets[] = "Would you like to reset all existing data targets and data mappings?";
inline constexpr char sourceNotConfigured[] = "Source database connection is not configured.";
inline constexpr char targetNotConfigured[] = "Target database connection is not configured.";
inline constexpr char noSourceName[] = "Data source name is not specified.";
inline constexpr char reservedSourceName[] = "This data source name cannot be used.";
inline constexpr char sourceNameExists[] = "Data source name already exists.";
inline constexpr char clearSources[] = "Are you sure to clear data sources?";
inline constexpr char noTargetName[] = "Data target name is not specified.";
inline constexpr char targetNameExists[] = "Data target name already exists.";
inline constexpr char noTargetObject[] = "Target object is not specified.";
inline constexpr char noSources[] = "No data sources created.";
inline constexpr char oneTargetFile[] = "Only one target JSON file is supported.";
inline constexpr char noRootSource[] = "Root data source is not specified.";
inline constexpr char oneRootSource[] = "Only one root data source is supported.";
inline constexpr char rootType[] = "Unable to change root data target type.";
inline constexpr char noNested[] = "Nested objects or lists are not supported for this database type: ";
inline constexpr char columnName[] = "You cannot change column name.";
inline constexpr char keyField[] = "This attribute carries the document's key and cannot be deleted: ";
inline constexpr char noNode[] = "Select an attribute or a target first.";

}  // namespace hollowmere::edittexts
