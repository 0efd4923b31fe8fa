#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "connectors/loadtypes.h"
#include "jsongrid/gridtable.h"
#include "settings/safefile.h"

namespace hollowmere {

/// A table that a format cannot hold. what() says why.
class TExportError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Forms in which a table leaves as text. All are UTF-8.
enum class TTextFormat : std::uint8_t {
  Aligned,     ///< columns side by side, padded with blanks; for reading with a fixed font
  Tabbed,      ///< tab-separated; tabs and line ends inside of cells become blanks
  Csv,         ///< RFC 4180, exactly as the cells are
  CsvGuarded,  ///< the same, but an apostrophe before texts that a spreadsheet would run as a formula
  Html,        ///< one page with a table
  Xml,         ///< <documents><document><attribute name="..." type="...">; see exportmarkup.cpp
  JsonLines,   ///< one document per line, as JSON File sources are read
  JsonList,    ///< one JSON list of the documents
};

/// How an export is watched. progress and stop may be called or looked at from the thread of the export.
struct TExportWatch {
  std::function<void(std::size_t rows)> progress = {};  ///< now and then: rows written so far
  const TStopFlag* stop = nullptr;

  [[nodiscard]] bool stopped() const { return stop && stop->isSet(); }
};

/// Turns the rows of a table into text, piece by piece. The table outlives it.
class TRowWriter {
 public:
  explicit TRowWriter(const TGridTable& table) : table_(table) {}
  virtual ~TRowWriter() = default;

  virtual void begin(std::string& /*out*/) {}
  virtual void row(std::string& out, std::size_t row) = 0;
  virtual void end(std::string& /*out*/) {}

 protected:
  [[nodiscard]] const TGridTable& table() const { return table_; }

 private:
  const TGridTable& table_;
};

std::unique_ptr<TRowWriter> makeRowWriter(TTextFormat format, const TGridTable& table,
                                          const std::string& title);

/// Writes a table to a file, a row at a time; memory does not grow with the rows. False when it was stopped:
/// then, and when it throws TFileError, the file is as it was before.
bool exportText(const TGridTable& table, TTextFormat format, TSafeFiles& files, const std::string& path,
                const std::string& title, const TExportWatch& watch);

/// The same as one text, for the clipboard. Tabbed and Csv texts may go without captions. False when it was
/// stopped.
bool copyText(const TGridTable& table, TTextFormat format, bool captions, const TExportWatch& watch,
              std::string& text);
/// Of a small table.
std::string tableText(const TGridTable& table, TTextFormat format, bool captions = true);

/// Whether a spreadsheet could take a text for a formula: it begins with "=", "+", "-", "@", a tab or a
/// carriage return.
bool looksLikeFormula(std::string_view text);

}  // namespace hollowmere
