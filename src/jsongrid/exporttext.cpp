// Plain texts: aligned, tab-separated, CSV, JSON.
#include <algorithm>

#include "jsongrid/celltext.h"
#include "jsongrid/rowwriters.h"

namespace hollowmere {

namespace {

constexpr char crlf[] = "\r\n";

/// Line ends, tabs and other control characters as blanks: a row stays a line, a cell a cell.
std::string onOneLine(std::string text) {
  for (std::size_t at; (at = text.find("\r\n")) != std::string::npos;) text.erase(at, 1);
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') c = ' ';
  return text;
}

std::size_t characters(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

bool isNumber(const TValue* value) {
  return value && (value->is(TKind::Int) || value->is(TKind::Double) || value->is(TKind::Decimal));
}

/// Reads all rows once for the widths. A cell wider than the widest column moves the rest of its line.
class TAlignedWriter : public TRowWriter {
 public:
  using TRowWriter::TRowWriter;

  void begin(std::string& out) override {
    measure();
    for (std::size_t column = 0; column < table().columns(); ++column)
      put(out, column, onOneLine(cleanText(table().columnName(column))), false);
    endLine(out);
    for (std::size_t column = 0; column < table().columns(); ++column)
      put(out, column, std::string(widths_[column], '-'), false);
    endLine(out);
  }

  void row(std::string& out, std::size_t row) override {
    for (std::size_t column = 0; column < table().columns(); ++column) {
      const TValue* value = table().cell(row, column);
      put(out, column, text(value), isNumber(value));
    }
    endLine(out);
  }

 private:
  static constexpr std::size_t widest = 100;

  static std::string text(const TValue* value) { return onOneLine(cleanCellText(value)); }

  void measure() {
    widths_.clear();
    for (std::size_t column = 0; column < table().columns(); ++column)
      widths_.push_back(std::min(widest, characters(table().columnName(column))));
    for (std::size_t row = 0; row < table().rows(); ++row)
      for (std::size_t column = 0; column < table().columns(); ++column)
        if (widths_[column] < widest)
          widths_[column] = std::max(
              widths_[column], std::min(widest, characters(cellText(table().cell(row, column), 4 * widest))));
  }

  void put(std::string& out, std::size_t column, const std::string& text, bool right) {
    const std::size_t width = characters(text);
    const std::string room(widths_[column] > width ? widths_[column] - width : 0, ' ');
    out += right ? room + text : text + room;
    out += "  ";
  }

  static void endLine(std::string& out) {
    while (!out.empty() && out.back() == ' ') out.pop_back();
    out += '\n';
  }

  std::vector<std::size_t> widths_;
};

class TTabbedWriter : public TRowWriter {
 public:
  using TRowWriter::TRowWriter;

  void begin(std::string& out) override {
    line(out, [this](std::size_t column) { return table().columnName(column); });
  }
  void row(std::string& out, std::size_t row) override {
    line(out, [this, row](std::size_t column) { return cellText(table().cell(row, column)); });
  }

 private:
  template <typename TText>
  void line(std::string& out, const TText& text) {
    for (std::size_t column = 0; column < table().columns(); ++column) {
      if (column > 0) out += '\t';
      out += onOneLine(cleanText(text(column)));
    }
    out += '\n';
  }
};

/// An empty text is "" and a missing or null value nothing, so that both can be told apart.
class TCsvWriter : public TRowWriter {
 public:
  TCsvWriter(const TGridTable& table, bool guarded) : TRowWriter(table), guarded_(guarded) {}

  void begin(std::string& out) override {
    for (std::size_t column = 0; column < table().columns(); ++column) {
      if (column > 0) out += ',';
      field(out, cleanText(table().columnName(column)));
    }
    out += crlf;
  }

  void row(std::string& out, std::size_t row) override {
    for (std::size_t column = 0; column < table().columns(); ++column) {
      if (column > 0) out += ',';
      const TValue* value = table().cell(row, column);
      if (!value || value->isNull()) continue;
      // Negative numbers begin with "-" and are harmless.
      isNumber(value) ? void(out += cellText(value)) : field(out, cleanCellText(value));
    }
    out += crlf;
  }

 private:
  void field(std::string& out, const std::string& text) const {
    const bool guard = guarded_ && looksLikeFormula(text);
    const bool plain = !text.empty() && text.find_first_of(",\"\r\n") == std::string::npos &&
                       text.front() != ' ' && text.back() != ' ';
    if (plain) {
      if (guard) out += '\'';
      out += text;
      return;
    }
    out += guard ? "\"'" : "\"";
    for (const char c : text) {
      if (c == '"') out += '"';
      out += c;
    }
    out += '"';
  }

  bool guarded_;
};

class TJsonWriter : public TRowWriter {
 public:
  TJsonWriter(const TGridTable& table, bool list) : TRowWriter(table), list_(list) {}

  void begin(std::string& out) override {
    if (list_) out += '[';
  }
  void row(std::string& out, std::size_t row) override {
    if (list_) out += row == 0 ? "\n" : ",\n";
    table().appendRowJson(out, row);
    if (!list_) out += '\n';
  }
  void end(std::string& out) override {
    if (list_) out += "\n]\n";
  }

 private:
  bool list_;
};

}  // namespace

bool looksLikeFormula(std::string_view text) {
  return !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
}

std::unique_ptr<TRowWriter> makeAlignedWriter(const TGridTable& table) {
  return std::make_unique<TAlignedWriter>(table);
}
std::unique_ptr<TRowWriter> makeTabbedWriter(const TGridTable& table) {
  return std::make_unique<TTabbedWriter>(table);
}
std::unique_ptr<TRowWriter> makeCsvWriter(const TGridTable& table, bool guarded) {
  return std::make_unique<TCsvWriter>(table, guarded);
}
std::unique_ptr<TRowWriter> makeJsonWriter(const TGridTable& table, bool list) {
  return std::make_unique<TJsonWriter>(table, list);
}

}  // namespace hollowmere
