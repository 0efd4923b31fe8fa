#include "sqlmongo/sqltomongo.h"

#include <algorithm>

#include "sqlmongo/classicshell.h"
#include "sqlmongo/modernshell.h"
#include "sqlmongo/sqlparser.h"

namespace hollowmere {

namespace {

std::string translate(std::string_view sql, TShellForm form) {
  TSqlParser parser(sql);
  TSqlStatement statement;
  parser.parseLists(statement);
  if (form == TShellForm::Classic) checkClassicGroups(statement);
  parser.parseConditions(statement);
  return form == TShellForm::Classic ? printClassic(statement) : printModern(statement);
}

}  // namespace

TSqlToMongo SqlToMongo(std::string_view sql, TShellForm form) {
  try {
    return {translate(sql, form), {}, 0};
  } catch (const TSqlFault& fault) {
    const bool reason = form == TShellForm::Modern && !fault.reason.empty();
    return {{}, reason ? fault.reason : fault.what(), fault.place};
  }
}

std::string placeText(std::string_view sql, std::size_t place) {
  const std::string_view before = sql.substr(0, place);
  const auto line = 1 + std::count(before.begin(), before.end(), '\n');
  const std::string_view inLine = before.substr(before.rfind('\n') + 1);
  const auto column =
      1 + std::count_if(inLine.begin(), inLine.end(), [](char c) { return (c & 0xC0) != 0x80; });
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

}  // namespace hollowmere
