#include "engine/xmltojson.h"

#include <pugixml.hpp>
#include <string>
#include <utility>

namespace hollowmere {

namespace {

/// Adds a member; one of that name that is there already becomes a list.
void addRepeated(TObject& object, const char* name, TValue value, bool repeated) {
  TValue* held = object.find(name);
  if (!held) {
    object.add(name, std::move(value));
  } else if (repeated) {
    held->asList().push_back(std::move(value));
  } else {
    TList list;
    list.push_back(std::move(*held));
    list.push_back(std::move(value));
    *held = TValue(std::move(list));
  }
}

/// Whether this is the third or a later element of its name below its parent.
bool listExists(const pugi::xml_node& node) {
  const pugi::xml_node before = node.previous_sibling(node.name());
  return before && before.previous_sibling(node.name());
}

TValue element(const pugi::xml_node& node) {
  TObject object;
  std::string text;
  for (const pugi::xml_attribute& attribute : node.attributes())
    object.add(std::string("@") + attribute.name(), attribute.value());
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() == pugi::node_element)
      addRepeated(object, child.name(), element(child), listExists(child));
    else if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
      text += child.value();
  }
  if (object.empty()) return text.empty() ? TValue() : TValue(std::move(text));
  if (!text.empty()) object.add("#text", std::move(text));
  return object;
}

/// Deeper than a document of any store may be; the walk above must end before the stack does.
constexpr int deepest = 200;

struct TDepth : pugi::xml_tree_walker {
  bool for_each(pugi::xml_node&) override { return depth() < deepest; }
};

}  // namespace

TValue xmlToJson(std::string_view xml) {
  pugi::xml_document document;
  const auto result = document.load_buffer(xml.data(), xml.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!result || !document.document_element()) return {};
  TDepth depth;
  if (!document.traverse(depth)) return {};
  TObject root;
  root.add(document.document_element().name(), element(document.document_element()));
  return root;
}

}  // namespace hollowmere
