#pragma once

class QPalette;
class QsciLexer;
class QsciScintilla;
class QObject;

namespace hollowmere {

enum class TCodeLanguage;

/// The one that knows a language's words; none for plain text. Belongs to the parent.
QsciLexer* makeLexer(TCodeLanguage language, QObject* parent);

/// Gives an editor and its lexer (may be none) the colours of a light or a dark palette, whichever it is.
void colourCode(QsciScintilla& area, QsciLexer* lexer, TCodeLanguage language, const QPalette& palette);

}  // namespace hollowmere
