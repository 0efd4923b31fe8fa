#pragma once

/// The fixed texts of the load thread, letter by letter as they stand in log files.
namespace hollowmere::ldtexts {

inline constexpr char started[] = "Load operation started at ";
inline constexpr char finished[] = "Load operation finished at ";
inline constexpr char cancelled[] = "Load operation cancelled at ";
inline constexpr char initializing[] = "Initializing source and target database connections.";
inline constexpr char connected[] = "Successfully connected to source and target databases.";
inline constexpr char initError[] = "Initialization error: ";
inline constexpr char generalError[] = "General error occurred: ";
inline constexpr char loadError[] = "Load error: ";
inline constexpr char readError[] = "Data retrieval error occurred: ";
inline constexpr char errorRow[] = "Error document/row:";
inline constexpr char separator[] = "---------------------------------------------------";
inline constexpr char loading[] = "Loading ";
inline constexpr char finishedLoading[] = "Finished loading ";
inline constexpr char cancelledLoading[] = "Cancelled loading ";
inline constexpr char arrow[] = " -> ";
inline constexpr char documents[] = " documents.";
inline constexpr char startRow[] = "Start row/document number ";
inline constexpr char finishRow[] = "Finish row/document number ";
inline constexpr char totalRows[] = "Total thread rows/documents to load ";
inline constexpr char closing[] = "Closing database connections...";
inline constexpr char closed[] = "Finished closing database connections...";
inline constexpr char stopped[] = "Stopped.";
inline constexpr char dataSource[] = "Data source ";
inline constexpr char noRows[] = " returns no rows/documents. Skipping...";
inline constexpr char noRowsMark[] = "returns no rows/documents. Skipping";
inline constexpr char degreeTooHigh[] =
    "Parallel degree cannot be greater than the number of documents/rows to be loaded. You should decrease "
    "parallel degree for the data source ";
inline constexpr char noRowNumber[] = "Unable to determine rows/documents number for data source ";
inline constexpr char noRowNumberHint[] =
    " Possibly you need to decrease parallel degree if you load small tables.";
inline constexpr char noRootSource[] = "Unable to find root data source ";
inline constexpr char noSource[] = "Unable to find data source ";

}  // namespace hollowmere::ldtexts
