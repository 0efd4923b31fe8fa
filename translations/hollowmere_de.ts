<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>Messages</name>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Unable to print %1 to %2.</source>
        <translation>%1 kann nicht auf %2 gedruckt werden.</translation>
    </message>
    <message>
        <source>Print Preview - %1</source>
        <translation>Druckvorschau - %1</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>Stopping...</source>
        <translation>Wird abgebrochen ...</translation>
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
        <translation> Bitte stellen Sie sicher, dass kein anderes Programm diese Datei benutzt.</translation>
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
        <translation> muss eine ganze Zahl von 0 bis 65535 sein.</translation>
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
        <translation>&amp;Anordnen</translation>
    </message>
    <message>
        <source>&amp;Cascade</source>
        <translation>&amp;Überlappend</translation>
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
        <translation>. Warten Sie das Ende ab oder brechen Sie das Laden ab, bevor Sie das Programm beenden.</translation>
    </message>
    <message>
        <source>8 Bit</source>
        <translation>8 Bit</translation>
    </message>
    <message>
        <source>: Start initializing of </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über Hollowmere</translation>
    </message>
    <message>
        <source>Are you sure to clear data sources?</source>
        <translation>Sollen wirklich alle Datenquellen entfernt werden?</translation>
    </message>
    <message>
        <source>Are you sure to start load operation?</source>
        <translation>Soll der Ladevorgang wirklich gestartet werden?</translation>
    </message>
    <message>
        <source>Are you sure to stop load operation?</source>
        <translation>Soll der Ladevorgang wirklich abgebrochen werden?</translation>
    </message>
    <message>
        <source>Authentication Database</source>
        <translation>Anmeldedatenbank</translation>
    </message>
    <message>
        <source>Authentication Mechanism</source>
        <translation>Anmeldeverfahren</translation>
    </message>
    <message>
        <source>Auto Column Width</source>
        <translation>Spaltenbreite anpassen</translation>
    </message>
    <message>
        <source>Auto Row Height</source>
        <translation>Zeilenhöhe anpassen</translation>
    </message>
    <message>
        <source>Basic</source>
        <translation>Basic</translation>
    </message>
    <message>
        <source>Batch execution error for project </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bucket</source>
        <translation>Bucket</translation>
    </message>
    <message>
        <source>Bucket SASL Password</source>
        <translation>SASL-Kennwort des Buckets</translation>
    </message>
    <message>
        <source>Bulk Insert Documents</source>
        <translation>Dokumente je Einfügung</translation>
    </message>
    <message>
        <source>CQL Query</source>
        <translation>CQL-Abfrage</translation>
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
        <translation>Sammlung</translation>
    </message>
    <message>
        <source>Column Family</source>
        <translation>Spaltenfamilie</translation>
    </message>
    <message>
        <source>Configure Database Connections</source>
        <translation>Datenbankverbindungen einrichten</translation>
    </message>
    <message>
        <source>Configured</source>
        <translation>Eingerichtet</translation>
    </message>
    <message>
        <source>Connection Properties</source>
        <translation>Verbindung</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Create Migration Project from Oracle Schema</source>
        <translation>Migrationsprojekt aus Oracle-Schema erstellen</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>Ausschneiden</translation>
    </message>
    <message>
        <source>Data Grid Properties</source>
        <translation>Datentabellen</translation>
    </message>
    <message>
        <source>Data Mapping</source>
        <translation>Zuordnung</translation>
    </message>
    <message>
        <source>Data Sources</source>
        <translation>Datenquellen</translation>
    </message>
    <message>
        <source>Data Target Name</source>
        <translation>Name des Datenziels</translation>
    </message>
    <message>
        <source>Data Targets</source>
        <translation>Datenziele</translation>
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
        <translation>Diesen Namen hat schon eine Datenquelle.</translation>
    </message>
    <message>
        <source>Data source name is not specified.</source>
        <translation>Die Datenquelle hat keinen Namen.</translation>
    </message>
    <message>
        <source>Data target name already exists.</source>
        <translation>Diesen Namen hat schon ein Datenziel.</translation>
    </message>
    <message>
        <source>Data target name is not specified.</source>
        <translation>Das Datenziel hat keinen Namen.</translation>
    </message>
    <message>
        <source>Database</source>
        <translation>Datenbank</translation>
    </message>
    <message>
        <source>Database Name</source>
        <translation>Datenbankname</translation>
    </message>
    <message>
        <source>Database Type</source>
        <translation>Datenbankart</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>Default Project Settings</source>
        <translation>Vorgaben neuer Projekte</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>Digest</source>
        <translation>Digest</translation>
    </message>
    <message>
        <source>Discard File</source>
        <translation>Ausschussdatei</translation>
    </message>
    <message>
        <source>Do not use http: or https: protocol prefixes in the host name.</source>
        <translation>Der Rechnername darf nicht mit http: oder https: beginnen.</translation>
    </message>
    <message>
        <source>Documents To Load</source>
        <translation>Zu ladende Dokumente</translation>
    </message>
    <message>
        <source>Encoding</source>
        <translation>Kodierung</translation>
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
        <translation>Beenden</translation>
    </message>
    <message>
        <source>False</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>Fetch Limit</source>
        <translation>Zeilen je Abruf</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
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
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>General error occurred: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>HTTP Timeout</source>
        <translation>HTTP-Zeitgrenze</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Hollowmere</source>
        <translation>Hollowmere</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Rechner</translation>
    </message>
    <message>
        <source>Ignore NULLs?</source>
        <translation>NULL-Werte weglassen?</translation>
    </message>
    <message>
        <source>Info Port</source>
        <translation>Info-Port</translation>
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
        <translation>Die Projektdatei ist ungültig.</translation>
    </message>
    <message>
        <source>JSON File Buffer Size (bytes)</source>
        <translation>Lesepuffer für JSON-Dateien (Bytes)</translation>
    </message>
    <message>
        <source>JSON List</source>
        <translation>JSON-Liste</translation>
    </message>
    <message>
        <source>JSON Object</source>
        <translation>JSON-Objekt</translation>
    </message>
    <message>
        <source>Keyspace</source>
        <translation>Keyspace</translation>
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
        <translation>Es wird noch geladen im Projekt </translation>
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
        <translation>Protokolldatei</translation>
    </message>
    <message>
        <source>Map Function</source>
        <translation>Map-Funktion</translation>
    </message>
    <message>
        <source>Max Fetch Limit</source>
        <translation>Zeilen höchstens</translation>
    </message>
    <message>
        <source>Nested objects or lists are not supported for this database type: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New Project</source>
        <translation>Neues Projekt</translation>
    </message>
    <message>
        <source>No data mapping defined.</source>
        <translation>Es ist keine Zuordnung definiert.</translation>
    </message>
    <message>
        <source>No data sources created.</source>
        <translation>Es gibt noch keine Datenquelle.</translation>
    </message>
    <message>
        <source>No data sources defined.</source>
        <translation>Es sind keine Datenquellen definiert.</translation>
    </message>
    <message>
        <source>No data targets defined.</source>
        <translation>Es sind keine Datenziele definiert.</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Not Configured</source>
        <translation>Nicht eingerichtet</translation>
    </message>
    <message>
        <source>Ntlm</source>
        <translation>NTLM</translation>
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
        <translation>Projekt öffnen</translation>
    </message>
    <message>
        <source>Open project file </source>
        <translation>Projektdatei öffnen: </translation>
    </message>
    <message>
        <source>Operating System Default</source>
        <translation>Vorgabe des Betriebssystems</translation>
    </message>
    <message>
        <source>Oracle TNS Service Name/host:port:SID or host:port:SN=dbservice</source>
        <translation>Oracle-TNS-Dienstname/host:port:SID oder host:port:SN=dbservice</translation>
    </message>
    <message>
        <source>Page Setup</source>
        <translation>Seite einrichten</translation>
    </message>
    <message>
        <source>Parallel Degree</source>
        <translation>Parallele Vorgänge</translation>
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
        <translation>Parameter</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Kennwort</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Einfügen</translation>
    </message>
    <message>
        <source>Please specify Cassandra database host.</source>
        <translation>Bitte geben Sie den Rechner der Cassandra-Datenbank an.</translation>
    </message>
    <message>
        <source>Please specify CouchDB database host.</source>
        <translation>Bitte geben Sie den Rechner der CouchDB-Datenbank an.</translation>
    </message>
    <message>
        <source>Please specify Couchbase database host.</source>
        <translation>Bitte geben Sie den Rechner der Couchbase-Datenbank an.</translation>
    </message>
    <message>
        <source>Please specify HBase database host.</source>
        <translation>Bitte geben Sie den Rechner der HBase-Datenbank an.</translation>
    </message>
    <message>
        <source>Please specify MongoDB database name.</source>
        <translation>Bitte geben Sie den Namen der MongoDB-Datenbank an.</translation>
    </message>
    <message>
        <source>Please specify MongoDB instance host.</source>
        <translation>Bitte geben Sie den Rechner der MongoDB-Instanz an.</translation>
    </message>
    <message>
        <source>Please specify Oracle database service name.</source>
        <translation>Bitte geben Sie den Dienstnamen der Oracle-Datenbank an.</translation>
    </message>
    <message>
        <source>Please specify Oracle database user password.</source>
        <translation>Bitte geben Sie das Kennwort des Oracle-Benutzers an.</translation>
    </message>
    <message>
        <source>Please specify Oracle database user.</source>
        <translation>Bitte geben Sie den Oracle-Benutzer an.</translation>
    </message>
    <message>
        <source>Please specify protocol.</source>
        <translation>Bitte geben Sie das Protokoll an.</translation>
    </message>
    <message>
        <source>Please specify source database type.</source>
        <translation>Bitte wählen Sie die Art der Quelldatenbank.</translation>
    </message>
    <message>
        <source>Please specify target database type.</source>
        <translation>Bitte wählen Sie die Art der Zieldatenbank.</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
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
        <translation>Produktinformationen</translation>
    </message>
    <message>
        <source>Program Options</source>
        <translation>Programmoptionen</translation>
    </message>
    <message>
        <source>Project File :: </source>
        <translation>Projektdatei :: </translation>
    </message>
    <message>
        <source>Project Name</source>
        <translation>Projektname</translation>
    </message>
    <message>
        <source>Project name is not specified.</source>
        <translation>Das Projekt hat keinen Namen.</translation>
    </message>
    <message>
        <source>Protocol</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Proxy Authentication Type</source>
        <translation>Anmeldeverfahren am Proxy</translation>
    </message>
    <message>
        <source>Proxy Authetication Type</source>
        <translation>Anmeldeverfahren am Proxy</translation>
    </message>
    <message>
        <source>Proxy Server Host</source>
        <translation>Rechner des Proxyservers</translation>
    </message>
    <message>
        <source>Proxy Server Port</source>
        <translation>Port des Proxyservers</translation>
    </message>
    <message>
        <source>Proxy Server User</source>
        <translation>Benutzer am Proxyserver</translation>
    </message>
    <message>
        <source>Proxy Server User Password</source>
        <translation>Kennwort am Proxyserver</translation>
    </message>
    <message>
        <source>Query (JSON filter)</source>
        <translation>Abfrage (JSON-Filter)</translation>
    </message>
    <message>
        <source>REST Port</source>
        <translation>REST-Port</translation>
    </message>
    <message>
        <source>Reached threshold of </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Read Consistency Level</source>
        <translation>Konsistenzstufe beim Lesen</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Bereit</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
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
        <translation>Zu ladende Zeilen/Dokumente</translation>
    </message>
    <message>
        <source>Run</source>
        <translation>Ausführen</translation>
    </message>
    <message>
        <source>SQL Query</source>
        <translation>SQL-Abfrage</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Projekt speichern</translation>
    </message>
    <message>
        <source>Save Project As</source>
        <translation>Projekt speichern unter</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Alles markieren</translation>
    </message>
    <message>
        <source>Select an attribute or a target first.</source>
        <translation>Wählen Sie zuerst ein Attribut oder ein Ziel.</translation>
    </message>
    <message>
        <source>Show Connection List At Startup</source>
        <translation>Verbindungsliste beim Start zeigen</translation>
    </message>
    <message>
        <source>Show JSON Icon In Grid?</source>
        <translation>JSON-Zeichen in Tabellen?</translation>
    </message>
    <message>
        <source>Skip Data Source Rows Counting Step (Oracle)</source>
        <translation>Zählen der Zeilen überspringen (Oracle)</translation>
    </message>
    <message>
        <source>Source Database</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Source Object/Attribute</source>
        <translation>Quellobjekt/-attribut</translation>
    </message>
    <message>
        <source>Source and target cannot have type &quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source database connection is not configured.</source>
        <translation>Die Verbindung zur Quelldatenbank ist nicht eingerichtet.</translation>
    </message>
    <message>
        <source>Source database connection not configured.</source>
        <translation>Die Verbindung zur Quelldatenbank ist nicht eingerichtet.</translation>
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
        <translation>Laden starten</translation>
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
        <translation>Laden abbrechen</translation>
    </message>
    <message>
        <source>Stop When Rows/Documents Discarded</source>
        <translation>Ende bei so viel Ausschuss</translation>
    </message>
    <message>
        <source>Stop When Rows/Documents Skipped</source>
        <translation>Ende bei so vielen übergangenen Zeilen</translation>
    </message>
    <message>
        <source>Stopped.</source>
        <translation>Angehalten.</translation>
    </message>
    <message>
        <source>Stopping loading threads...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Successfully connected to source and target databases.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Table</source>
        <translation>Tabelle</translation>
    </message>
    <message>
        <source>Target Database</source>
        <translation>Ziel</translation>
    </message>
    <message>
        <source>Target Object</source>
        <translation>Zielobjekt</translation>
    </message>
    <message>
        <source>Target Object/Attribute</source>
        <translation>Zielobjekt/-attribut</translation>
    </message>
    <message>
        <source>Target Type</source>
        <translation>Zieltyp</translation>
    </message>
    <message>
        <source>Answer Time-Out (Seconds)</source>
        <translation>Zeit für eine Antwort (Sekunden)</translation>
    </message>
    <message>
        <source>Row Key</source>
        <translation>Zeilenschlüssel</translation>
    </message>
    <message>
        <source>Target database connection is not configured.</source>
        <translation>Die Verbindung zur Zieldatenbank ist nicht eingerichtet.</translation>
    </message>
    <message>
        <source>Target database connection not configured.</source>
        <translation>Die Verbindung zur Zieldatenbank ist nicht eingerichtet.</translation>
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
        <translation>Das Zielobjekt fehlt.</translation>
    </message>
    <message>
        <source>Technical Support</source>
        <translation>Technische Unterstützung</translation>
    </message>
    <message>
        <source>Terminating processing with exit code 1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>These settings hold a value of a wrong type, their defaults are used: </source>
        <translation>Diese Einstellungen enthalten einen Wert der falschen Art, es gelten ihre Vorgaben: </translation>
    </message>
    <message>
        <source>This attribute carries the document&apos;s key and cannot be deleted: </source>
        <translation>Dieses Attribut trägt den Schlüssel des Dokuments und kann nicht gelöscht werden: </translation>
    </message>
    <message>
        <source>This data source name cannot be used.</source>
        <translation>Dieser Name ist nicht möglich.</translation>
    </message>
    <message>
        <source>Total thread rows/documents to load </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>True</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>True or False</source>
        <translation>Ja oder Nein</translation>
    </message>
    <message>
        <source>Unable to change root data target type.</source>
        <translation>Die Art des obersten Knotens kann nicht geändert werden.</translation>
    </message>
    <message>
        <source>Unable to close this window because load operation is still in progress.</source>
        <translation>Das Fenster kann nicht geschlossen werden, solange geladen wird.</translation>
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
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Use PL/SQL for Nested Data Sources</source>
        <translation>PL/SQL für geschachtelte Datenquellen benutzen</translation>
    </message>
    <message>
        <source>User name</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>Working...</source>
        <translation>In Arbeit ...</translation>
    </message>
    <message>
        <source>Would you like to reset all existing data sources and data mappings?</source>
        <translation>Sollen alle Datenquellen und Zuordnungen entfernt werden?</translation>
    </message>
    <message>
        <source>Would you like to reset all existing data targets and data mappings?</source>
        <translation>Sollen alle Datenziele und Zuordnungen entfernt werden?</translation>
    </message>
    <message>
        <source>Would you like to save project changes?</source>
        <translation>Sollen die Änderungen am Projekt gespeichert werden?</translation>
    </message>
    <message>
        <source>Write Consistency Level</source>
        <translation>Konsistenzstufe beim Schreiben</translation>
    </message>
    <message>
        <source>You cannot change column name.</source>
        <translation>Der Spaltenname kann nicht geändert werden.</translation>
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
    <message>
        <source>JSON files (*.json);;All files (*)</source>
        <translation>JSON-Dateien (*.json);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>JSON list, items: %1</source>
        <translation>JSON-Liste, Einträge: %1</translation>
    </message>
    <message>
        <source>JSON object, members: %1</source>
        <translation>JSON-Objekt, Mitglieder: %1</translation>
    </message>
    <message>
        <source>Reading the document...</source>
        <translation>Das Dokument wird gelesen...</translation>
    </message>
    <message>
        <source> Verify that the current user has necessary privileges.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> Would you like to open it?</source>
        <translation> Möchten Sie sie öffnen?</translation>
    </message>
    <message>
        <source> You might be not authorized to perform this operation.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An error occurred during accessing GridFS: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An error occurred during accessing database commands information: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An error occurred during accessing role information: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An error occurred during accessing user information: </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Atribute name is not specified.</source>
        <translation>Es ist kein Attributname angegeben.</translation>
    </message>
    <message>
        <source>Collection already exists.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Collection name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Database already exists.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Database is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Database name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File has been successfully saved to </source>
        <translation>Die Datei wurde gespeichert unter </translation>
    </message>
    <message>
        <source>Find MongoDB Shell Executable</source>
        <translation>MongoDB-Shell suchen</translation>
    </message>
    <message>
        <source>GROUP BY clause is not specified for aggregate functions in the SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>HAVING clause is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Index name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid FROM table clause in SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid GROUP BY clause in SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid GROUP BY clause in the SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid GROUP BY clause or aggregation column list. </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid HAVING clause in SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid HAVING clause in the SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid JSON document.</source>
        <translation>Das JSON-Dokument ist ungültig.</translation>
    </message>
    <message>
        <source>Invalid LIMIT clause in SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid LIMIT clause in the SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid ORDER BY clause in SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid ORDER BY clause in the SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid WHERE clause.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid aggregate function call.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid column list clause in the SQL UPDATE statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid column list clause in the SQL statement. AS keyword is not found for column alias.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid column list in SQL SELECT statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid column list in SQL UPDATE statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid table list clause in the SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mongo Shell Executable|mongo.exe</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>More than one table is specified in the SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nested JSON List</source>
        <translation>Geschachtelte JSON-Liste</translation>
    </message>
    <message>
        <source>Nested JSON Object</source>
        <translation>Geschachteltes JSON-Objekt</translation>
    </message>
    <message>
        <source>Nested JSON Object/List</source>
        <translation>Geschachteltes JSON-Objekt/geschachtelte Liste</translation>
    </message>
    <message>
        <source>No GROUP BY columns are specified in SELECT clause.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No column list is specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No document attributes specified to copy.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No group functions are specified for GROUP BY SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No index keys are specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No key name is provided.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No output data.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No table name is specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please specify MongoDB shell executable file mongo.exe</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source MongoDB database name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source and target collections must be different.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source collection does not contain documents.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source collection name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Such attrubute already exists.</source>
        <translation>Ein solches Attribut gibt es schon.</translation>
    </message>
    <message>
        <source>Table name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target MongoDB connection is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target collection name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Target database name is not specified.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The cell holds no binary data.</source>
        <translation>Die Zelle enthält keine Binärdaten.</translation>
    </message>
    <message>
        <source>This row is a single value: it has no attributes but &quot;value&quot;.</source>
        <translation>Diese Zeile ist ein einzelner Wert: Sie hat außer &quot;value&quot; keine Attribute.</translation>
    </message>
    <message>
        <source>Unable to connect to MongoDB.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to connect to source database.</source>
        <translation>Keine Verbindung zur Quelldatenbank.</translation>
    </message>
    <message>
        <source>Unable to connect to target database.</source>
        <translation>Keine Verbindung zur Zieldatenbank.</translation>
    </message>
    <message>
        <source>Unable to copy data to system collection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to create database. Please verify you have necessary privileges.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to drop system MongoDB collection.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to drop this database.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to find MongoDB user password for the user </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to find SET keyword in UPDATE SQL statement.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to parse collection list. Please verify if you have configured shell path for mongo.exe shell executable version 3.0 or later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to parse column name in UPDATE SET clause.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to parse column value in UPDATE SET clause.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to parse connection string.</source>
        <translation>Die Verbindungszeichenkette ist nicht lesbar.</translation>
    </message>
    <message>
        <source>Unable to parse index JSON list. Please verify if you have configured shell path for mongo.exe shell executable version 3.0 or later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to parse valid SELECT, UPDATE, or DELETE SQL statement. Please check the SQL statement syntax.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to retrieve command result. Please check if result JSON file exists </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>View/Modify JSON Document</source>
        <translation>JSON-Dokument ansehen/ändern</translation>
    </message>
    <message>
        <source>You must specify MongoDB shell executable file mongo.exe  Exiting...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A preview of %1 rows takes much time and memory. Are you sure to show it?</source>
        <translation>Eine Vorschau von %1 Zeilen braucht viel Zeit und Speicher. Soll sie gezeigt werden?</translation>
    </message>
    <message>
        <source>Are you sure to delete all JSON document data?</source>
        <translation>Sollen wirklich alle Daten des JSON-Dokuments gelöscht werden?</translation>
    </message>
    <message>
        <source>Please specify binary data type.</source>
        <translation>Bitte geben Sie die Art der Binärdaten an.</translation>
    </message>
    <message>
        <source>Would you like to save this database connection for future use?</source>
        <translation>Möchten Sie diese Datenbankverbindung für später speichern?</translation>
    </message>
    <message>
        <source>%1, bytes: %2</source>
        <translation>%1, Bytes: %2</translation>
    </message>
    <message>
        <source>%1, characters: %2</source>
        <translation>%1, Zeichen: %2</translation>
    </message>
    <message>
        <source>Cassandra</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Configure</source>
        <translation>Einrichten</translation>
    </message>
    <message>
        <source>Connection JSON</source>
        <translation>Verbindung als JSON</translation>
    </message>
    <message>
        <source>Couchbase</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>JSON File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Messages</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Oracle</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>list, items: %1</source>
        <translation>Liste, Einträge: %1</translation>
    </message>
    <message>
        <source>object, members: %1</source>
        <translation>Objekt, Mitglieder: %1</translation>
    </message>
</context>
<context>
    <name>hollowmere::TAddAttributeDialog</name>
    <message>
        <source>Add Attribute</source>
        <translation>Attribut hinzufügen</translation>
    </message>
    <message>
        <source>Attribute name</source>
        <translation>Attributname</translation>
    </message>
    <message>
        <source>Attribute &amp;name</source>
        <translation>Attribut&amp;name</translation>
    </message>
</context>
<context>
    <name>hollowmere::TBlobPanel</name>
    <message>
        <source>Load Binary Value From File</source>
        <translation>Binärwert aus Datei laden</translation>
    </message>
    <message>
        <source>Save Binary Value To File</source>
        <translation>Binärwert in Datei speichern</translation>
    </message>
    <message>
        <source>Clear Binary Value</source>
        <translation>Binärwert leeren</translation>
    </message>
    <message>
        <source>Type of the binary data</source>
        <translation>Art der Binärdaten</translation>
    </message>
    <message>
        <source>File type for opening in another program</source>
        <translation>Dateiart zum Öffnen in einem anderen Programm</translation>
    </message>
    <message>
        <source>Open Binary Value In Another Program</source>
        <translation>Binärwert in einem anderen Programm öffnen</translation>
    </message>
    <message>
        <source>Form of the binary value</source>
        <translation>Darstellung des Binärwerts</translation>
    </message>
    <message>
        <source>Binary value as a picture</source>
        <translation>Binärwert als Bild</translation>
    </message>
    <message>
        <source>Binary value as text</source>
        <translation>Binärwert als Text</translation>
    </message>
    <message>
        <source>Binary value in hexadecimal digits</source>
        <translation>Binärwert in Hexadezimalziffern</translation>
    </message>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Andere</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Bytes</translation>
    </message>
    <message>
        <source>No binary value is selected.</source>
        <translation>Es ist kein Binärwert gewählt.</translation>
    </message>
    <message>
        <source>
(The first %1 bytes are shown.)</source>
        <translation>
(Die ersten %1 Bytes werden gezeigt.)</translation>
    </message>
    <message>
        <source>These bytes are no picture that can be shown.</source>
        <translation>Diese Bytes sind kein darstellbares Bild.</translation>
    </message>
    <message>
        <source>Load Binary Value</source>
        <translation>Binärwert laden</translation>
    </message>
    <message>
        <source>Save Binary Value</source>
        <translation>Binärwert speichern</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a file type such as png or pdf.</source>
        <translation>&quot;%1&quot; ist keine Dateiart wie png oder pdf.</translation>
    </message>
</context>
<context>
    <name>hollowmere::TCodeEditor</name>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Find Previous</source>
        <translation>Vorheriges suchen</translation>
    </message>
    <message>
        <source>Find Next</source>
        <translation>Nächstes suchen</translation>
    </message>
    <message>
        <source>Match case</source>
        <translation>Groß-/Kleinschreibung</translation>
    </message>
    <message>
        <source>Regular expression</source>
        <translation>Regulärer Ausdruck</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Find in: %1</source>
        <translation>Suchen in: %1</translation>
    </message>
    <message>
        <source>Lines that are too long are shown cut; the text cannot be edited here.</source>
        <translation>Zu lange Zeilen werden gekürzt gezeigt; der Text kann hier nicht bearbeitet werden.</translation>
    </message>
    <message numerus="yes">
        <source>More than %n match(es)</source>
        <translation>
            <numerusform>Mehr als ein Treffer</numerusform>
            <numerusform>Mehr als %n Treffer</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n match(es)</source>
        <translation>
            <numerusform>Ein Treffer</numerusform>
            <numerusform>%n Treffer</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>hollowmere::TConnectionModel</name>
    <message>
        <source>Configure...</source>
        <translation>Einrichten...</translation>
    </message>
</context>
<context>
    <name>hollowmere::TDataSourceDialog</name>
    <message>
        <source>Data Source %1</source>
        <translation>Datenquelle %1</translation>
    </message>
    <message>
        <source>&amp;Test</source>
        <translation>&amp;Prüfen</translation>
    </message>
    <message>
        <source>First rows</source>
        <translation>Erste Zeilen</translation>
    </message>
    <message>
        <source>Test shows the first rows here.</source>
        <translation>Hier zeigt „Prüfen“ die ersten Zeilen.</translation>
    </message>
    <message>
        <source>&amp;File name</source>
        <translation>&amp;Dateiname</translation>
    </message>
    <message>
        <source>Would you like to keep this query all the same?</source>
        <translation>Soll die Abfrage trotzdem übernommen werden?</translation>
    </message>
    <message>
        <source>Reading the first rows...</source>
        <translation>Die ersten Zeilen werden gelesen ...</translation>
    </message>
    <message>
        <source>View As &amp;Grid</source>
        <translation>Als &amp;Tabelle ansehen</translation>
    </message>
</context>
<context>
    <name>hollowmere::TDataSourcesPage</name>
    <message>
        <source>Data sources</source>
        <translation>Datenquellen</translation>
    </message>
    <message>
        <source>Data Source Name</source>
        <translation>Name der Datenquelle</translation>
    </message>
    <message>
        <source>Data Source</source>
        <translation>Datenquelle</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>Hin&amp;zufügen</translation>
    </message>
    <message>
        <source>Confi&amp;gure...</source>
        <translation>Ein&amp;richten ...</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>L&amp;eeren</translation>
    </message>
</context>
<context>
    <name>hollowmere::TDataTargetsPage</name>
    <message>
        <source>Data targets</source>
        <translation>Datenziele</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>Hin&amp;zufügen</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>L&amp;eeren</translation>
    </message>
</context>
<context>
    <name>hollowmere::TExportDialog</name>
    <message>
        <source>&amp;Without passwords, as readable text</source>
        <translation>&amp;Ohne Kennwörter, als lesbaren Text</translation>
    </message>
    <message>
        <source>With passwords, &amp;enciphered under a pass phrase</source>
        <translation>Mit Kennwörtern, unter einem Kennsatz &amp;verschlüsselt</translation>
    </message>
    <message>
        <source>Pass phrase</source>
        <translation>Kennsatz</translation>
    </message>
    <message>
        <source>Pass phrase again</source>
        <translation>Kennsatz noch einmal</translation>
    </message>
    <message>
        <source>Export Connections</source>
        <translation>Verbindungen ausgeben</translation>
    </message>
    <message>
        <source>The cipher (DES) keeps casual readers out. It does not withstand an expert: hand such a file only to people who may know the passwords.</source>
        <translation>Die Verschlüsselung (DES) hält nur zufällige Leser ab, keinen Fachmann: Geben Sie eine solche Datei nur Menschen, die die Kennwörter kennen dürfen.</translation>
    </message>
    <message>
        <source>&amp;Pass phrase</source>
        <translation>&amp;Kennsatz</translation>
    </message>
    <message>
        <source>Pass phrase &amp;again</source>
        <translation>Kennsatz &amp;noch einmal</translation>
    </message>
    <message>
        <source>E&amp;xport...</source>
        <translation>&amp;Ausgeben ...</translation>
    </message>
</context>
<context>
    <name>hollowmere::TGeneralPage</name>
    <message>
        <source>Project settings</source>
        <translation>Projekteinstellungen</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
</context>
<context>
    <name>hollowmere::TGridActions</name>
    <message>
        <source>&amp;Export Grid Data</source>
        <translation>Daten &amp;exportieren</translation>
    </message>
    <message>
        <source>Copy &amp;As</source>
        <translation>Kopieren &amp;als</translation>
    </message>
    <message>
        <source>&amp;Print</source>
        <translation>&amp;Drucken</translation>
    </message>
    <message>
        <source>Print Pre&amp;view</source>
        <translation>Druck&amp;vorschau</translation>
    </message>
    <message>
        <source>Text in columns (*.txt)</source>
        <translation>Text in Spalten (*.txt)</translation>
    </message>
    <message>
        <source>Tab-separated text (*.txt *.tsv)</source>
        <translation>Text mit Tabulatoren (*.txt *.tsv)</translation>
    </message>
    <message>
        <source>Spreadsheet (*.xlsx)</source>
        <translation>Tabelle (*.xlsx)</translation>
    </message>
    <message>
        <source>HTML page (*.html)</source>
        <translation>HTML-Seite (*.html)</translation>
    </message>
    <message>
        <source>XML (*.xml)</source>
        <translation>XML (*.xml)</translation>
    </message>
    <message>
        <source>PDF (*.pdf)</source>
        <translation>PDF (*.pdf)</translation>
    </message>
    <message>
        <source>One document per line (*.json)</source>
        <translation>Ein Dokument je Zeile (*.json)</translation>
    </message>
    <message>
        <source>List of documents (*.json)</source>
        <translation>Liste von Dokumenten (*.json)</translation>
    </message>
    <message>
        <source>CSV, values as they are (*.csv)</source>
        <translation>CSV, Werte wie sie sind (*.csv)</translation>
    </message>
    <message>
        <source>CSV for spreadsheets, no formulas (*.csv)</source>
        <translation>CSV für Tabellenprogramme, ohne Formeln (*.csv)</translation>
    </message>
    <message>
        <source>&amp;Copy Selected</source>
        <translation>Auswahl &amp;kopieren</translation>
    </message>
    <message>
        <source>Copy A&amp;ll</source>
        <translation>A&amp;lles kopieren</translation>
    </message>
    <message>
        <source>Selected As &amp;CSV</source>
        <translation>Auswahl als &amp;CSV</translation>
    </message>
    <message>
        <source>Selected As &amp;JSON</source>
        <translation>Auswahl als &amp;JSON</translation>
    </message>
    <message>
        <source>All As C&amp;SV</source>
        <translation>Alles als C&amp;SV</translation>
    </message>
    <message>
        <source>All As JS&amp;ON</source>
        <translation>Alles als JS&amp;ON</translation>
    </message>
    <message>
        <source>%1 of %2 rows</source>
        <translation>%1 von %2 Zeilen</translation>
    </message>
    <message>
        <source>Export Grid Data</source>
        <translation>Daten exportieren</translation>
    </message>
    <message>
        <source>Exporting to %1...</source>
        <translation>%1 wird geschrieben...</translation>
    </message>
    <message>
        <source>Copying...</source>
        <translation>Es wird kopiert...</translation>
    </message>
    <message>
        <source>Printing...</source>
        <translation>Es wird gedruckt...</translation>
    </message>
    <message>
        <source>&amp;Text</source>
        <translation>&amp;Text</translation>
    </message>
    <message>
        <source>&amp;Excel</source>
        <translation>&amp;Excel</translation>
    </message>
    <message>
        <source>&amp;HTML</source>
        <translation>&amp;HTML</translation>
    </message>
    <message>
        <source>&amp;XML</source>
        <translation>&amp;XML</translation>
    </message>
    <message>
        <source>&amp;PDF</source>
        <translation>&amp;PDF</translation>
    </message>
    <message>
        <source>&amp;JSON</source>
        <translation>&amp;JSON</translation>
    </message>
    <message>
        <source>&amp;CSV</source>
        <translation>&amp;CSV</translation>
    </message>
</context>
<context>
    <name>hollowmere::TGridModel</name>
    <message>
        <source>This document has no such attribute.</source>
        <translation>Dieses Dokument hat kein solches Attribut.</translation>
    </message>
    <message>
        <source>null</source>
        <translation>null</translation>
    </message>
</context>
<context>
    <name>hollowmere::TJsonTreeModel</name>
    <message>
        <source>A member above has this name; only the first of them is kept.</source>
        <translation>Ein Mitglied weiter oben heißt schon so; nur das erste bleibt erhalten.</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
</context>
<context>
    <name>hollowmere::TMappingPage</name>
    <message>
        <source>Reading the first rows...</source>
        <translation>Die ersten Zeilen werden gelesen ...</translation>
    </message>
    <message>
        <source>Add &amp;Target</source>
        <translation>&amp;Ziel hinzufügen</translation>
    </message>
    <message>
        <source>Add &amp;Attribute</source>
        <translation>&amp;Attribut hinzufügen</translation>
    </message>
    <message>
        <source>Add All F&amp;ields</source>
        <translation>Alle Felder h&amp;inzufügen</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>&amp;Up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <source>D&amp;own</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>L&amp;eeren</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Find in the mapping</source>
        <translation>In der Zuordnung suchen</translation>
    </message>
    <message>
        <source>P&amp;revious Row</source>
        <translation>Vo&amp;rige Zeile</translation>
    </message>
    <message>
        <source>&amp;Next Row</source>
        <translation>&amp;Nächste Zeile</translation>
    </message>
    <message>
        <source>Source row</source>
        <translation>Zeile der Quelle</translation>
    </message>
    <message>
        <source>Resulting document</source>
        <translation>Entstehendes Dokument</translation>
    </message>
    <message>
        <source>Row %1: %2</source>
        <translation>Zeile %1: %2</translation>
    </message>
    <message>
        <source>No fields of this data source are known yet: the preview beside the tree tells why.</source>
        <translation>Von dieser Datenquelle sind noch keine Felder bekannt: Die Vorschau neben dem Baum sagt, warum.</translation>
    </message>
    <message>
        <source>No rows</source>
        <translation>Keine Zeilen</translation>
    </message>
    <message>
        <source>Row %1 of the first %2</source>
        <translation>Zeile %1 der ersten %2</translation>
    </message>
    <message>
        <source>&amp;View Source Row</source>
        <translation>&amp;Quellzeile ansehen</translation>
    </message>
    <message>
        <source>View Docu&amp;ment</source>
        <translation>Doku&amp;ment ansehen</translation>
    </message>
    <message>
        <source>Source Row %1</source>
        <translation>Quellzeile %1</translation>
    </message>
    <message>
        <source>Resulting Document of Row %1</source>
        <translation>Dokument aus Zeile %1</translation>
    </message>
</context>
<context>
    <name>hollowmere::TMappingTree</name>
    <message>
        <source>Mapping</source>
        <translation>Zuordnung</translation>
    </message>
</context>
<context>
    <name>hollowmere::TPassPhraseDialog</name>
    <message>
        <source>Pass phrase</source>
        <translation>Kennsatz</translation>
    </message>
    <message>
        <source>Import Connections</source>
        <translation>Verbindungen einlesen</translation>
    </message>
    <message>
        <source>The connections of this file are enciphered under a pass phrase.</source>
        <translation>Die Verbindungen in dieser Datei sind mit einem Kennsatz verschlüsselt.</translation>
    </message>
    <message>
        <source>&amp;Pass phrase</source>
        <translation>&amp;Kennsatz</translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation>&amp;Einlesen</translation>
    </message>
</context>
<context>
    <name>hollowmere::TPropertyGrid</name>
    <message>
        <source>Choose %1</source>
        <translation>%1 wählen</translation>
    </message>
    <message>
        <source>F4</source>
        <translation>F4</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>Einstellung</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
</context>
<context>
    <name>hollowmere::TRunPage</name>
    <message>
        <source>&amp;Start</source>
        <translation>&amp;Start</translation>
    </message>
    <message>
        <source>S&amp;top</source>
        <translation>S&amp;topp</translation>
    </message>
    <message>
        <source>Overall progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Loaded</source>
        <translation>Geladen</translation>
    </message>
    <message>
        <source>Discarded</source>
        <translation>Ausschuss</translation>
    </message>
    <message>
        <source>Skipped</source>
        <translation>Übergangen</translation>
    </message>
    <message>
        <source>Processed</source>
        <translation>Verarbeitet</translation>
    </message>
    <message>
        <source>Documents per second</source>
        <translation>Dokumente je Sekunde</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Thread</source>
        <translation>Vorgang</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Rows per second</source>
        <translation>Zeilen je Sekunde</translation>
    </message>
    <message>
        <source>Threads</source>
        <translation>Vorgänge</translation>
    </message>
    <message>
        <source>Show only log lines with this text</source>
        <translation>Nur Protokollzeilen mit diesem Text zeigen</translation>
    </message>
    <message>
        <source>Log filter</source>
        <translation>Protokollfilter</translation>
    </message>
    <message>
        <source>Open &amp;Log</source>
        <translation>&amp;Protokoll öffnen</translation>
    </message>
    <message>
        <source>Open &amp;Discard File</source>
        <translation>&amp;Ausschussdatei öffnen</translation>
    </message>
    <message>
        <source>Load log</source>
        <translation>Ladeprotokoll</translation>
    </message>
    <message>
        <source> (%1 left)</source>
        <translation> (noch %1)</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>Gescheitert</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>Läuft</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Beendet</translation>
    </message>
    <message>
        <source>%1 loaded, %2 discarded, %3 skipped</source>
        <translation>%1 geladen, %2 Ausschuss, %3 übergangen</translation>
    </message>
</context>
<context>
    <name>hollowmere::TValueDialog</name>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmConnList</name>
    <message>
        <source>Exported connections (*.json)</source>
        <translation>Ausgegebene Verbindungen (*.json)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Database Connections</source>
        <translation>Datenbankverbindungen</translation>
    </message>
    <message>
        <source>Database connections</source>
        <translation>Datenbankverbindungen</translation>
    </message>
    <message>
        <source>&amp;Add New Connection</source>
        <translation>&amp;Neue Verbindung</translation>
    </message>
    <message>
        <source>Edit &amp;Connection</source>
        <translation>Verbindun&amp;g ändern</translation>
    </message>
    <message>
        <source>Re&amp;move Connection</source>
        <translation>Verbindung entfe&amp;rnen</translation>
    </message>
    <message>
        <source>&amp;Open Connection</source>
        <translation>&amp;Verbindung öffnen</translation>
    </message>
    <message>
        <source>Any part of a row</source>
        <translation>Ein Teil einer Zeile</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Fi&amp;nd:</source>
        <translation>S&amp;uchen:</translation>
    </message>
    <message>
        <source>&amp;Import...</source>
        <translation>&amp;Einlesen ...</translation>
    </message>
    <message>
        <source>E&amp;xport...</source>
        <translation>&amp;Ausgeben ...</translation>
    </message>
    <message>
        <source>Connections: %1</source>
        <translation>Verbindungen: %1</translation>
    </message>
    <message>
        <source>Import Connections</source>
        <translation>Verbindungen einlesen</translation>
    </message>
    <message>
        <source>Export Connections</source>
        <translation>Verbindungen ausgeben</translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmDBConfig</name>
    <message>
        <source>Database Connection</source>
        <translation>Datenbankverbindung</translation>
    </message>
    <message>
        <source>Database type</source>
        <translation>Datenbankart</translation>
    </message>
    <message>
        <source>&amp;Kept connections:</source>
        <translation>&amp;Vorhandene Verbindungen:</translation>
    </message>
    <message>
        <source>A new connection</source>
        <translation>Eine neue Verbindung</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>&amp;Test Connection</source>
        <translation>Verbindung &amp;prüfen</translation>
    </message>
    <message>
        <source>&amp;Stop Test</source>
        <translation>Prüfung a&amp;bbrechen</translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmHelp</name>
    <message>
        <source>Hollowmere Help</source>
        <translation>Hilfe zu Hollowmere</translation>
    </message>
    <message>
        <source>Help page</source>
        <translation>Hilfeseite</translation>
    </message>
    <message>
        <source>&amp;Contents</source>
        <translation>&amp;Inhalt</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>&amp;Forward</source>
        <translation>&amp;Weiter</translation>
    </message>
    <message>
        <source>Find on this page</source>
        <translation>Auf dieser Seite suchen</translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmJSON</name>
    <message>
        <source>JSON Documents</source>
        <translation>JSON-Dokumente</translation>
    </message>
    <message>
        <source>Documents</source>
        <translation>Dokumente</translation>
    </message>
    <message>
        <source>Form of the cell</source>
        <translation>Darstellung der Zelle</translation>
    </message>
    <message>
        <source>Value of the cell</source>
        <translation>Wert der Zelle</translation>
    </message>
    <message>
        <source>Val&amp;ue</source>
        <translation>&amp;Wert</translation>
    </message>
    <message>
        <source>&amp;Binary Value</source>
        <translation>&amp;Binärwert</translation>
    </message>
    <message>
        <source>&amp;Open JSON File...</source>
        <translation>JSON-Datei ö&amp;ffnen...</translation>
    </message>
    <message>
        <source>&amp;Add Row</source>
        <translation>Zeile &amp;hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Delete Row</source>
        <translation>Zeile &amp;löschen</translation>
    </message>
    <message>
        <source>Ctrl+Del</source>
        <translation>Ctrl+Del</translation>
    </message>
    <message>
        <source>&amp;Clear Data</source>
        <translation>Daten lee&amp;ren</translation>
    </message>
    <message>
        <source>Add A&amp;ttribute...</source>
        <translation>A&amp;ttribut hinzufügen...</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Format</source>
        <translation>&amp;Formatieren</translation>
    </message>
    <message>
        <source>&amp;View as JSON Document</source>
        <translation>Als JSON-Dokument &amp;ansehen</translation>
    </message>
    <message>
        <source>Ctrl+J</source>
        <translation>Ctrl+J</translation>
    </message>
    <message>
        <source>As &amp;New Collection</source>
        <translation>Als &amp;neue Sammlung</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Attribute</source>
        <translation>Attribut</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Ansehen</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Page &amp;Setup...</source>
        <translation>&amp;Seite einrichten...</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Export</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Any part of a cell</source>
        <translation>Irgendein Teil einer Zelle</translation>
    </message>
    <message>
        <source>F&amp;ind:</source>
        <translation>&amp;Suchen:</translation>
    </message>
    <message>
        <source>Ne&amp;xt</source>
        <translation>&amp;Weiter</translation>
    </message>
    <message>
        <source>P&amp;revious</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>First Page</source>
        <translation>Erste Seite</translation>
    </message>
    <message>
        <source>Previous Page</source>
        <translation>Vorige Seite</translation>
    </message>
    <message>
        <source>Next Page</source>
        <translation>Nächste Seite</translation>
    </message>
    <message>
        <source>Last Page</source>
        <translation>Letzte Seite</translation>
    </message>
    <message>
        <source>No rows</source>
        <translation>Keine Zeilen</translation>
    </message>
    <message>
        <source>Rows %1 to %2 of %3</source>
        <translation>Zeilen %1 bis %2 von %3</translation>
    </message>
    <message>
        <source>Opening %1...</source>
        <translation>%1 wird geöffnet...</translation>
    </message>
    <message>
        <source>Open JSON File</source>
        <translation>JSON-Datei öffnen</translation>
    </message>
    <message>
        <source>JSON files (*.json *.jsonl);;All files (*)</source>
        <translation>JSON-Dateien (*.json *.jsonl);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>JSON Documents - %1</source>
        <translation>JSON-Dokumente - %1</translation>
    </message>
    <message>
        <source>Are you sure to discard all changes?</source>
        <translation type="unfinished">Sollen wirklich alle Änderungen verworfen werden?</translation>
    </message>
    <message>
        <source>The text was not found.</source>
        <translation>Der Text wurde nicht gefunden.</translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmMain</name>
    <message>
        <source>Open windows</source>
        <translation>Offene Fenster</translation>
    </message>
    <message>
        <source>Main</source>
        <translation>Hauptleiste</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation>Ctrl+N</translation>
    </message>
    <message>
        <source>Ctrl+O</source>
        <translation>Ctrl+O</translation>
    </message>
    <message>
        <source>Ctrl+Shift+O</source>
        <translation>Ctrl+Shift+O</translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation>Ctrl+Q</translation>
    </message>
    <message>
        <source>&amp;Recent Projects</source>
        <translation>&amp;Letzte Projekte</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation>&amp;Nächstes</translation>
    </message>
    <message>
        <source>&amp;Previous</source>
        <translation>&amp;Voriges</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>F1</source>
        <translation>F1</translation>
    </message>
    <message>
        <source>Load projects (*.hmp);;All files (*)</source>
        <translation>Ladeprojekte (*.hmp);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>No projects yet</source>
        <translation>Noch keine Projekte</translation>
    </message>
    <message>
        <source>this type of</source>
        <translation>dieser Art von</translation>
    </message>
    <message>
        <source>There is no browser window for %1 databases in this version yet. Connections of this type can be used in load projects where the store is supported.</source>
        <translation>Für Datenbanken der Art %1 gibt es in dieser Version noch kein eigenes Fenster. In Ladeprojekten können Verbindungen dieser Art benutzt werden, soweit sie unterstützt wird.</translation>
    </message>
    <message>
        <source>This build has no assistant for migration projects yet.</source>
        <translation>Einen Assistenten für Migrationsprojekte gibt es in dieser Version noch nicht.</translation>
    </message>
    <message>
        <source>This build has no Oracle connector: a migration project cannot be created from an Oracle schema.</source>
        <translation>Dieses Programm kann Oracle nicht erreichen: aus einem Oracle-Schema kann kein Migrationsprojekt erstellt werden.</translation>
    </message>
    <message>
        <source>About Hollowmere</source>
        <translation>Über Hollowmere</translation>
    </message>
    <message>
        <source>&lt;b&gt;Hollowmere %1&lt;/b&gt;&lt;p&gt;Moves data between databases and JSON files.&lt;/p&gt;&lt;p&gt;Free software under the GNU General Public License, version 3 or later.&lt;/p&gt;</source>
        <translation>&lt;b&gt;Hollowmere %1&lt;/b&gt;&lt;p&gt;Überträgt Daten zwischen Datenbanken und JSON-Dateien.&lt;/p&gt;&lt;p&gt;Freie Software unter der GNU General Public License, Version 3 oder neuer.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>Open JSON Document</source>
        <translation>JSON-Dokument öffnen</translation>
    </message>
    <message>
        <source>JSON documents (*.json *.jsonl);;All files (*)</source>
        <translation>JSON-Dokumente (*.json *.jsonl);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Begin with a new project, open one, or drop a project or a JSON file here.
F1 shows the help.</source>
        <translation>Legen Sie ein neues Projekt an, öffnen Sie eines, oder ziehen Sie ein Projekt oder eine JSON-Datei hierher.
F1 zeigt die Hilfe.</translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmOption</name>
    <message>
        <source>Program Options</source>
        <translation>Programmoptionen</translation>
    </message>
    <message>
        <source>Program options</source>
        <translation>Programmoptionen</translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmProject</name>
    <message>
        <source>Load projects (*.hmp);;All files (*)</source>
        <translation>Ladeprojekte (*.hmp);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Ctrl+Shift+S</source>
        <translation>Ctrl+Shift+S</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>F9</source>
        <translation>F9</translation>
    </message>
    <message>
        <source>Shift+F9</source>
        <translation>Shift+F9</translation>
    </message>
    <message>
        <source>Project pages</source>
        <translation>Seiten des Projekts</translation>
    </message>
    <message>
        <source>Ctrl+PgDown</source>
        <translation>Ctrl+PgDown</translation>
    </message>
    <message>
        <source>Ctrl+PgUp</source>
        <translation>Ctrl+PgUp</translation>
    </message>
    <message>
        <source>The project file %1 is open in another window. Close that window first, or choose another name.</source>
        <translation>Die Projektdatei %1 ist in einem anderen Fenster offen. Schließen Sie zuerst jenes Fenster, oder wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>The file %1 was changed by another program since it was opened. Would you like to replace it?</source>
        <translation>Die Datei %1 wurde seit dem Öffnen von einem anderen Programm geändert. Soll sie ersetzt werden?</translation>
    </message>
    <message>
        <source>JSON files (*.json *.jsonl);;All files (*)</source>
        <translation>JSON-Dateien (*.json *.jsonl);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Source JSON File</source>
        <translation>JSON-Datei der Quelle</translation>
    </message>
    <message>
        <source>Target JSON File</source>
        <translation>JSON-Datei des Ziels</translation>
    </message>
    <message>
        <source>Connecting and counting...</source>
        <translation>Verbinden und Zählen ...</translation>
    </message>
</context>
<context>
    <name>hollowmere::TfrmViewJSON</name>
    <message>
        <source>Form of the document</source>
        <translation>Darstellung des Dokuments</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Ins</source>
        <translation>Ins</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Nach oben</translation>
    </message>
    <message>
        <source>Ctrl+Up</source>
        <translation>Ctrl+Up</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Nach unten</translation>
    </message>
    <message>
        <source>Ctrl+Down</source>
        <translation>Ctrl+Down</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Formatieren</translation>
    </message>
    <message>
        <source>Ctrl+Shift+F</source>
        <translation>Ctrl+Shift+F</translation>
    </message>
    <message>
        <source>Load From File</source>
        <translation>Aus Datei laden</translation>
    </message>
    <message>
        <source>Save To File</source>
        <translation>In Datei speichern</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Drucken</translation>
    </message>
    <message>
        <source>Binary Value</source>
        <translation>Binärwert</translation>
    </message>
    <message>
        <source>Copy Value</source>
        <translation>Wert kopieren</translation>
    </message>
    <message>
        <source>Copy Path</source>
        <translation>Pfad kopieren</translation>
    </message>
    <message>
        <source>Ctrl+Shift+C</source>
        <translation>Ctrl+Shift+C</translation>
    </message>
    <message>
        <source>Paste As Child</source>
        <translation>Als Kind einfügen</translation>
    </message>
    <message>
        <source>Expand All</source>
        <translation>Alles aufklappen</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Find Next</source>
        <translation>Nächstes suchen</translation>
    </message>
    <message>
        <source>Find Previous</source>
        <translation>Vorheriges suchen</translation>
    </message>
    <message>
        <source>Change &amp;Kind</source>
        <translation>&amp;Art ändern</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Zahl</translation>
    </message>
    <message>
        <source>Boolean</source>
        <translation>Wahrheitswert</translation>
    </message>
    <message>
        <source>Null</source>
        <translation>Null</translation>
    </message>
    <message>
        <source>Date-Time</source>
        <translation>Datum und Zeit</translation>
    </message>
    <message>
        <source>Binary</source>
        <translation>Binär</translation>
    </message>
    <message>
        <source>Find in names and values</source>
        <translation>In Namen und Werten suchen</translation>
    </message>
    <message>
        <source>Document as a tree</source>
        <translation>Dokument als Baum</translation>
    </message>
    <message>
        <source>T&amp;ree</source>
        <translation>&amp;Baum</translation>
    </message>
    <message>
        <source>Document as text</source>
        <translation>Dokument als Text</translation>
    </message>
    <message>
        <source>Te&amp;xt</source>
        <translation>Te&amp;xt</translation>
    </message>
    <message>
        <source>Ctrl+Return</source>
        <translation>Ctrl+Return</translation>
    </message>
    <message>
        <source>Edit %1</source>
        <translation>%1 bearbeiten</translation>
    </message>
    <message>
        <source>More than %1 found</source>
        <translation>Mehr als %1 gefunden</translation>
    </message>
    <message>
        <source>%1 found</source>
        <translation>%1 gefunden</translation>
    </message>
    <message>
        <source>Line %1, column %2</source>
        <translation>Zeile %1, Spalte %2</translation>
    </message>
    <message>
        <source>Writing the document as text...</source>
        <translation>Das Dokument wird als Text geschrieben...</translation>
    </message>
    <message>
        <source>Reading the document...</source>
        <translation>Das Dokument wird gelesen...</translation>
    </message>
    <message>
        <source>Formatting the document...</source>
        <translation>Das Dokument wird formatiert...</translation>
    </message>
    <message>
        <source>Load JSON Document</source>
        <translation>JSON-Dokument laden</translation>
    </message>
    <message>
        <source>Save JSON Document</source>
        <translation>JSON-Dokument speichern</translation>
    </message>
    <message>
        <source>The document has more than %1 rows and is too large to be printed.</source>
        <translation>Das Dokument hat mehr als %1 Zeilen und ist zu groß zum Drucken.</translation>
    </message>
</context>
</TS>
