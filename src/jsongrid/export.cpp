#include "jsongrid/export.h"

#include <stdexcept>

#include "jsongrid/rowwriters.h"

namespace hollowmere {

namespace {

constexpr std::size_t pieceBytes = 64 * 1024;
constexpr std::size_t rowsBetweenTellings = 256;

/// False when it was stopped.
template <typename TSink>
bool writeRows(const TGridTable& table, TRowWriter& writer, const TExportWatch& watch, const TSink& sink,
               bool captions = true) {
  std::string piece;
  if (captions) writer.begin(piece);
  for (std::size_t row = 0; row < table.rows(); ++row) {
    if (watch.stopped()) return false;
    writer.row(piece, row);
    if (piece.size() >= pieceBytes) {
      sink(piece);
      piece.clear();
    }
    if (watch.progress && row % rowsBetweenTellings == 0) watch.progress(row);
  }
  writer.end(piece);
  sink(piece);
  if (watch.progress) watch.progress(table.rows());
  return !watch.stopped();
}

}  // namespace

std::unique_ptr<TRowWriter> makeRowWriter(TTextFormat format, const TGridTable& table,
                                          const std::string& title) {
  switch (format) {
    case TTextFormat::Aligned: return makeAlignedWriter(table);
    case TTextFormat::Tabbed: return makeTabbedWriter(table);
    case TTextFormat::Csv: return makeCsvWriter(table, false);
    case TTextFormat::CsvGuarded: return makeCsvWriter(table, true);
    case TTextFormat::Html: return makeHtmlWriter(table, title);
    case TTextFormat::Xml: return makeXmlWriter(table);
    case TTextFormat::JsonLines: return makeJsonWriter(table, false);
    case TTextFormat::JsonList: return makeJsonWriter(table, true);
  }
  throw std::invalid_argument("no such text format");
}

bool exportText(const TGridTable& table, TTextFormat format, TSafeFiles& files, const std::string& path,
                const std::string& title, const TExportWatch& watch) {
  const auto file = files.create(path);
  const auto writer = makeRowWriter(format, table, title);
  if (!writeRows(table, *writer, watch, [&](const std::string& piece) { file->write(piece); })) return false;
  file->commit();
  return true;
}

bool copyText(const TGridTable& table, TTextFormat format, bool captions, const TExportWatch& watch,
              std::string& text) {
  const auto writer = makeRowWriter(format, table, {});
  return writeRows(
      table, *writer, watch, [&](const std::string& piece) { text += piece; }, captions);
}

std::string tableText(const TGridTable& table, TTextFormat format, bool captions) {
  std::string text;
  copyText(table, format, captions, {}, text);
  return text;
}

}  // namespace hollowmere
