// HTML and XML. In XML a cell is
//   <attribute name="city" type="text">Leiden</attribute>
// with the type null, boolean, number, text, date-time, binary, object-id, list or object. Binaries are bare
// Base64; texts with characters that XML cannot hold have encoding="base64". Lists and objects are JSON text.
// Attributes that a document does not have are left out. A row that is a single value is a document with the
// one attribute "value".
#include "json/encoding.h"
#include "json/json.h"
#include "jsongrid/celltext.h"
#include "jsongrid/rowwriters.h"

namespace hollowmere {

namespace {

/// Whether XML 1.0 can hold the text: well-formed UTF-8 without control characters and U+FFFE, U+FFFF.
bool fitsXml(std::string_view text) {
  if (!isUtf8(text)) return false;
  for (const char c : text)
    if (static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r') return false;
  return text.find("\xEF\xBF\xBE") == std::string_view::npos &&
         text.find("\xEF\xBF\xBF") == std::string_view::npos;
}

/// Markup characters as entities. White space that a parser would change is written as numbers: CR always,
/// the others inside of an attribute.
void escape(std::string& out, std::string_view text, bool inAttribute) {
  for (const char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\r': out += "&#13;"; break;
      case '\n': out += inAttribute ? "&#10;" : "\n"; break;
      case '\t': out += inAttribute ? "&#9;" : "\t"; break;
      default: out += c;
    }
  }
}

/// What a page or an attribute name shows of a text: characters that cannot stand there as U+FFFD.
std::string showable(std::string_view text) {
  std::string clean = cleanText(text);
  if (fitsXml(clean)) return clean;
  std::string out;
  for (const char c : clean) {
    if (static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r')
      out += "\xEF\xBF\xBD";
    else
      out += c;
  }
  for (const char* bad : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"})
    for (std::size_t at; (at = out.find(bad)) != std::string::npos;) out.replace(at, 3, "\xEF\xBF\xBD");
  return out;
}

class THtmlWriter : public TRowWriter {
 public:
  THtmlWriter(const TGridTable& table, std::string title) : TRowWriter(table), title_(std::move(title)) {}

  void begin(std::string& out) override {
    out += "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>";
    escape(out, showable(title_), false);
    out +=
        "</title>\n<style>\n"
        "body { font-family: sans-serif; }\n"
        "table { border-collapse: collapse; }\n"
        "th, td { border: 1px solid #999; padding: 2px 6px; text-align: left; vertical-align: top; "
        "white-space: pre-wrap; }\n"
        "td.n { text-align: right; }\n"
        "</style>\n</head>\n<body>\n<table>\n<thead>\n<tr>";
    for (std::size_t column = 0; column < table().columns(); ++column) {
      out += "<th>";
      escape(out, showable(table().columnName(column)), false);
      out += "</th>";
    }
    out += "</tr>\n</thead>\n<tbody>\n";
  }

  void row(std::string& out, std::size_t row) override {
    out += "<tr>";
    for (std::size_t column = 0; column < table().columns(); ++column) {
      const TValue* value = table().cell(row, column);
      const bool number =
          value && (value->is(TKind::Int) || value->is(TKind::Double) || value->is(TKind::Decimal));
      out += number ? "<td class=\"n\">" : "<td>";
      escape(out, showable(cellText(value)), false);
      out += "</td>";
    }
    out += "</tr>\n";
  }

  void end(std::string& out) override { out += "</tbody>\n</table>\n</body>\n</html>\n"; }

 private:
  std::string title_;
};

const char* typeName(const TValue& value) {
  switch (value.kind()) {
    case TKind::Null: return "null";
    case TKind::Boolean: return "boolean";
    case TKind::Int:
    case TKind::Double:
    case TKind::Decimal: return "number";
    case TKind::Text: return "text";
    case TKind::DateTime: return "date-time";
    case TKind::Binary: return "binary";
    case TKind::ObjectId: return "object-id";
    case TKind::List: return "list";
    case TKind::Object: return "object";
  }
  return "text";
}

class TXmlWriter : public TRowWriter {
 public:
  using TRowWriter::TRowWriter;

  void begin(std::string& out) override {
    out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<documents>\n";
  }

  void row(std::string& out, std::size_t row) override {
    out += "<document>\n";
    for (std::size_t column = 0; column < table().columns(); ++column)
      if (const TValue* value = table().cell(row, column)) attribute(out, table().columnName(column), *value);
    out += "</document>\n";
  }

  void end(std::string& out) override { out += "</documents>\n"; }

 private:
  static void attribute(std::string& out, const std::string& name, const TValue& value) {
    out += "<attribute name=\"";
    escape(out, showable(name), true);
    out += "\" type=\"";
    out += typeName(value);
    std::string text = value.is(TKind::Binary)    ? toBase64(value.asText())
                       : value.is(TKind::Boolean) ? (value.asBool() ? "true" : "false")
                                                  : cellText(&value);
    if (!fitsXml(text)) {
      text = toBase64(text);
      out += "\" encoding=\"base64";
    }
    out += "\">";
    escape(out, text, false);
    out += "</attribute>\n";
  }
};

}  // namespace

std::unique_ptr<TRowWriter> makeHtmlWriter(const TGridTable& table, const std::string& title) {
  return std::make_unique<THtmlWriter>(table, title);
}
std::unique_ptr<TRowWriter> makeXmlWriter(const TGridTable& table) {
  return std::make_unique<TXmlWriter>(table);
}

}  // namespace hollowmere
