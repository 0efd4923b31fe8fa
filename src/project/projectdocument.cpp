#include "project/projectdocument.h"

#include <QFileInfo>
#include <utility>

#include "settings/connectionrecord.h"

namespace hollowmere {

namespace {

// ---- writing ----

TValue definitionOf(const TValue& definition) {
  // A text may have come from a cell; one that holds an object stands as that object in the file.
  return definition.is(TKind::Text) ? definitionFromText(definition.asText()) : definition;
}

std::int64_t countOf(const TProject& project, const TDataSource& source, const TSourceCounter& counter) {
  if (project.source.dbType == dbtype::jsonFile) {
    const QFileInfo file(QString::fromStdString(definitionText(source.definition)));
    return file.isFile() ? file.size() : 0;
  }
  if (!counter) return 0;
  try {
    return counter(source);
  } catch (const std::exception& error) {
    throw TProjectError("Data source " + source.name + " caused the following error: " + error.what());
  }
}

TObject sideRecord(const TProjectSide& side, const TProjectSideField& field) {
  TObject record;
  record.add(std::string(field.dbType), side.dbType);
  record.add(std::string(field.connection),
             isConfigured(side.connection) ? definitionOf(side.connection) : TValue(TObject()));
  return record;
}

TList sourceRecords(const TProject& project, const TSourceCounter& counter) {
  TList records;
  for (const TDataSource& source : project.dataSources) {
    TValue definition = definitionOf(source.definition);
    if (source.name.empty() || !isConfigured(definition)) continue;
    records.emplace_back(TObject{{"name", source.name},
                                 {"datasource", std::move(definition)},
                                 {"count", countOf(project, source, counter)}});
  }
  return records;
}

TList targetRecords(const TProject& project) {
  TList records;
  for (const TDataTarget& target : project.dataTargets)
    if (!target.name.empty() && !target.target.empty())
      records.emplace_back(
          TObject{{"name", target.name}, {"datatarget", target.target}, {"saslpwd", target.saslPwd}});
  return records;
}

TObject mapRecord(const TMapNode& node) {
  TObject record;
  record.add("target", node.target);
  record.add("source", node.source.empty() ? TValue() : TValue(node.source));
  if (!node.children.empty()) {
    TList& children = record.addNull("children").value.makeList();
    for (const TMapNode& child : node.children) children.emplace_back(mapRecord(child));
  }
  record.add("targettype", node.targetType.empty() ? "String" : node.targetType);
  return record;
}

TList mapRecords(const TProject& project) {
  TList records;
  for (const TMapNode& node : project.mapping)
    if (!node.target.empty()) records.emplace_back(mapRecord(node));
  return records;
}

// ---- reading ----

[[noreturn]] void refuse(const std::string& detail = {}) {
  throw TProjectError(std::string(invalidProjectFile) + (detail.empty() ? "" : " " + detail));
}

[[noreturn]] void refuseKind(const std::string& path, std::string_view expected, TKind found) {
  refuse(path + " is not " + std::string(expected) + " but " + std::string(kindName(found)) + ".");
}

/// An object of the document together with its place, for messages.
class TPlace {
 public:
  TPlace(const TValue& value, std::string path) : path_(std::move(path)) {
    if (!value.is(TKind::Object)) refuseKind(path_, "an object", value.kind());
    object_ = &value.asObject();
  }

  [[nodiscard]] std::string pathOf(std::string_view name) const {
    return path_.empty() ? std::string(name) : path_ + "." + std::string(name);
  }
  [[nodiscard]] const TValue* find(std::string_view name) const { return object_->find(name); }
  [[nodiscard]] const TValue& need(std::string_view name) const {
    const TValue* value = find(name);
    if (value == nullptr) refuse(pathOf(name) + " is missing.");
    return *value;
  }
  [[nodiscard]] const TValue& need(std::string_view name, TKind kind, std::string_view expected) const {
    const TValue& value = need(name);
    if (!value.is(kind)) refuseKind(pathOf(name), expected, value.kind());
    return value;
  }
  [[nodiscard]] const std::string& text(std::string_view name) const {
    return need(name, TKind::Text, "a text").asText();
  }
  /// A connection or a query.
  [[nodiscard]] const TValue& definition(std::string_view name) const {
    const TValue& value = need(name);
    if (!value.is(TKind::Object) && !value.is(TKind::Text))
      refuseKind(pathOf(name), "an object or a text", value.kind());
    return value;
  }
  [[nodiscard]] std::int64_t integer(std::string_view name, std::int64_t lowest, std::int64_t highest) const {
    const std::int64_t value = need(name, TKind::Int, "a whole number").asInt();
    if (value < lowest || value > highest)
      refuse(pathOf(name) + " is not from " + std::to_string(lowest) + " to " + std::to_string(highest) +
             ".");
    return value;
  }
  /// Calls read(place) for every object of a list.
  template <typename Read>
  void each(std::string_view name, const Read& read) const {
    const TList& list = need(name, TKind::List, "a list").asList();
    for (std::size_t at = 0; at < list.size(); ++at)
      read(TPlace(list[at], pathOf(name) + "[" + std::to_string(at) + "]"));
  }

 private:
  std::string path_;
  const TObject* object_ = nullptr;
};

void readField(const TPlace& document, const TProjectField& field, TProject& project) {
  if (!field.required && document.find(field.key) == nullptr) return;
  if (const auto* text = std::get_if<std::string TProject::*>(&field.member))
    project.** text = document.text(field.key);
  else if (const auto* flag = std::get_if<bool TProject::*>(&field.member))
    project.** flag = document.need(field.key, TKind::Boolean, "true or false").asBool();
  else
    project.*std::get<std::int64_t TProject::*>(field.member) =
        document.integer(field.key, field.lowest, field.highest);
}

TProjectSide readSide(const TPlace& document, const TProjectSideField& field) {
  const TPlace category(document.need(field.category), document.pathOf(field.category));
  // Files of older versions hold the type under the other name.
  const bool older = category.find(field.dbType) == nullptr && category.find("dbtype") != nullptr;
  return {category.text(older ? "dbtype" : field.dbType), category.definition(field.connection)};
}

TDataSource readSource(const TPlace& record) {
  constexpr auto unbounded = INT64_MAX;
  const bool counted = record.find("count") != nullptr;
  return {record.text("name"), record.definition("datasource"),
          counted ? record.integer("count", 0, unbounded) : 0};
}

TDataTarget readTarget(const TPlace& record) {
  const bool secured = record.find("saslpwd") != nullptr;
  return {record.text("name"), record.text("datatarget"), secured ? record.text("saslpwd") : std::string()};
}

TMapNode readNode(const TPlace& record) {
  TMapNode node{record.text("target"), {}, record.text("targettype"), {}};
  if (!record.need("source").isNull()) node.source = record.text("source");
  if (record.find("children") != nullptr)
    record.each("children", [&](const TPlace& child) { node.children.push_back(readNode(child)); });
  return node;
}

}  // namespace

TObject toDocument(const TProject& project, const TSourceCounter& counter) {
  TObject document;
  for (const TProjectField& field : projectFields())
    document.add(std::string(field.key),
                 std::visit([&](auto member) { return TValue(project.*member); }, field.member));
  for (const TProjectSideField& field : projectSides)
    document.add(std::string(field.category), sideRecord(project.*field.member, field));
  document.add("datasourcelist", sourceRecords(project, counter));
  document.add("datatargetlist", targetRecords(project));
  document.add("datamaplist", mapRecords(project));
  return document;
}

TProject fromDocument(const TValue& value) {
  if (!value.is(TKind::Object)) refuse();
  const TPlace document(value, {});
  TProject project;
  for (const TProjectField& field : projectFields()) readField(document, field, project);
  for (const TProjectSideField& field : projectSides) project.*field.member = readSide(document, field);
  document.each("datasourcelist",
                [&](const TPlace& record) { project.dataSources.push_back(readSource(record)); });
  document.each("datatargetlist",
                [&](const TPlace& record) { project.dataTargets.push_back(readTarget(record)); });
  document.each("datamaplist", [&](const TPlace& record) { project.mapping.push_back(readNode(record)); });
  return project;
}

}  // namespace hollowmere
