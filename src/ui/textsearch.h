#pragma once

#include <QRegularExpression>
#include <QString>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace hollowmere {

/// How a text is to be found.
struct TSearchTerms {
  QString pattern;
  bool regularExpression = false;
  bool caseSensitive = false;

  bool operator==(const TSearchTerms&) const = default;
};

/// Finds a text or a regular expression in UTF-8 text. A match lies within one line and is never empty.
class TTextSearch {
 public:
  struct TMatch {
    std::size_t begin = 0;  ///< bytes
    std::size_t end = 0;

    bool operator==(const TMatch&) const = default;
  };

  TTextSearch() = default;
  explicit TTextSearch(const TSearchTerms& terms);

  /// Why the regular expression is none; empty when it is one.
  [[nodiscard]] const QString& fault() const { return fault_; }
  /// Whether there is nothing to be searched for.
  [[nodiscard]] bool empty() const { return plain_.empty() || !fault_.isEmpty(); }

  /// The first match that begins at or behind that byte.
  [[nodiscard]] std::optional<TMatch> next(std::string_view text, std::size_t from) const;
  /// The last match that ends at or before that byte.
  [[nodiscard]] std::optional<TMatch> previous(std::string_view text, std::size_t before) const;
  /// Gives all matches in turn until the taker gives false.
  void all(std::string_view text, const std::function<bool(TMatch)>& take) const;
  /// Whether there is a match at all.
  [[nodiscard]] bool isIn(std::string_view text) const { return next(text, 0).has_value(); }

 private:
  [[nodiscard]] std::optional<TMatch> nextByLines(std::string_view text, std::size_t from) const;
  [[nodiscard]] std::optional<TMatch> nextFolded(std::string_view text, std::size_t from) const;
  [[nodiscard]] std::optional<TMatch> nextInLine(std::string_view line, std::size_t from) const;

  enum class TWay { Bytes, FoldedAscii, Expression };

  TWay way_ = TWay::Bytes;
  std::string plain_;  ///< lower case for FoldedAscii
  QRegularExpression expression_;
  QString fault_;
};

}  // namespace hollowmere
