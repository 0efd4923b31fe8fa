#pragma once

#include <QLocale>
#include <array>
#include <bitset>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/localtime.h"

namespace hollowmere {

/// A date or time format of a locale (letters as QLocale::dateFormat() gives them), taken apart once, so
/// that reading and writing cost no locale calls. Blanks are plain ones and digits are 0-9 on both sides.
/// Immutable; may be shared between threads.
class TDatePattern {
 public:
  using TByteSet = std::bitset<256>;

  TDatePattern(const QString& format, const QLocale& locale);

  /// Whether it says day, month and year (hour, minute) once each, with something between the numbers.
  [[nodiscard]] bool isDate() const;
  [[nodiscard]] bool isTime() const;
  [[nodiscard]] bool hasSeconds() const { return count(TField::Second) == 1; }

  /// Reads the fields from the start of the text and cuts off what it read. A text behind the last field
  /// may be missing. The year may have two digits, then it lies at most 50 years after thisYear.
  bool read(std::string_view& text, TDateParts& parts, int thisYear) const;
  /// Appends the fields; the year has four digits at least, milliseconds stand only when there are some.
  void write(std::string& out, const TDateParts& parts) const;

  /// The bytes with which a text of this form can begin, and those that can follow its first number.
  [[nodiscard]] TByteSet firstBytes() const;
  [[nodiscard]] TByteSet bytesAfterNumber() const;

 private:
  enum class TField {
    Literal,
    Day,
    Month,
    MonthName,
    Year,
    Hour,
    Hour12,
    Minute,
    Second,
    HalfDay,
    Unsupported
  };
  struct TToken {
    TField field;
    int width = 1;
    bool blankOptional = false;  ///< Literal only
    std::string text;            ///< Literal only
  };
  using TNames = std::vector<std::string>;

  static TField fieldOf(QChar letter, int length);
  void compile(const QString& format);
  void addLiteral(const QString& text);
  void trimEnds();
  void finish();
  void readNames(const QLocale& locale);
  [[nodiscard]] int count(TField field) const;
  [[nodiscard]] bool numbersApart() const;
  bool readToken(const TToken& token, std::string_view& text, TDateParts& parts, int thisYear,
                 bool& pm) const;

  std::vector<TToken> tokens_;
  std::array<TNames, 12> monthNames_;  ///< the first is the one that is written
  std::array<TNames, 2> halfDays_;
};

}  // namespace hollowmere
