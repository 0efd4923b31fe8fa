#include "ui/browserregistry.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QPushButton>
#include <QVBoxLayout>

#include "json/json.h"
#include "ui/windowcontext.h"

namespace hollowmere {

namespace {

std::string member(const ConnectionConfig& connection, std::string_view name) {
  const TValue* value = connection.find(name);
  if (!value || value->isNull()) return {};
  return value->is(TKind::Text) ? value->asText() : toJson(*value);
}

/// What joins two parts that are both there.
std::string joined(const std::string& left, const char* by, const std::string& right) {
  return left.empty() || right.empty() ? left + right : left + by + right;
}

class TDesigner : public QDialog {
 public:
  TDesigner(const TBrowserFactory& factory, const TBrowserRequest& request, const TValue& definition,
            QWidget* parent)
      : QDialog(parent), browser_(factory(request, this)) {
    setObjectName(QStringLiteral("queryDesigner"));
    setWindowTitle(QString::fromStdString(browserCaption(request.connection)));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(browser_, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("bOk"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("bCancel"));
    // Enter belongs to the query.
    for (auto* button : {buttons->button(QDialogButtonBox::Ok), buttons->button(QDialogButtonBox::Cancel)})
      button->setAutoDefault(false);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    browser_->setQueryObject(definition);
  }

  [[nodiscard]] TValue result() const { return browser_->queryObject(); }

 private:
  TBrowserWindow* browser_;
};

}  // namespace

std::string dbTypeOf(const ConnectionConfig& connection) {
  const TValue* type = connection.find("dbtype");
  return type && type->is(TKind::Text) ? type->asText() : std::string();
}

std::string browserCaption(const ConnectionConfig& connection) {
  const std::string host = member(connection, "host");
  const std::string database = member(connection, "database");
  // Without a host the database names the place, and the user tells whose schema it is.
  const std::string place = host.empty()
                                ? joined(member(connection, "user"), "@", database)
                                : joined(joined(host, ":", member(connection, "port")), "/", database);
  return dbTypeOf(connection) + " :: " + place;
}

std::optional<TValue> designQuery(const TBrowserFactory& factory, TWindowContext& context,
                                  const ConnectionConfig& connection, const TValue& definition,
                                  QWidget* parent) {
  std::unique_ptr<TDesigner> dialog;
  std::string fault;
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  try {
    dialog = std::make_unique<TDesigner>(
        factory, TBrowserRequest{context, connection, TBrowserMode::Designer}, definition, parent);
  } catch (const std::exception& error) {
    fault = error.what();
  }
  QGuiApplication::restoreOverrideCursor();
  if (!dialog) {
    context.prompt.error(fault);
    return std::nullopt;
  }
  if (dialog->exec() != QDialog::Accepted) return std::nullopt;
  return dialog->result();
}

}  // namespace hollowmere
