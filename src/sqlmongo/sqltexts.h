#pragma once

/// The messages of the translator, to the letter. "in SQL statement." and "in the SQL statement." are two
/// sets on purpose: the first are of cutting the clauses, the second of the checks after it.
namespace hollowmere::sqltexts {

inline constexpr char notRecognised[] =
    "Unable to parse valid SELECT, UPDATE, or DELETE SQL statement. Please check the SQL statement syntax.";

// Cutting the clauses.
inline constexpr char emptyColumn[] = "Invalid column list in SQL SELECT statement.";
inline constexpr char noTable[] = "Table name is not specified.";
inline constexpr char emptyTable[] = "Invalid FROM table clause in SQL statement.";
inline constexpr char emptyGroupBy[] = "Invalid GROUP BY clause in SQL statement.";
inline constexpr char noHaving[] = "HAVING clause is not specified.";
inline constexpr char emptyHaving[] = "Invalid HAVING clause in SQL statement.";
inline constexpr char emptyOrderBy[] = "Invalid ORDER BY clause in SQL statement.";
inline constexpr char emptyLimit[] = "Invalid LIMIT clause in SQL statement.";
inline constexpr char noSet[] = "Unable to find SET keyword in UPDATE SQL statement.";
inline constexpr char emptyAssignment[] = "Invalid column list in SQL UPDATE statement.";

// Structure.
inline constexpr char noColumns[] = "No column list is specified.";
inline constexpr char noTableName[] = "No table name is specified.";
inline constexpr char manyTables[] = "More than one table is specified in the SQL statement.";
inline constexpr char badHaving[] = "Invalid HAVING clause in the SQL statement.";
inline constexpr char badLimit[] = "Invalid LIMIT clause in the SQL statement.";

// The items of the lists.
inline constexpr char badColumn[] =
    "Invalid column list clause in the SQL statement. AS keyword is not found for column alias.";
inline constexpr char badAssignment[] = "Invalid column list clause in the SQL UPDATE statement.";
inline constexpr char badTable[] = "Invalid table list clause in the SQL statement.";
inline constexpr char badGroupBy[] = "Invalid GROUP BY clause in the SQL statement.";
inline constexpr char badOrderBy[] = "Invalid ORDER BY clause in the SQL statement.";

// Aggregates. The blank at the end of the first is part of it.
inline constexpr char groupsDiffer[] = "Invalid GROUP BY clause or aggregation column list. ";
inline constexpr char noGroupBy[] =
    "GROUP BY clause is not specified for aggregate functions in the SQL statement.";
inline constexpr char noGroupColumns[] = "No GROUP BY columns are specified in SELECT clause.";
inline constexpr char noAggregates[] = "No group functions are specified for GROUP BY SQL statement.";
inline constexpr char badCall[] = "Invalid aggregate function call.";

inline constexpr char badWhere[] = "Invalid WHERE clause.";

// The assignments of an UPDATE.
inline constexpr char noColumnName[] = "Unable to parse column name in UPDATE SET clause.";
inline constexpr char noColumnValue[] = "Unable to parse column value in UPDATE SET clause.";

}  // namespace hollowmere::sqltexts
