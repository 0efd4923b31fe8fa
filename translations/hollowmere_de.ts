<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>Messages</name>
    <message>
        <source>&amp;Copy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to print %1 to %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Print Preview - %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stopping...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> (a whole number from </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> (text)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> (true or false)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> Please ensure that this file is not used by other processes.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> Possibly you need to decrease parallel degree if you load small tables.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> because of the error </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> bytes.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> completed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> discarded rows/documents.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> documents.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> must be </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> must be a whole number from 0 to 65535.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> returns </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> returns all table rows/documents (not counted)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> returns no rows/documents. Skipping...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> rows/documents to load.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> rows/documents.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> skipped rows/documents.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> to </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Arrange</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Cascade</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>(Unable to create or read the registry key SoftwareTamsburySoftwareHollowmere)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>(Unable to write to the registry key SoftwareTamsburySoftwareHollowmere)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>. Wait or cancel load operation before exiting application.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>8 Bit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>: Start initializing of </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>About</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Are you sure to clear data sources?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Are you sure to start load operation?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Are you sure to stop load operation?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Authentication Database</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Authentication Mechanism</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto Column Width</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto Row Height</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Basic</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Batch execution error for project </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Binary</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Boolean</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bucket</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bucket SASL Password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bulk Insert Documents</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CQL Query</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Calculating rows/documents number for data sources is disabled.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Calculating rows/documents number for data sources...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancelled loading </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Closing database connections...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Column Family</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Configure Database Connections</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Configured</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connection Properties</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Create Migration Project from Oracle Schema</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cut</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Grid Properties</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Mapping</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Source (JSON List)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Source (JSON Object)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Sources</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Target Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Targets</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data retrieval error occurred: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data source </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data source name already exists.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data source name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data target name already exists.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data target name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Database</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Database Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Database Type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Default</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Default Project Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Description</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Digest</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Discard File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do not use http: or https: protocol prefixes in the host name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Documents To Load</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Encoding</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Error document/row:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Error encountered: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Exit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>False</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fetch Limit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finish row/document number </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finished closing database connections...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finished loading </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>General</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>General error occurred: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>HTTP Timeout</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hollowmere</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Host</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ignore NULLs?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Info Port</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Initialization error: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Initializing data mapping...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Initializing data sources...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Initializing data targets...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Initializing loading threads...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Initializing of </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Initializing source and target database connections.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Initializing...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid project file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JSON File Buffer Size (bytes)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JSON List</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JSON Object</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JSON from XML</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Keyspace</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Linked Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load error: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load operation cancelled at </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load operation finished at </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load operation finished.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load operation is still in progress for the project </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load operation results summary</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load operation started at </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Loading </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Log File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Map Function</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Max Fetch Limit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nested objects or lists are not supported for this database type: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New Project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No data mapping defined.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No data sources created.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No data sources defined.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No data targets defined.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>None</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not Configured</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ntlm</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Only one root data source is supported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Only one target JSON file is supported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open Project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open project file </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Operating System Default</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Oracle TNS Service Name/host:port:SID or host:port:SN=dbservice</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Page Setup</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Parallel Degree</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Parallel degree cannot be greater than the number of documents/rows to be loaded. You should decrease parallel degree for the data source </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Parallel processing is not yet supported for sources or targets with type &quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Parameters</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Paste</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify Cassandra database host.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify CouchDB database host.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify Couchbase database host.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify HBase database host.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify MongoDB database name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify MongoDB instance host.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify Oracle database service name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify Oracle database user password.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify Oracle database user.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify protocol.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify source database type.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify target database type.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Port</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Processing stopped by the user</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Processing successfully completed with exit code 0</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Product Information</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Program Options</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Project File :: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Project Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Project name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Protocol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Proxy Authentication Type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Proxy Authetication Type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Proxy Server Host</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Proxy Server Port</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Proxy Server User</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Proxy Server User Password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Query (JSON filter)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>REST Port</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reached threshold of </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Read Consistency Level</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ready</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Redo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Root data source </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Root data source is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rows/Documents To Load</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Run</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SQL Query</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save Project As</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select All</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select an attribute or a target first.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show Connection List At Startup</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show JSON Icon In Grid?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Skip Data Source Rows Counting Step (Oracle)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source Database</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source Object/Attribute</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source and target cannot have type &quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source database connection is not configured.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source database connection not configured.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source database type is not supported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source database type not defined.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start Load Operation</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start row/document number </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Starting thread </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop Load Operation</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop When Rows/Documents Discarded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop When Rows/Documents Skipped</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stopped.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stopping loading threads...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>String</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Successfully connected to source and target databases.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Table</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target Database</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target Object</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target Object/Attribute</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target Type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target database connection is not configured.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target database connection not configured.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target database type is not supported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target database type not defined.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target object is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Technical Support</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Terminating processing with exit code 1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>These settings hold a value of a wrong type, their defaults are used: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This attribute carries the document&apos;s key and cannot be deleted: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This data source name cannot be used.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Total thread rows/documents to load </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>True</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>True or False</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to change root data target type.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to close this window because load operation is still in progress.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to connect to source database: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to connect to target database: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to determine rows/documents number for data source </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to find data source </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to find data target: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to find root data source </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to open discard file </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to open log file </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Undo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use PL/SQL for Nested Data Sources</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>User name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Working...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Would you like to reset all existing data sources and data mappings?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Would you like to reset all existing data targets and data mappings?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Would you like to save project changes?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Write Consistency Level</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>You cannot change column name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a whole number from </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>datatarget</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>returns no rows/documents. Skipping</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>saslpwd</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>target</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>targettype</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TConnectionModel</name>
    <message>
        <source>Configure...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TDataSourceDialog</name>
    <message>
        <source>Data Source %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Test</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>First rows</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Test shows the first rows here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;File name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Would you like to keep this query all the same?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reading the first rows...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TDataSourcesPage</name>
    <message>
        <source>Data sources</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Source Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Confi&amp;gure...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TDataTargetsPage</name>
    <message>
        <source>Data targets</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TExportDialog</name>
    <message>
        <source>&amp;Without passwords, as readable text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>With passwords, &amp;enciphered under a pass phrase</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pass phrase</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pass phrase again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export Connections</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The cipher (DES) keeps casual readers out. It does not withstand an expert: hand such a file only to people who may know the passwords.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Pass phrase</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pass phrase &amp;again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>E&amp;xport...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TGeneralPage</name>
    <message>
        <source>Project settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>General</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TMappingPage</name>
    <message>
        <source>Reading the first rows...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add &amp;Target</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add &amp;Attribute</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add All F&amp;ields</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>D&amp;own</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Find</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Find in the mapping</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>P&amp;revious Row</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Next Row</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source row</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Resulting document</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Row %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No fields of this data source are known yet: the preview beside the tree tells why.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No rows</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Row %1 of the first %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TMappingTree</name>
    <message>
        <source>Mapping</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TPassPhraseDialog</name>
    <message>
        <source>Pass phrase</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Import Connections</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The connections of this file are enciphered under a pass phrase.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Pass phrase</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TPropertyGrid</name>
    <message>
        <source>Choose %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>F4</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Setting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Value</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TRunPage</name>
    <message>
        <source>&amp;Start</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>S&amp;top</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Overall progress</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Loaded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Discarded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Skipped</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Processed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Documents per second</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Thread</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>State</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Progress</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rows per second</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Threads</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show only log lines with this text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Log filter</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open &amp;Log</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open &amp;Discard File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load log</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> (%1 left)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Running</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 loaded, %2 discarded, %3 skipped</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmConnList</name>
    <message>
        <source>Exported connections (*.json)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Database Connections</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Database connections</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Add New Connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Edit &amp;Connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Re&amp;move Connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Open Connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Any part of a row</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Find</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fi&amp;nd:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Import...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>E&amp;xport...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connections: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Import Connections</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export Connections</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmDBConfig</name>
    <message>
        <source>Database Connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Database type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Kept connections:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A new connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Test Connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Stop Test</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmHelp</name>
    <message>
        <source>Hollowmere Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Help page</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Contents</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Forward</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Find on this page</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmMain</name>
    <message>
        <source>Open windows</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Main</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+O</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Shift+O</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Recent Projects</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Previous</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>F1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Load projects (*.hmp);;All files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No projects yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>this type of</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no browser window for %1 databases in this version yet. Connections of this type can be used in load projects where the store is supported.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This build has no assistant for migration projects yet.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This build has no Oracle connector: a migration project cannot be created from an Oracle schema.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>About Hollowmere</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;b&gt;Hollowmere %1&lt;/b&gt;&lt;p&gt;Moves data between databases and JSON files.&lt;/p&gt;&lt;p&gt;Free software under the GNU General Public License, version 3 or later.&lt;/p&gt;</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmOption</name>
    <message>
        <source>Program Options</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Program options</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmProject</name>
    <message>
        <source>Load projects (*.hmp);;All files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+Shift+S</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Undo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Redo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>F9</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shift+F9</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Project pages</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+PgDown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ctrl+PgUp</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The project file %1 is open in another window. Close that window first, or choose another name.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file %1 was changed by another program since it was opened. Would you like to replace it?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JSON files (*.json *.jsonl);;All files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source JSON File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target JSON File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connecting and counting...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
