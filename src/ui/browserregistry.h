#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "json/value.h"
#include "settings/connectionrecord.h"
#include "ui/mdichild.h"

namespace hollowmere {

struct TWindowContext;

/// The window that browses one database.
class TBrowserWindow : public TMdiChild {
  Q_OBJECT

 public:
  using TMdiChild::TMdiChild;

  /// In a designer: shows the query object of a data source. Called once, before the window is shown.
  virtual void setQueryObject(const TValue& definition) = 0;
  /// In a designer: what the window's fields make of it now.
  [[nodiscard]] virtual TValue queryObject() const = 0;
};

enum class TBrowserMode {
  Child,    ///< a window of its own inside the main window
  Designer  ///< inside a modal dialog, for the query of a data source
};

/// What a browser is made for.
struct TBrowserRequest {
  TWindowContext& context;  ///< outlives the window
  ConnectionConfig connection;
  TBrowserMode mode;
};

/// Connects and makes the window, not shown yet; the parent owns it. Throws std::exception with the message
/// for the user when the database cannot be reached.
using TBrowserFactory = std::function<TBrowserWindow*(const TBrowserRequest& request, QWidget* parent)>;

/// The stores that can be browsed, by their dbtype. Filled once at start. Window thread.
class TBrowserRegistry {
 public:
  void add(std::string_view dbType, TBrowserFactory factory) {
    factories_[std::string(dbType)] = std::move(factory);
  }
  /// nullptr for a type that is not there. Names are compared exactly.
  [[nodiscard]] const TBrowserFactory* find(const std::string& dbType) const {
    const auto found = factories_.find(dbType);
    return found == factories_.end() ? nullptr : &found->second;
  }

 private:
  std::map<std::string, TBrowserFactory> factories_;
};

/// The caption of a browser: its store and the place of its database, "MongoDB :: db.example.com:27017/shop"
/// for example. Holds no secret.
std::string browserCaption(const ConnectionConfig& connection);

/// Shows the browser of a source as a modal designer on a data source's query object. Its query object when
/// it was closed with OK; nothing when it was cancelled, or could not be opened: that has been told.
std::optional<TValue> designQuery(const TBrowserFactory& factory, TWindowContext& context,
                                  const ConnectionConfig& connection, const TValue& definition,
                                  QWidget* parent);

/// The dbtype of a record; empty without one.
std::string dbTypeOf(const ConnectionConfig& connection);

}  // namespace hollowmere
