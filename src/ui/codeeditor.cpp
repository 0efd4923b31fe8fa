#include "ui/codeeditor.h"

#include <QAction>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

#include "ui/codecolours.h"
#include "ui/icons.h"
#include "ui/scintilla.h"

namespace hollowmere {

namespace {

/// Beyond that the colours of a text would take seconds when somebody goes to its end.
constexpr std::size_t colouredBytes = 8 * 1024 * 1024;
/// A line is laid out whole before any of it is drawn.
constexpr std::size_t longestLine = 32 * 1024;
constexpr int matchIndicator = 8;
constexpr int mostMatches = 10000;
constexpr qint64 countMilliseconds = 200;

bool hasLongLine(std::string_view text) {
  for (std::size_t at = 0; at + longestLine < text.size();) {
    const std::size_t end = text.rfind('\n', at + longestLine);
    if (end == std::string_view::npos || end < at) return true;
    at = end + 1;
  }
  return false;
}

std::string withCutLines(std::string_view text) {
  constexpr std::size_t kept = 1000;
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::size_t length = end - at;
    if (length > longestLine) {
      length = kept;
      while (length > 0 && (text[at + length] & 0xc0) == 0x80) --length;  // not inside of a character
    }
    out.append(text, at, length);
    if (length < end - at) out += "...";
    if (end < text.size()) out += '\n';
    at = end + 1;
  }
  return out;
}

}  // namespace

/// The library's editor; Tab may leave it.
class TCodeArea : public QsciScintilla {
 public:
  using QsciScintilla::QsciScintilla;

  bool tabLeaves = true;

 protected:
  bool focusNextPrevChild(bool next) override {
    return tabLeaves ? QAbstractScrollArea::focusNextPrevChild(next)
                     : QsciScintilla::focusNextPrevChild(next);
  }
};

TCodeEditor::TCodeEditor(TCodeLanguage language, QWidget* parent) : QWidget(parent), language_(language) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  notice_ = new QLabel(this);
  notice_->setObjectName(QStringLiteral("lCodeNotice"));
  notice_->setWordWrap(true);
  notice_->hide();
  layout->addWidget(notice_);
  makeArea();
  layout->addWidget(area_, 1);
  makeFindBar();
  layout->addWidget(findBar_);
  setFocusProxy(area_);
  applyLanguage();
  addFindAction(QKeySequence::Find, &TCodeEditor::showFind);
  addFindAction(QKeySequence::FindNext, &TCodeEditor::findNext);
  addFindAction(QKeySequence::FindPrevious, &TCodeEditor::findPrevious);
}

TCodeEditor::~TCodeEditor() = default;

QAction* TCodeEditor::addFindAction(const QKeySequence& keys, void (TCodeEditor::*call)()) {
  auto* action = new QAction(this);
  action->setShortcut(keys);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  connect(action, &QAction::triggered, this, call);
  addAction(action);
  return action;
}

void TCodeEditor::makeArea() {
  area_ = new TCodeArea(this);
  area_->setUtf8(true);
  area_->setEolMode(QsciScintilla::EolUnix);
  area_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  area_->setMarginType(0, QsciScintilla::NumberMargin);
  area_->setMarginWidth(1, 0);
  area_->setBraceMatching(QsciScintilla::SloppyBraceMatch);
  area_->setAutoIndent(true);
  area_->setIndentationsUseTabs(false);
  area_->setIndentationWidth(2);
  area_->setTabWidth(2);
  area_->setCaretLineVisible(true);
  area_->indicatorDefine(QsciScintilla::StraightBoxIndicator, matchIndicator);
  area_->setIndicatorDrawUnder(true, matchIndicator);
  area_->SendScintilla(QsciScintilla::SCI_SETSCROLLWIDTHTRACKING, true);
  area_->SendScintilla(QsciScintilla::SCI_SETSCROLLWIDTH, 1UL);
  area_->SendScintilla(QsciScintilla::SCI_CLEARCMDKEY, static_cast<unsigned long>(QsciScintilla::SCK_ESCAPE));
  connect(area_, &QsciScintilla::textChanged, this, &TCodeEditor::textChanged);
  connect(area_, &QsciScintilla::linesChanged, this,
          [this] { area_->setMarginWidth(0, QStringLiteral("00%1").arg(area_->lines())); });
  connect(area_, &QsciScintilla::cursorPositionChanged, this,
          [this](int line, int column) { Q_EMIT cursorMoved(line + 1, column + 1); });
}

void TCodeEditor::makeFindBar() {
  findBar_ = new QWidget(this);
  auto* layout = new QHBoxLayout(findBar_);
  layout->setContentsMargins(0, 2, 0, 0);
  find_ = new QLineEdit(findBar_);
  find_->setPlaceholderText(tr("Find"));
  find_->setClearButtonEnabled(true);
  find_->installEventFilter(this);
  layout->addWidget(find_, 1);
  const auto addButton = [&](const char* name, const char* icon, const QString& caption,
                             void (TCodeEditor::*call)()) {
    auto* button = new QToolButton(findBar_);
    button->setObjectName(QLatin1String(name));
    button->setIcon(themeIcon(icon));
    button->setText(caption);
    button->setToolTip(caption);
    button->setAutoRaise(true);
    layout->addWidget(button);
    connect(button, &QToolButton::clicked, this, call);
  };
  addButton("bFindPrevious", "go-up", tr("Find Previous"), &TCodeEditor::findPrevious);
  addButton("bFindNext", "go-down", tr("Find Next"), &TCodeEditor::findNext);
  caseSensitive_ = new QCheckBox(tr("Match case"), findBar_);
  expression_ = new QCheckBox(tr("Regular expression"), findBar_);
  count_ = new QLabel(findBar_);
  count_->setMinimumWidth(fontMetrics().averageCharWidth() * 16);
  layout->addWidget(caseSensitive_);
  layout->addWidget(expression_);
  layout->addWidget(count_);
  addButton("bFindClose", "edit-clear", tr("Close"), &TCodeEditor::hideFind);
  connect(find_, &QLineEdit::textChanged, this, &TCodeEditor::onTerms);
  connect(caseSensitive_, &QCheckBox::toggled, this, &TCodeEditor::onTerms);
  connect(expression_, &QCheckBox::toggled, this, &TCodeEditor::onTerms);
  findBar_->hide();
}

void TCodeEditor::setNames(const char* objectName, const QString& accessibleName) {
  const QString name = QLatin1String(objectName);
  setObjectName(name);
  area_->setObjectName(name + QLatin1String("Area"));
  area_->setAccessibleName(accessibleName);
  findBar_->setObjectName(name + QLatin1String("FindBar"));
  find_->setObjectName(name + QLatin1String("Find"));
  find_->setAccessibleName(tr("Find in: %1").arg(accessibleName));
  count_->setObjectName(name + QLatin1String("FindCount"));
  caseSensitive_->setObjectName(name + QLatin1String("FindCase"));
  expression_->setObjectName(name + QLatin1String("FindExpression"));
}

void TCodeEditor::setLanguage(TCodeLanguage language) {
  if (language == language_) return;
  language_ = language;
  applyLanguage();
}

void TCodeEditor::applyLanguage() {
  area_->setLexer(nullptr);
  delete lexer_;
  lexer_ = nullptr;
  if (coloured_) lexer_ = makeLexer(language_, area_);
  if (lexer_) area_->setLexer(lexer_);
  area_->setFolding(lexer_ ? QsciScintilla::BoxedTreeFoldStyle : QsciScintilla::NoFoldStyle);
  applyColours();
}

void TCodeEditor::applyColours() { colourCode(*area_, lexer_, language_, palette()); }

void TCodeEditor::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && area_) applyColours();
}

void TCodeEditor::setReadOnly(bool readOnly) {
  readOnly_ = readOnly;
  area_->setReadOnly(readOnly || isCut());
}

void TCodeEditor::setTabChangesFocus(bool changes) { area_->tabLeaves = changes; }

void TCodeEditor::fill(std::string_view utf8) {
  const QSignalBlocker blocked(area_);
  area_->setReadOnly(false);
  area_->SendScintilla(QsciScintilla::SCI_SETUNDOCOLLECTION, 0UL);
  area_->SendScintilla(QsciScintilla::SCI_CLEARALL);
  area_->SendScintilla(QsciScintilla::SCI_APPENDTEXT, static_cast<unsigned long>(utf8.size()), utf8.data());
  area_->SendScintilla(QsciScintilla::SCI_SETUNDOCOLLECTION, 1UL);
  area_->SendScintilla(QsciScintilla::SCI_EMPTYUNDOBUFFER);
  area_->SendScintilla(QsciScintilla::SCI_GOTOPOS, 0UL);
}

void TCodeEditor::setText(std::string_view utf8) {
  if (const bool coloured = utf8.size() <= colouredBytes; coloured != coloured_) {
    coloured_ = coloured;
    applyLanguage();
  }
  whole_.clear();
  const bool cut = hasLongLine(utf8);
  if (cut) {
    whole_ = utf8;
    fill(withCutLines(utf8));
    notice_->setText(tr("Lines that are too long are shown cut; the text cannot be edited here."));
  } else {
    fill(utf8);
  }
  notice_->setVisible(cut);
  setReadOnly(readOnly_);
  setModified(false);
  area_->setMarginWidth(0, QStringLiteral("00%1").arg(area_->lines()));
  if (findBar_->isVisible()) countMatches();
}

void TCodeEditor::replaceText(std::string_view utf8) {
  if (isCut() || hasLongLine(utf8)) return setText(utf8);
  area_->beginUndoAction();
  area_->SendScintilla(QsciScintilla::SCI_TARGETWHOLEDOCUMENT);
  area_->SendScintilla(QsciScintilla::SCI_REPLACETARGET, static_cast<unsigned long>(utf8.size()),
                       utf8.data());
  area_->endUndoAction();
}

std::string_view TCodeEditor::shown() const {
  const auto length = area_->SendScintilla(QsciScintilla::SCI_GETLENGTH);
  const auto* text =
      reinterpret_cast<const char*>(area_->SendScintillaPtrResult(QsciScintilla::SCI_GETCHARACTERPOINTER));
  return {text, static_cast<std::size_t>(length)};
}

std::string TCodeEditor::text() const { return isCut() ? whole_ : std::string(shown()); }

std::string TCodeEditor::selectedText() const {
  const auto begin = static_cast<std::size_t>(area_->SendScintilla(QsciScintilla::SCI_GETSELECTIONSTART));
  const auto end = static_cast<std::size_t>(area_->SendScintilla(QsciScintilla::SCI_GETSELECTIONEND));
  return std::string(shown().substr(begin, end - begin));
}

bool TCodeEditor::isModified() const { return area_->isModified(); }

void TCodeEditor::setModified(bool modified) { area_->setModified(modified); }

void TCodeEditor::goTo(std::size_t offset) {
  if (isCut()) return;
  area_->SendScintilla(QsciScintilla::SCI_GOTOPOS, static_cast<unsigned long>(offset));
}

void TCodeEditor::insert(std::string_view utf8) {
  area_->SendScintilla(QsciScintilla::SCI_REPLACESEL, std::string(utf8).c_str());
}

int TCodeEditor::line() const {
  int line = 0, column = 0;
  area_->getCursorPosition(&line, &column);
  return line + 1;
}

int TCodeEditor::column() const {
  int line = 0, column = 0;
  area_->getCursorPosition(&line, &column);
  return column + 1;
}

void TCodeEditor::setFocus() { area_->setFocus(); }

void TCodeEditor::showFind() {
  findBar_->show();
  const std::string selected = selectedText();
  if (!selected.empty() && selected.find('\n') == std::string::npos)
    find_->setText(QString::fromStdString(selected));
  find_->selectAll();
  find_->setFocus();
  onTerms();
}

void TCodeEditor::hideFind() {
  findBar_->hide();
  area_->clearIndicatorRange(0, 0, area_->lines(), 0, matchIndicator);
  area_->setFocus();
}

bool TCodeEditor::eventFilter(QObject* watched, QEvent* event) {
  if (watched != find_ || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
  const auto* key = static_cast<QKeyEvent*>(event);
  if (key->key() == Qt::Key_Escape) {
    hideFind();
    return true;
  }
  if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) return false;
  key->modifiers() & Qt::ShiftModifier ? findPrevious() : findNext();
  return true;
}

void TCodeEditor::onTerms() {
  search_ = TTextSearch({find_->text(), expression_->isChecked(), caseSensitive_->isChecked()});
  countMatches();
}

/// Marks them, too. Stops after a moment: a text may be large.
void TCodeEditor::countMatches() {
  area_->clearIndicatorRange(0, 0, area_->lines(), 0, matchIndicator);
  area_->SendScintilla(QsciScintilla::SCI_SETINDICATORCURRENT, static_cast<unsigned long>(matchIndicator));
  QElapsedTimer timer;
  timer.start();
  int found = 0;
  bool more = false;
  search_.all(shown(), [&](TTextSearch::TMatch match) {
    if (found == mostMatches || timer.elapsed() > countMilliseconds) {
      more = true;
      return false;
    }
    area_->SendScintilla(QsciScintilla::SCI_INDICATORFILLRANGE, static_cast<unsigned long>(match.begin),
                         static_cast<long>(match.end - match.begin));
    ++found;
    return true;
  });
  if (!search_.fault().isEmpty())
    count_->setText(search_.fault());
  else if (find_->text().isEmpty())
    count_->clear();
  else
    count_->setText(more ? tr("More than %n match(es)", nullptr, found) : tr("%n match(es)", nullptr, found));
}

void TCodeEditor::select(TTextSearch::TMatch match) {
  area_->SendScintilla(QsciScintilla::SCI_SETSEL, static_cast<unsigned long>(match.begin),
                       static_cast<long>(match.end));
}

void TCodeEditor::findNext() {
  if (search_.empty()) return showFind();
  const auto from = static_cast<std::size_t>(area_->SendScintilla(QsciScintilla::SCI_GETSELECTIONEND));
  auto found = search_.next(shown(), from);
  if (!found) found = search_.next(shown(), 0);
  if (found) select(*found);
}

void TCodeEditor::findPrevious() {
  if (search_.empty()) return showFind();
  const auto before = static_cast<std::size_t>(area_->SendScintilla(QsciScintilla::SCI_GETSELECTIONSTART));
  auto found = search_.previous(shown(), before);
  if (!found) found = search_.previous(shown(), shown().size());
  if (found) select(*found);
}

}  // namespace hollowmere
