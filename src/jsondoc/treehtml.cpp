#include "jsondoc/treehtml.h"

#include "connectors/textpiece.h"
#include "jsondoc/scalartext.h"

namespace hollowmere {

namespace {

/// Of a value: what fills a page is not read on paper.
constexpr std::size_t printedBytes = 2000;

std::string escaped(std::string_view text) {
  return replaceAll(replaceAll(replaceAll(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

class TTableWriter {
 public:
  explicit TTableWriter(std::size_t most) : left_(most) {}

  bool branch(const TJsonBranch& branch, int depth) {
    for (std::size_t i = 0; i < branch.size(); ++i) {
      const TJsonItem& item = branch.items[i];
      const TKind kind = item.branch ? item.branch->kind() : item.value.kind();
      if (!row(TJsonTree::nameAt({const_cast<TJsonBranch*>(&branch), i}), kind, item.value, depth))
        return false;
      if (item.branch ? !this->branch(*item.branch, depth + 1) : !below(item.value, depth + 1)) return false;
    }
    return true;
  }

  std::string take() { return std::move(out_); }

 private:
  bool below(const TValue& value, int depth) {
    if (value.is(TKind::List)) {
      std::size_t number = 0;
      for (const TValue& each : value.asList())
        if (!row("<List Item " + std::to_string(++number) + ">", each.kind(), each, depth) ||
            !below(each, depth + 1))
          return false;
    } else if (value.is(TKind::Object)) {
      for (const TMember& member : value.asObject())
        if (!row(member.name, member.value.kind(), member.value, depth) || !below(member.value, depth + 1))
          return false;
    }
    return true;
  }

  bool row(const std::string& name, TKind kind, const TValue& value, int depth) {
    if (left_ == 0) return false;
    --left_;
    const bool nested = kind == TKind::List || kind == TKind::Object;
    const std::string marker(nested ? kind == TKind::List ? listMarker : objectMarker : std::string_view());
    out_ += "<tr><td>";
    for (int i = 0; i < depth; ++i) out_ += "&nbsp;&nbsp;&nbsp;";
    out_ += escaped(name) + "</td><td>" + escaped(nested ? marker : shortScalarText(value, printedBytes)) +
            "</td><td>" + escaped(marker) + "</td></tr>\n";
    return true;
  }

  std::size_t left_;
  std::string out_;
};

}  // namespace

std::optional<std::string> treeHtml(const TJsonTree& tree, std::size_t mostRows) {
  TTableWriter writer(mostRows);
  if (!writer.branch(tree.root(), 0)) return std::nullopt;
  return "<table border=\"1\" cellspacing=\"0\" cellpadding=\"3\" width=\"100%\">\n"
         "<thead><tr><th align=\"left\">Name</th><th align=\"left\">Value</th><th align=\"left\">Kind</th>"
         "</tr></thead>\n" +
         writer.take() + "</table>\n";
}

}  // namespace hollowmere
