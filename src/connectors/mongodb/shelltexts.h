#pragma once

namespace hollowmere::shelltexts {

// Fixed texts around the database's shell, letter by letter.

inline constexpr char findProgram[] = "Please specify MongoDB shell executable file mongo.exe";
inline constexpr char findTitle[] = "Find MongoDB Shell Executable";
inline constexpr char findFilter[] = "Mongo Shell Executable|mongo.exe";
inline constexpr char noProgram[] = "You must specify MongoDB shell executable file mongo.exe  Exiting...";

inline constexpr char badConnection[] = "Unable to parse connection string.";
inline constexpr char noPassword[] = "Unable to find MongoDB user password for the user ";
inline constexpr char noResult[] =
    "Unable to retrieve command result. Please check if result JSON file exists ";
inline constexpr char badCollections[] =
    "Unable to parse collection list. Please verify if you have configured shell path for mongo.exe shell "
    "executable version 3.0 or later.";
inline constexpr char badIndexes[] =
    "Unable to parse index JSON list. Please verify if you have configured shell path for mongo.exe shell "
    "executable version 3.0 or later.";
inline constexpr char notAuthorized[] = " You might be not authorized to perform this operation.";
inline constexpr char noOutput[] = "No output data.";
inline constexpr char unknownVersion[] = "Unknown";

}  // namespace hollowmere::shelltexts
