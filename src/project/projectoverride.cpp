#include "project/projectoverride.h"

#include <charconv>

namespace hollowmere {

namespace {

void setField(TProject& project, const TProjectField& field, const std::string& text) {
  const std::string key(field.key);
  if (const auto* member = std::get_if<std::string TProject::*>(&field.member)) {
    project.*(*member) = text;
  } else if (const auto* flag = std::get_if<bool TProject::*>(&field.member)) {
    const bool isTrue = equalIgnoringCase(text, "true");
    if (!isTrue && !equalIgnoringCase(text, "false"))
      throw TProjectError(key + " must be true or false, not \"" + text + "\"");
    project.*(*flag) = isTrue;
  } else {
    std::int64_t number = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault != std::errc() || end != text.data() + text.size() || number < field.lowest ||
        number > field.highest)
      throw TProjectError(key + " must be a number from " + std::to_string(field.lowest) + " to " +
                          std::to_string(field.highest) + ", not \"" + text + "\"");
    project.*std::get<std::int64_t TProject::*>(field.member) = number;
  }
}

void setFileName(TProjectSide& side, const std::string& key, const std::string& text) {
  if (!side.connection.is(TKind::Text))
    throw TProjectError(key + " can be set only where the connection is a file name");
  side.connection = TValue(text);
}

}  // namespace

void overrideSetting(TProject& project, const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  // The text is not repeated whole: it may hold what should not be seen.
  if (equals == std::string::npos) throw TProjectError("--set needs KEY=VALUE");
  const std::string key = assignment.substr(0, equals);
  const std::string value = assignment.substr(equals + 1);
  for (const TProjectField& field : projectFields())
    if (field.key == key) return setField(project, field, value);
  for (const TProjectSideField& side : projectSides)
    if (side.connection == key) return setFileName(project.*side.member, key, value);
  throw TProjectError("There is no general setting " + key);
}

}  // namespace hollowmere
