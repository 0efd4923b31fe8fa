#include "settings/settings.h"

#include <QFile>
#include <QSettings>
#include <QVariant>
#include <algorithm>
#include <array>
#include <charconv>

#include "json/value.h"

namespace hollowmere {

namespace {

constexpr std::string_view grid = "Data Grid Properties";
constexpr std::string_view project = "Default Project Settings";
constexpr std::string_view loadFailed =
    R"(Unable to create or read the registry key \Software\TamsburySoftware\Hollowmere\)";
constexpr std::string_view saveFailed =
    R"(Unable to write to the registry key \Software\TamsburySoftware\Hollowmere\)";

using S = TSettings;
constexpr std::array<TSetting, 22> table = {{
    {"SoftwareVersion", &S::softwareVersion, "", ""},
    {"warnVersion", &S::warnVersion, "", ""},
    {"MongoDBshellExe", &S::mongoDBshellExe, "", ""},
    {"rowAutoHeight", &S::rowAutoHeight, grid, "Auto Row Height"},
    {"colAutoWidth", &S::colAutoWidth, grid, "Auto Column Width"},
    {"ignoreNulls", &S::ignoreNulls, project, "Ignore NULLs?"},
    {"fetchSize", &S::fetchSize, grid, "Fetch Limit", 1},
    {"fetchLimit", &S::fetchLimit, project, "Fetch Limit", 1},
    {"httpTimeout", &S::httpTimeout, "", "HTTP Timeout", 1},
    {"loadDegree", &S::loadDegree, project, "Parallel Degree", 1, 1024},
    {"loadNum", &S::loadNum, project, "Documents To Load"},
    {"discardNum", &S::discardNum, project, "Stop When Rows/Documents Discarded"},
    {"skipNum", &S::skipNum, project, "Stop When Rows/Documents Skipped"},
    {"logFile", &S::logFile, project, "Log File"},
    {"discFile", &S::discFile, project, "Discard File"},
    {"showConnWindow", &S::showConnWindow, "", "Show Connection List At Startup"},
    {"bit64Warn", &S::bit64Warn, "", ""},
    {"bufLen", &S::bufLen, "", "JSON File Buffer Size (bytes)", 1, 1 << 30},
    {"sqlMemoHeight", &S::sqlMemoHeight, "", ""},
    {"maxfetchSize", &S::maxfetchSize, grid, "Max Fetch Limit", 1},
    {"showJsonIcon", &S::showJsonIcon, grid, "Show JSON Icon In Grid?"},
    {"shellTimeout", &S::shellTimeout, "", "", 1},
}};

/// Saving writes two of the values earlier than loading reads them.
constexpr std::array<std::string_view, 22> saveOrder = {
    "SoftwareVersion", "warnVersion", "MongoDBshellExe", "rowAutoHeight", "colAutoWidth", "ignoreNulls",
    "fetchSize",       "fetchLimit",  "maxfetchSize",    "showJsonIcon",  "httpTimeout",  "loadDegree",
    "loadNum",         "discardNum",  "skipNum",         "logFile",       "discFile",     "showConnWindow",
    "bit64Warn",       "bufLen",      "sqlMemoHeight",   "shellTimeout"};

bool parse(std::string_view text, std::string& value) {
  value = text;
  return true;
}

bool parse(std::string_view text, bool& value) {
  value = equalIgnoringCase(text, "true") || text == "1";
  return value || equalIgnoringCase(text, "false") || text == "0";
}

bool parse(std::string_view text, std::int64_t& value) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end;
}

bool withinBounds(const TSetting& setting, std::int64_t value) {
  return value >= setting.lowest && value <= setting.highest;
}

template <typename Value>
bool withinBounds(const TSetting& /*setting*/, const Value& /*value*/) {
  return true;
}

std::string describe(const TSetting& setting) {
  const std::string name(setting.name);
  if (std::holds_alternative<bool S::*>(setting.member)) return name + " (true or false)";
  if (std::holds_alternative<std::string S::*>(setting.member)) return name + " (text)";
  return name + " (a whole number from " + std::to_string(setting.lowest) + " to " +
         std::to_string(setting.highest) + ")";
}

QVariant toVariant(const std::string& value) { return QString::fromStdString(value); }
QVariant toVariant(bool value) { return value; }
QVariant toVariant(std::int64_t value) { return QVariant::fromValue<qlonglong>(value); }

QString keyOf(const TSetting& setting) {
  return QString::fromUtf8(setting.name.data(), static_cast<qsizetype>(setting.name.size()));
}

void write(QSettings& store, const TSetting& setting, const TSettings& settings) {
  store.setValue(keyOf(setting),
                 std::visit([&](auto member) { return toVariant(settings.*member); }, setting.member));
}

bool read(const QSettings& store, const TSetting& setting, TSettings& settings) {
  const QVariant value = store.value(keyOf(setting));
  // A list or a byte array stands there when the file was edited by hand; it is not one text.
  if (!value.canConvert<QString>() || value.typeId() == QMetaType::QStringList) return false;
  return setSettingText(settings, setting, value.toString().toStdString());
}

/// Writes through and tells whether the store took it. A file made by hand may be open to others; that ends
/// here.
bool flush(QSettings& store) {
  store.sync();
  constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
  const QString file = store.fileName();
  if (QFile::exists(file)) QFile::setPermissions(file, ownerOnly);
  return store.status() == QSettings::NoError && !store.childKeys().isEmpty();
}

}  // namespace

TSettings defaultSettings(const TDataFolder& folder) {
  TSettings settings;
  settings.logFile = folder.logFile();
  settings.discFile = folder.discardFile();
  return settings;
}

std::span<const TSetting> settingTable() { return table; }

std::string settingText(const TSettings& settings, const TSetting& setting) {
  if (const auto* text = std::get_if<std::string S::*>(&setting.member)) return settings.**text;
  if (const auto* flag = std::get_if<bool S::*>(&setting.member)) return settings.**flag ? "True" : "False";
  return std::to_string(settings.*std::get<std::int64_t S::*>(setting.member));
}

bool setSettingText(TSettings& settings, const TSetting& setting, std::string_view text) {
  const auto take = [&](auto member) {
    auto value = settings.*member;
    if (!parse(text, value) || !withinBounds(setting, value)) return false;
    settings.*member = std::move(value);
    return true;
  };
  return std::visit(take, setting.member);
}

std::unique_ptr<QSettings> openSettingsStore() {
  const QString file = qEnvironmentVariable("HOLLOWMERE_SETTINGS");
  auto store = file.isEmpty() ? std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                                            "TamsburySoftware", "Hollowmere")
                              : std::make_unique<QSettings>(file, QSettings::IniFormat);
  // Settings of the whole machine are not ours: a value missing for the user is to be written for the user.
  store->setFallbacksEnabled(false);
  return store;
}

void loadSettings(TSettings& settings, QSettings& store, TPrompt& prompt) {
  std::string unusable;
  for (const TSetting& setting : table) {
    if (!store.contains(keyOf(setting))) write(store, setting, settings);
    if (!read(store, setting, settings)) unusable += (unusable.empty() ? "" : ", ") + describe(setting);
  }
  if (!flush(store)) prompt.error(std::string(loadFailed));
  if (!unusable.empty())
    prompt.warning("These settings hold a value of a wrong type, their defaults are used: " + unusable + ".");
}

void saveSettings(const TSettings& settings, QSettings& store, TPrompt& prompt) {
  for (const std::string_view name : saveOrder)
    write(store, *std::ranges::find(table, name, &TSetting::name), settings);
  if (!flush(store)) prompt.error(std::string(saveFailed));
}

}  // namespace hollowmere
