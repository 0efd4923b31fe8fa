#pragma once

namespace hollowmere::mongotexts {

// Fixed texts of work on databases, collections and files, letter by letter.

inline constexpr char cannotConnect[] = "Unable to connect to MongoDB.";
inline constexpr char noDatabaseName[] = "Database name is not specified.";
inline constexpr char databaseExists[] = "Database already exists.";
inline constexpr char cannotCreateDatabase[] =
    "Unable to create database. Please verify you have necessary privileges.";
inline constexpr char cannotDropDatabase[] = "Unable to drop this database.";
inline constexpr char noDatabase[] = "Database is not specified.";
inline constexpr char noCollectionName[] = "Collection name is not specified.";
inline constexpr char collectionExists[] = "Collection already exists.";
inline constexpr char cannotDropSystem[] = "Unable to drop system MongoDB collection.";
inline constexpr char noIndexName[] = "Index name is not specified.";
inline constexpr char noIndexKeys[] = "No index keys are specified.";
inline constexpr char noKeyName[] = "No key name is provided.";
inline constexpr char noPrivileges[] = " Verify that the current user has necessary privileges.";
inline constexpr char commandsFault[] = "An error occurred during accessing database commands information: ";
inline constexpr char usersFault[] = "An error occurred during accessing user information: ";
inline constexpr char rolesFault[] = "An error occurred during accessing role information: ";
inline constexpr char gridFsFault[] = "An error occurred during accessing GridFS: ";

inline constexpr char noAttributes[] = "No document attributes specified to copy.";
inline constexpr char noSourceDatabase[] = "Source MongoDB database name is not specified.";
inline constexpr char noSourceCollection[] = "Source collection name is not specified.";
inline constexpr char noTargetConnection[] = "Target MongoDB connection is not specified.";
inline constexpr char noTargetDatabase[] = "Target database name is not specified.";
inline constexpr char noTargetCollection[] = "Target collection name is not specified.";
inline constexpr char sameCollection[] = "Source and target collections must be different.";
inline constexpr char systemTarget[] = "Unable to copy data to system collection";
inline constexpr char noSourceConnection[] = "Unable to connect to source database.";
inline constexpr char noTargetServer[] = "Unable to connect to target database.";
inline constexpr char emptySource[] = "Source collection does not contain documents.";

inline constexpr char savedTo[] = "File has been successfully saved to ";
inline constexpr char openIt[] = " Would you like to open it?";

}  // namespace hollowmere::mongotexts
