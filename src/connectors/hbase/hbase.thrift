/* What is used of HBase's first Thrift service. Names, field numbers and types are those that the project
 * publishes with its hbase-thrift module; a server's further methods and fields are left out. */
namespace cpp hollowmere.hbasewire

typedef binary Text
typedef binary Bytes
typedef i32 ScannerID

struct TCell {
  1: Bytes value,
  2: i64 timestamp
}

struct ColumnDescriptor {
  1: Text name,
  2: i32 maxVersions = 3,
  3: string compression = "NONE",
  4: bool inMemory = 0,
  5: string bloomFilterType = "NONE",
  6: i32 bloomFilterVectorSize = 0,
  7: i32 bloomFilterNbHashes = 0,
  8: bool blockCacheEnabled = 0,
  9: i32 timeToLive = 0x7fffffff
}

struct TRegionInfo {
  1: Text startKey,
  2: Text endKey,
  3: i64 id,
  4: Text name,
  5: i8 version,
  6: Text serverName,
  7: i32 port
}

struct Mutation {
  1: bool isDelete = 0,
  2: Text column,
  3: Text value,
  4: bool writeToWAL = 1
}

struct BatchMutation {
  1: Text row,
  2: list<Mutation> mutations
}

struct TColumn {
  1: Text columnName,
  2: TCell cell
}

struct TRowResult {
  1: Text row,
  2: optional map<Text, TCell> columns,
  3: optional list<TColumn> sortedColumns
}

struct TScan {
  1: optional Text startRow,
  2: optional Text stopRow,
  3: optional i64 timestamp,
  4: optional list<Text> columns,
  5: optional i32 caching,
  6: optional Text filterString,
  7: optional i32 batchSize,
  8: optional bool sortColumns,
  9: optional bool reversed,
  10: optional bool cacheBlocks
}

exception IOError {
  1: string message,
  2: bool canRetry
}

exception IllegalArgument {
  1: string message
}

exception AlreadyExists {
  1: string message
}

service Hbase {
  void enableTable(1: Bytes tableName) throws (1: IOError io)
  void disableTable(1: Bytes tableName) throws (1: IOError io)
  bool isTableEnabled(1: Bytes tableName) throws (1: IOError io)
  void compact(1: Bytes tableNameOrRegionName) throws (1: IOError io)
  void majorCompact(1: Bytes tableNameOrRegionName) throws (1: IOError io)
  list<Text> getTableNames() throws (1: IOError io)
  map<Text, ColumnDescriptor> getColumnDescriptors(1: Text tableName) throws (1: IOError io)
  list<TRegionInfo> getTableRegions(1: Text tableName) throws (1: IOError io)
  void createTable(1: Text tableName, 2: list<ColumnDescriptor> columnFamilies)
    throws (1: IOError io, 2: IllegalArgument ia, 3: AlreadyExists exist)
  void deleteTable(1: Text tableName) throws (1: IOError io)

  list<TCell> getVer(1: Text tableName, 2: Text row, 3: Text column, 4: i32 numVersions,
                     5: map<Text, Text> attributes) throws (1: IOError io)
  list<TRowResult> getRow(1: Text tableName, 2: Text row, 3: map<Text, Text> attributes) throws (1: IOError io)

  void mutateRow(1: Text tableName, 2: Text row, 3: list<Mutation> mutations, 4: map<Text, Text> attributes)
    throws (1: IOError io, 2: IllegalArgument ia)
  void mutateRows(1: Text tableName, 2: list<BatchMutation> rowBatches, 3: map<Text, Text> attributes)
    throws (1: IOError io, 2: IllegalArgument ia)
  void deleteAllRow(1: Text tableName, 2: Text row, 3: map<Text, Text> attributes) throws (1: IOError io)

  ScannerID scannerOpenWithScan(1: Text tableName, 2: TScan scan, 3: map<Text, Text> attributes)
    throws (1: IOError io)
  ScannerID scannerOpen(1: Text tableName, 2: Text startRow, 3: list<Text> columns, 4: map<Text, Text> attributes)
    throws (1: IOError io)
  list<TRowResult> scannerGetList(1: ScannerID id, 2: i32 nbRows) throws (1: IOError io, 2: IllegalArgument ia)
  void scannerClose(1: ScannerID id) throws (1: IOError io, 2: IllegalArgument ia)
}
