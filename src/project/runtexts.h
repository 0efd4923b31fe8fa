#pragma once

/// The fixed texts of the run control, letter by letter as they stand in dialogs and log files.
namespace hollowmere::runtexts {

inline constexpr char openLog[] = "Unable to open log file ";
inline constexpr char openDisc[] = "Unable to open discard file ";
inline constexpr char becauseOf[] = " because of the error ";
inline constexpr char ensureNotUsed[] = " Please ensure that this file is not used by other processes.";
inline constexpr char noSourceType[] = "Source database type not defined.";
inline constexpr char noTargetType[] = "Target database type not defined.";
inline constexpr char bothFiles[] = "Source and target cannot have type \"";
inline constexpr char noParallel[] =
    "Parallel processing is not yet supported for sources or targets with type \"";
inline constexpr char sourceUnsupported[] = "Source database type is not supported.";
inline constexpr char targetUnsupported[] = "Target database type is not supported.";
inline constexpr char noSourceConnection[] = "Source database connection not configured.";
inline constexpr char noTargetConnection[] = "Target database connection not configured.";
inline constexpr char connectSource[] = "Unable to connect to source database: ";
inline constexpr char connectTarget[] = "Unable to connect to target database: ";
inline constexpr char noSources[] = "No data sources defined.";
inline constexpr char noTargets[] = "No data targets defined.";
inline constexpr char noMapping[] = "No data mapping defined.";
inline constexpr char noTarget[] = "Unable to find data target: ";
inline constexpr char notMapped[] = "Required data field is not mapped: ";
inline constexpr char confirmStart[] = "Are you sure to start load operation?";
inline constexpr char confirmStop[] = "Are you sure to stop load operation?";
inline constexpr char working[] = "Working...";
inline constexpr char ready[] = "Ready";
inline constexpr char initializing[] = "Initializing...";
inline constexpr char initThreads[] = "Initializing loading threads...";
inline constexpr char initSources[] = "Initializing data sources...";
inline constexpr char notCounting[] = "Calculating rows/documents number for data sources is disabled.";
inline constexpr char counting[] = "Calculating rows/documents number for data sources...";
inline constexpr char rootSource[] = "Root data source ";
inline constexpr char returns[] = " returns ";
inline constexpr char rows[] = " rows/documents.";
inline constexpr char bytes[] = " bytes.";
inline constexpr char notCounted[] = " returns all table rows/documents (not counted)";
inline constexpr char initTargets[] = "Initializing data targets...";
inline constexpr char initMapping[] = "Initializing data mapping...";
inline constexpr char startInit[] = ": Start initializing of ";
inline constexpr char initializingOf[] = "Initializing of ";
inline constexpr char completed[] = " completed.";
inline constexpr char starting[] = "Starting thread ";
inline constexpr char errorEncountered[] = "Error encountered: ";
inline constexpr char threshold[] = "Reached threshold of ";
inline constexpr char toLoad[] = " rows/documents to load.";
inline constexpr char discarded[] = " discarded rows/documents.";
inline constexpr char skipped[] = " skipped rows/documents.";
inline constexpr char stopping[] = "Stopping loading threads...";
inline constexpr char finished[] = "Load operation finished.";
inline constexpr char summary[] = "Load operation results summary";
inline constexpr char line[] = "------------------------------------------------------";
inline constexpr char success[] = "Processing successfully completed with exit code 0";
inline constexpr char stoppedByUser[] = "Processing stopped by the user";
inline constexpr char batchError[] = "Batch execution error for project ";
inline constexpr char terminating[] = "Terminating processing with exit code 1";
inline constexpr char stillRunning[] =
    "Unable to close this window because load operation is still in progress.";
inline constexpr char saveChanges[] = "Would you like to save project changes?";
inline constexpr char runningBefore[] = "Load operation is still in progress for the project ";
inline constexpr char runningBehind[] = ". Wait or cancel load operation before exiting application.";

static_assert(sizeof line == 54 + 1);

}  // namespace hollowmere::runtexts
