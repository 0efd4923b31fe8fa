// The part of Cassandra's published Thrift interface (API versions 19.39 and 20.1, servers 2.1 to 3.11) that is
// called here. What is left out, a reader skips.
namespace cpp hollowmere.cassandrawire

enum ConsistencyLevel {
  ONE = 1, QUORUM = 2, LOCAL_QUORUM = 3, EACH_QUORUM = 4, ALL = 5, ANY = 6, TWO = 7, THREE = 8, SERIAL = 9,
  LOCAL_SERIAL = 10, LOCAL_ONE = 11
}
enum Compression { GZIP = 1, NONE = 2 }
enum CqlResultType { ROWS = 1, VOID = 2, INT = 3 }

exception InvalidRequestException { 1: required string why }
exception AuthenticationException { 1: required string why }
exception AuthorizationException { 1: required string why }
exception UnavailableException {}
exception SchemaDisagreementException {}
exception TimedOutException {
  1: optional i32 acknowledged_by
  2: optional bool acknowledged_by_batchlog
  3: optional bool paxos_in_progress
}

struct AuthenticationRequest { 1: required map<string, string> credentials }
struct Column {
  1: required binary name
  2: optional binary value
  3: optional i64 timestamp
  4: optional i32 ttl
}
struct CqlRow {
  1: required binary key
  2: required list<Column> columns
}
struct CqlMetadata {
  1: required map<binary, string> name_types
  2: required map<binary, string> value_types
  3: required string default_name_type
  4: required string default_value_type
}
struct CqlResult {
  1: required CqlResultType type
  2: optional list<CqlRow> rows
  3: optional i32 num
  4: optional CqlMetadata schema
}
struct CqlPreparedResult {
  1: required i32 itemId
  2: required i32 count
  3: optional list<string> variable_types
  4: optional list<string> variable_names
}

service Cassandra {
  void login(1: required AuthenticationRequest auth_request)
    throws (1: AuthenticationException authnx, 2: AuthorizationException authzx)
  void set_keyspace(1: required string keyspace) throws (1: InvalidRequestException ire)
  string describe_version()
  string describe_partitioner()
  CqlResult execute_cql3_query(1: required binary query, 2: required Compression compression,
      3: required ConsistencyLevel consistency)
    throws (1: InvalidRequestException ire, 2: UnavailableException ue, 3: TimedOutException te,
      4: SchemaDisagreementException sde)
  CqlPreparedResult prepare_cql3_query(1: required binary query, 2: required Compression compression)
    throws (1: InvalidRequestException ire)
  CqlResult execute_prepared_cql3_query(1: required i32 itemId, 2: required list<binary> values,
      3: required ConsistencyLevel consistency)
    throws (1: InvalidRequestException ire, 2: UnavailableException ue, 3: TimedOutException te,
      4: SchemaDisagreementException sde)
}
