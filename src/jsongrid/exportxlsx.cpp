#include "jsongrid/exportxlsx.h"

#include <xlsxwriter.h>

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <charconv>
#include <cmath>

#include "jsongrid/celltext.h"

namespace hollowmere {

namespace {

constexpr std::size_t rowsBetweenTellings = 256;
constexpr std::int64_t mostDigits = 999'999'999'999'999;
constexpr double millisecondsADay = 86'400'000.0;
constexpr double daysTo1970 = 25'569.0;
constexpr double firstDay = 61.0;            // 1900-03-01: before it, spreadsheets count a day that never was
constexpr double dayAfterAll = 2'958'466.0;  // 10000-01-01
constexpr std::size_t zip64From = 20'000'000;  // cells; the usual form ends at 4 GB a sheet

bool isHex(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }

/// "_x0041_" in a text would be read as the character of that number.
bool isEscape(std::string_view text) {
  return text.size() >= 7 && text[0] == '_' && text[1] == 'x' && text[6] == '_' &&
         std::all_of(text.begin() + 2, text.begin() + 6, isHex);
}

/// The text in the form that a sheet's XML can hold: what cannot stand there as "_xHHHH_". Other control
/// characters are left to the library, which writes them so itself.
std::string sheetText(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::string_view rest = text.substr(at);
    if (isEscape(rest)) {
      out += "_x005F_";
    } else if (text[at] == '\0') {
      out += "_x0000_";
    } else if (rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF")) {
      out += rest[2] == '\xBE' ? "_xFFFE_" : "_xFFFF_";
      at += 2;
    } else {
      out += text[at];
    }
  }
  return out;
}

/// Length as spreadsheets count: UTF-16 units.
std::size_t units(std::string_view text) {
  std::size_t count = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) count += byte >= 0xF0 ? 2 : 1;
  }
  return count;
}

std::string_view firstUnits(std::string_view text, std::size_t most) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if ((byte & 0xC0) != 0x80 && (count += byte >= 0xF0 ? 2 : 1) > most) return text.substr(0, at);
  }
  return text;
}

/// A text that a cell can hold, with a note where it had to be shortened.
std::string fitted(const std::string& text, std::size_t most) {
  if (text.size() <= most) return text;
  const std::size_t length = units(text);
  if (length <= most) return text;
  const std::string note = "... (shortened, " + std::to_string(length) + " characters)";
  return std::string(firstUnits(text, most > note.size() ? most - note.size() : 0)) + note;
}

/// A decimal as a number, when a double shows all of its digits.
std::optional<double> exactNumber(const std::string& digits) {
  const auto count = std::count_if(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
  double number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (count > 15 || error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

/// A workbook in the making. One that is not closed leaves no temporary files.
class TWorkbook {
 public:
  TWorkbook(const std::string& path, const std::string& folder, bool large, const TSheetLimits& limits)
      : path_(path), folder_(folder), limits_(limits) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    options.tmpdir = folder_.data();
    options.use_zip64 = large ? LXW_TRUE : LXW_FALSE;
    book_ = workbook_new_opt(path_.c_str(), &options);
    if (!book_) throw TFileError("Unable to write file", path_, "it cannot be created");
    bold_ = workbook_add_format(book_);
    format_set_bold(bold_);
    moment_ = workbook_add_format(book_);
    format_set_num_format(moment_, "yyyy-mm-dd hh:mm:ss.000");
  }
  TWorkbook(const TWorkbook&) = delete;
  TWorkbook& operator=(const TWorkbook&) = delete;
  ~TWorkbook() {
    if (!book_) return;
    for (lxw_worksheet* sheet : sheets_)
      if (sheet->optimize_tmpfile) std::fclose(sheet->optimize_tmpfile);
    lxw_workbook_free(book_);
  }

  void addSheet(const TGridTable& table) {
    lxw_worksheet* sheet = workbook_add_worksheet(book_, nullptr);
    if (!sheet || !sheet->optimize_tmpfile)
      throw TFileError("Unable to write file", folder_, "no temporary file can be made");
    sheets_.push_back(sheet);
    worksheet_freeze_panes(sheet, 1, 0);
    for (std::size_t column = 0; column < table.columns(); ++column) {
      const auto at = static_cast<lxw_col_t>(column);
      const std::string name = cleanText(table.columnName(column));
      const auto width = static_cast<double>(std::clamp<std::size_t>(units(name) + 2, 12, 60));
      worksheet_set_column(sheet, at, at, hasMoments(table, column) ? 24 : width, nullptr);
      text(0, column, name, bold_);
    }
  }

  void cell(std::size_t row, std::size_t column, const TValue* value) {
    if (!value || value->isNull()) return;
    switch (value->kind()) {
      case TKind::Boolean:
        worksheet_write_boolean(sheets_.back(), rowAt(row), columnAt(column), value->asBool(), nullptr);
        return;
      case TKind::Int:
        if (std::abs(value->asInt() / 2) <= mostDigits / 2)
          return number(row, column, static_cast<double>(value->asInt()), nullptr);
        break;
      case TKind::Double:
        if (std::isfinite(value->asDouble())) return number(row, column, value->asDouble(), nullptr);
        break;
      case TKind::Decimal:
        if (const auto exact = exactNumber(value->asText())) return number(row, column, *exact, nullptr);
        break;
      case TKind::DateTime: {
        const double days = static_cast<double>(value->asMilliseconds()) / millisecondsADay + daysTo1970;
        if (days >= firstDay && days < dayAfterAll) return number(row, column, days, moment_);
        break;
      }
      default: break;
    }
    text(row, column, cleanCellText(value), nullptr);
  }

  /// The library does not look whether its rows reach the disk.
  void check() const {
    for (const lxw_worksheet* sheet : sheets_)
      if (std::ferror(sheet->optimize_tmpfile) != 0)
        throw TFileError("Unable to write file", folder_, "the temporary file cannot be written");
  }

  void close() {
    for (const lxw_worksheet* sheet : sheets_) std::fflush(sheet->optimize_tmpfile);
    check();
    const lxw_error error = workbook_close(std::exchange(book_, nullptr));
    if (error != LXW_NO_ERROR) throw TFileError("Unable to write file", path_, lxw_strerror(error));
  }

 private:
  static lxw_row_t rowAt(std::size_t row) { return static_cast<lxw_row_t>(row); }
  static lxw_col_t columnAt(std::size_t column) { return static_cast<lxw_col_t>(column); }

  static bool hasMoments(const TGridTable& table, std::size_t column) {
    const std::size_t looked = std::min<std::size_t>(table.rows(), 100);
    for (std::size_t row = 0; row < looked; ++row)
      if (const TValue* value = table.cell(row, column); value && value->is(TKind::DateTime)) return true;
    return false;
  }

  void number(std::size_t row, std::size_t column, double number, lxw_format* format) {
    worksheet_write_number(sheets_.back(), rowAt(row), columnAt(column), number, format);
  }

  void text(std::size_t row, std::size_t column, const std::string& text, lxw_format* format) {
    const auto put = [&](std::size_t most) {
      return worksheet_write_string(sheets_.back(), rowAt(row), columnAt(column),
                                    sheetText(fitted(text, most)).c_str(), format);
    };
    // The library counts the characters of an escape, seven, one by one.
    if (put(limits_.cellLength) == LXW_ERROR_MAX_STRING_LENGTH_EXCEEDED) put(limits_.cellLength / 7);
  }

  std::string path_;
  std::string folder_;
  TSheetLimits limits_;
  lxw_workbook* book_ = nullptr;
  lxw_format* bold_ = nullptr;
  lxw_format* moment_ = nullptr;
  std::vector<lxw_worksheet*> sheets_;
};

/// False when it was stopped.
bool fill(TWorkbook& book, const TGridTable& table, const TExportWatch& watch, std::size_t rowsPerSheet) {
  std::size_t start = 0;
  book.addSheet(table);
  for (std::size_t row = 0; row < table.rows(); ++row) {
    if (watch.stopped()) return false;
    if (row - start == rowsPerSheet) {
      book.addSheet(table);
      start = row;
    }
    for (std::size_t column = 0; column < table.columns(); ++column)
      book.cell(row - start + 1, column, table.cell(row, column));
    if (row % rowsBetweenTellings != 0) continue;
    book.check();
    if (watch.progress) watch.progress(row);
  }
  return true;
}

void copyInto(TSafeFile& target, const std::string& from) {
  constexpr qint64 pieceBytes = 64 * 1024;
  QFile file(QString::fromStdString(from));
  if (!file.open(QIODevice::ReadOnly))
    throw TFileError("Unable to read file", from, file.errorString().toStdString());
  for (QByteArray piece; !(piece = file.read(pieceBytes)).isEmpty();)
    target.write({piece.constData(), static_cast<std::size_t>(piece.size())});
  if (file.error() != QFileDevice::NoError)
    throw TFileError("Unable to read file", from, file.errorString().toStdString());
}

}  // namespace

bool exportSpreadsheet(const TGridTable& table, TSafeFiles& files, const std::string& path,
                       const TExportWatch& watch, const TSheetLimits& limits) {
  if (table.columns() > limits.columns)
    throw TExportError("A spreadsheet holds " + std::to_string(limits.columns) + " columns; there are " +
                       std::to_string(table.columns()) + ".");
  // Made first: a place that cannot be written to shows before the work is done.
  const auto target = files.create(path);
  const QTemporaryDir folder;
  if (!folder.isValid())
    throw TFileError("Unable to make a folder for temporary files", folder.path().toStdString(),
                     folder.errorString().toStdString());
  const std::string made = folder.filePath(QStringLiteral("book.xlsx")).toStdString();
  {
    const bool large = table.rows() * table.columns() > zip64From;
    TWorkbook book(made, folder.path().toStdString(), large, limits);
    if (!fill(book, table, watch, limits.rowsPerSheet)) return false;
    book.close();
  }
  if (watch.stopped()) return false;
  copyInto(*target, made);
  if (watch.progress) watch.progress(table.rows());
  target->commit();
  return true;
}

}  // namespace hollowmere
