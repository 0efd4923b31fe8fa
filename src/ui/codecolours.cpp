#include "ui/codecolours.h"

#include <QFontDatabase>
#include <QPalette>

#include "ui/codeeditor.h"
#include "ui/scintilla.h"

namespace hollowmere {

namespace {

enum TPart { PlainPart, NamePart, TextPart, NumberPart, WordPart, CommentPart, FaultPart, PartCount };

// At least 4.5 : 1 against white and against 0x232323.
constexpr QRgb lightColours[PartCount] = {0, 0x7a3e00, 0x006b3c, 0x0b4fa8, 0x8a1c8a, 0x666666, 0xc00000};
constexpr QRgb darkColours[PartCount] = {0, 0xe0b070, 0x8fd19e, 0x8ab4f8, 0xd9a0e8, 0xa0a0a0, 0xff8a80};

TPart jsonPart(int style) {
  switch (style) {
    case QsciLexerJSON::Property: return NamePart;
    case QsciLexerJSON::String:
    case QsciLexerJSON::EscapeSequence:
    case QsciLexerJSON::IRI:
    case QsciLexerJSON::IRICompact: return TextPart;
    case QsciLexerJSON::Number: return NumberPart;
    case QsciLexerJSON::Keyword:
    case QsciLexerJSON::KeywordLD: return WordPart;
    case QsciLexerJSON::CommentLine:
    case QsciLexerJSON::CommentBlock: return CommentPart;
    case QsciLexerJSON::UnclosedString:
    case QsciLexerJSON::Error: return FaultPart;
    default: return PlainPart;
  }
}

TPart sqlPart(int style) {
  switch (style) {
    case QsciLexerSQL::Comment:
    case QsciLexerSQL::CommentLine:
    case QsciLexerSQL::CommentDoc: return CommentPart;
    case QsciLexerSQL::Number: return NumberPart;
    case QsciLexerSQL::Keyword: return WordPart;
    case QsciLexerSQL::DoubleQuotedString: return NamePart;
    case QsciLexerSQL::SingleQuotedString: return TextPart;
    default: return PlainPart;
  }
}

TPart scriptPart(int style) {
  switch (style) {
    case QsciLexerCPP::Comment:
    case QsciLexerCPP::CommentLine:
    case QsciLexerCPP::CommentDoc: return CommentPart;
    case QsciLexerCPP::Number: return NumberPart;
    case QsciLexerCPP::Keyword: return WordPart;
    case QsciLexerCPP::DoubleQuotedString:
    case QsciLexerCPP::SingleQuotedString:
    case QsciLexerCPP::Regex: return TextPart;
    case QsciLexerCPP::UnclosedString: return FaultPart;
    default: return PlainPart;
  }
}

TPart partOf(TCodeLanguage language, int style) {
  switch (language) {
    case TCodeLanguage::Json: return jsonPart(style);
    case TCodeLanguage::Sql: return sqlPart(style);
    case TCodeLanguage::JavaScript: return scriptPart(style);
    case TCodeLanguage::Plain: break;
  }
  return PlainPart;
}

QColor mixed(const QColor& one, const QColor& other, double share) {
  const auto part = [share](float a, float b) { return static_cast<float>(a * (1 - share) + b * share); };
  return QColor::fromRgbF(part(one.redF(), other.redF()), part(one.greenF(), other.greenF()),
                          part(one.blueF(), other.blueF()));
}

}  // namespace

QsciLexer* makeLexer(TCodeLanguage language, QObject* parent) {
  switch (language) {
    case TCodeLanguage::Json: {
      auto* lexer = new QsciLexerJSON(parent);
      lexer->setHighlightComments(false);
      return lexer;
    }
    case TCodeLanguage::Sql: {
      auto* lexer = new QsciLexerSQL(parent);
      lexer->setFoldCompact(false);
      return lexer;
    }
    case TCodeLanguage::JavaScript: {
      auto* lexer = new QsciLexerJavaScript(parent);
      lexer->setFoldCompact(false);
      return lexer;
    }
    case TCodeLanguage::Plain: break;
  }
  return nullptr;
}

void colourCode(QsciScintilla& area, QsciLexer* lexer, TCodeLanguage language, const QPalette& palette) {
  const QColor paper = palette.color(QPalette::Base), ink = palette.color(QPalette::Text);
  const QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  const bool dark = paper.lightness() < ink.lightness();
  if (lexer) {
    lexer->setDefaultPaper(paper);
    lexer->setDefaultColor(ink);
    lexer->setDefaultFont(font);
    lexer->setPaper(paper);
    lexer->setFont(font);
    for (int style = 0; style < 128; ++style) {
      const TPart part = partOf(language, style);
      const QRgb colour = (dark ? darkColours : lightColours)[part];
      lexer->setColor(part == PlainPart ? ink : QColor(colour), style);
    }
  }
  area.setColor(ink);
  area.setPaper(paper);
  area.setFont(font);
  area.setCaretForegroundColor(ink);
  area.setCaretLineBackgroundColor(mixed(paper, ink, 0.06));
  area.setSelectionBackgroundColor(palette.color(QPalette::Highlight));
  area.setSelectionForegroundColor(palette.color(QPalette::HighlightedText));
  area.setMarginsBackgroundColor(mixed(paper, ink, 0.08));
  area.setMarginsForegroundColor(mixed(ink, paper, 0.25));
  area.setMarginsFont(font);
  area.setFoldMarginColors(mixed(paper, ink, 0.08), mixed(paper, ink, 0.08));
  area.setMatchedBraceBackgroundColor(mixed(paper, ink, 0.2));
  area.setMatchedBraceForegroundColor(ink);
  area.setUnmatchedBraceBackgroundColor(paper);
  area.setUnmatchedBraceForegroundColor(QColor((dark ? darkColours : lightColours)[FaultPart]));
  // The text stays readable through it.
  const QColor match = dark ? QColor(0xff, 0xd5, 0x4f, 90) : QColor(0xe0, 0x90, 0x00, 90);
  area.setIndicatorForegroundColor(match, -1);
}

}  // namespace hollowmere
