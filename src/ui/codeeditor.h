#pragma once

#include <QWidget>
#include <cstddef>
#include <string>
#include <string_view>

#include "ui/textsearch.h"

class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QsciLexer;

namespace hollowmere {

class TCodeArea;

enum class TCodeLanguage { Plain, Json, Sql, JavaScript };

/// An editor for code and data: colours, line numbers, folding, matching braces, and a bar to find in it
/// (Ctrl+F, F3, Shift+F3, Escape). Texts are UTF-8 and may be large: above some megabytes there are no
/// colours and no folding, and a text with lines that are too long to be drawn is shown with these cut and
/// cannot be edited. An owner gives its object name before text is shown; the area inside is called by it
/// with "Area" behind.
class TCodeEditor : public QWidget {
  Q_OBJECT

 public:
  explicit TCodeEditor(TCodeLanguage language, QWidget* parent = nullptr);
  ~TCodeEditor() override;

  void setLanguage(TCodeLanguage language);
  /// The name for people who cannot see it, and the object names of what is inside.
  void setNames(const char* objectName, const QString& accessibleName);
  void setReadOnly(bool readOnly);
  /// Whether the Tab key moves on to the next control, as it does at first, or indents.
  void setTabChangesFocus(bool changes);

  /// Shows a text from its beginning; nothing can be undone then.
  void setText(std::string_view utf8);
  /// What was given or edited, whole also when the lines on view are cut.
  [[nodiscard]] std::string text() const;
  [[nodiscard]] std::string selectedText() const;
  /// Replaces the whole text as one step that can be undone.
  void replaceText(std::string_view utf8);
  /// Whether the user has changed it since setText() or setModified(false).
  [[nodiscard]] bool isModified() const;
  void setModified(bool modified);
  /// Whether lines are cut, and so nothing can be edited.
  [[nodiscard]] bool isCut() const { return !whole_.empty(); }

  /// Puts the cursor behind so many bytes and scrolls there.
  void goTo(std::size_t offset);
  void insert(std::string_view utf8);
  [[nodiscard]] int line() const;    ///< of the cursor, from 1
  [[nodiscard]] int column() const;  ///< of the cursor, from 1
  void setFocus();

 public Q_SLOTS:
  void showFind();
  void findNext();
  void findPrevious();

 Q_SIGNALS:
  void textChanged();
  void cursorMoved(int line, int column);  ///< from 1

 protected:
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void makeArea();
  void makeFindBar();
  QAction* addFindAction(const QKeySequence& keys, void (TCodeEditor::*call)());
  void applyLanguage();
  void applyColours();
  void fill(std::string_view utf8);
  void hideFind();
  void onTerms();
  void countMatches();
  void select(TTextSearch::TMatch match);
  [[nodiscard]] std::string_view shown() const;

  TCodeArea* area_ = nullptr;
  QsciLexer* lexer_ = nullptr;
  TCodeLanguage language_;
  bool coloured_ = true;
  bool readOnly_ = false;
  std::string whole_;  ///< of a text whose lines are cut
  QLabel* notice_ = nullptr;
  QWidget* findBar_ = nullptr;
  QLineEdit* find_ = nullptr;
  QLabel* count_ = nullptr;
  QCheckBox* caseSensitive_ = nullptr;
  QCheckBox* expression_ = nullptr;
  TTextSearch search_;
};

}  // namespace hollowmere
