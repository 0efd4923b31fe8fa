#include "ui/textsearch.h"

#include <algorithm>
#include <array>

namespace hollowmere {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
}

QString decoded(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The bytes of the first so many UTF-16 units of a line.
std::size_t bytesOf(const QString& line, qsizetype units) {
  return static_cast<std::size_t>(QStringView(line).first(units).toUtf8().size());
}

std::size_t lineStart(std::string_view text, std::size_t at) {
  const std::size_t before = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
  return before == std::string_view::npos ? 0 : before + 1;
}

}  // namespace

TTextSearch::TTextSearch(const TSearchTerms& terms) : plain_(terms.pattern.toStdString()) {
  if (!terms.regularExpression && terms.caseSensitive) return;
  if (!terms.regularExpression && isAscii(plain_)) {
    way_ = TWay::FoldedAscii;
    std::transform(plain_.begin(), plain_.end(), plain_.begin(), lower);
    return;
  }
  way_ = TWay::Expression;
  expression_.setPattern(terms.regularExpression ? terms.pattern : QRegularExpression::escape(terms.pattern));
  expression_.setPatternOptions(QRegularExpression::UseUnicodePropertiesOption |
                                (terms.caseSensitive ? QRegularExpression::NoPatternOption
                                                     : QRegularExpression::CaseInsensitiveOption));
  if (!expression_.isValid()) fault_ = expression_.errorString();
}

std::optional<TTextSearch::TMatch> TTextSearch::next(std::string_view text, std::size_t from) const {
  if (empty() || from > text.size()) return std::nullopt;
  if (way_ == TWay::Expression) return nextByLines(text, from);
  if (way_ == TWay::FoldedAscii) return nextFolded(text, from);
  const std::size_t at = text.find(plain_, from);
  if (at == std::string_view::npos) return std::nullopt;
  return TMatch{at, at + plain_.size()};
}

std::optional<TTextSearch::TMatch> TTextSearch::nextFolded(std::string_view text, std::size_t from) const {
  const char first = plain_.front();
  for (std::size_t at = from; at + plain_.size() <= text.size(); ++at) {
    if (lower(text[at]) != first) continue;
    std::size_t same = 1;
    while (same < plain_.size() && lower(text[at + same]) == plain_[same]) ++same;
    if (same == plain_.size()) return TMatch{at, at + same};
  }
  return std::nullopt;
}

std::optional<TTextSearch::TMatch> TTextSearch::nextInLine(std::string_view line, std::size_t from) const {
  const QString units = decoded(line);
  qsizetype offset = decoded(line.substr(0, from)).size();
  for (;;) {
    const QRegularExpressionMatch found = expression_.match(units, offset);
    if (!found.hasMatch()) return std::nullopt;
    if (found.capturedLength() > 0)
      return TMatch{bytesOf(units, found.capturedStart()), bytesOf(units, found.capturedEnd())};
    if (found.capturedStart() >= units.size()) return std::nullopt;
    offset = found.capturedStart() + 1;
  }
}

std::optional<TTextSearch::TMatch> TTextSearch::nextByLines(std::string_view text, std::size_t from) const {
  for (std::size_t start = lineStart(text, from); start <= text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    if (const auto found =
            nextInLine(text.substr(start, end - start), from > start ? std::min(from, end) - start : 0))
      return TMatch{start + found->begin, start + found->end};
    start = end + 1;
  }
  return std::nullopt;
}

/// Line by line backwards: a match lies within a line.
std::optional<TTextSearch::TMatch> TTextSearch::previous(std::string_view text, std::size_t before) const {
  if (empty()) return std::nullopt;
  std::size_t end = std::min(before, text.size());
  for (;;) {
    const std::size_t start = lineStart(text, end);
    // The whole line, since an expression may look at what stands behind the match.
    const std::string_view line = text.substr(start, std::min(text.find('\n', end), text.size()) - start);
    std::optional<TMatch> last;
    for (auto found = next(line, 0); found && start + found->end <= before; found = next(line, found->end))
      last = TMatch{start + found->begin, start + found->end};
    if (last || start == 0) return last;
    end = start - 1;
  }
}

void TTextSearch::all(std::string_view text, const std::function<bool(TMatch)>& take) const {
  for (auto found = next(text, 0); found && take(*found); found = next(text, found->end)) {
  }
}

}  // namespace hollowmere
