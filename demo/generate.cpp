// Writes orders.json and customers.json into a folder: the same bytes on every machine.
#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>

#include "json/encoding.h"
#include "json/json.h"

namespace {

using hollowmere::TList;
using hollowmere::TObject;
using hollowmere::TTextForm;
using hollowmere::TValue;

constexpr std::int64_t orderLines = 100'000;
constexpr std::int64_t customers = 5'000;
constexpr std::int64_t orderingCustomers = 4'950;  // the last ones have no orders
constexpr std::int64_t firstOrder = 100'000;

// Lines that are to be refused: a second part of an order has its number again, a few amounts are words,
// and a few lines break off.
constexpr std::int64_t secondPartEvery = 1'000, secondPartOf = 500;
constexpr std::int64_t wordsEvery = 12'500, wordsAt = 7;
constexpr std::int64_t brokenEvery = 8'000;

constexpr std::int64_t second = 1000, day = 86'400 * second;
constexpr std::int64_t firstDay = 19'723 * day;  // 2024-01-01

constexpr std::array firstNames = {"Ada",   "Björn",  "Chloé", "Dilnoza", "Émile",    "Fatıma",
                                   "Grace", "Haruto", "Inés",  "Jörg",    "Katarína", "Liam",
                                   "Marek", "Nguyễn", "Oğuz",  "Zoë"};
constexpr std::array lastNames = {"Abbott", "Brontë", "Castañeda", "D'Angelo", "Eğilmez", "Fußmann",
                                  "García", "Hübner", "Ivanović",  "Jansen",   "Kovács",  "Łukasik",
                                  "O'Neil", "Петров", "佐藤",      "Ziegler"};
constexpr std::array nickNames = {"Ace", "Red", "Skip", "The Baker"};
constexpr std::array streets = {"Ahornallee",      "Calle Mayor", "Długa",       "High Street",
                                "Rue de l'Église", "Storgatan",   "Strada Nouă", "Via Roma"};
struct TPlace {
  const char* city;
  const char* zip;
  const char* country;
};
constexpr std::array places = {TPlace{"Dresden", "01067", "DE"}, TPlace{"München", "80331", "DE"},
                               TPlace{"Málaga", "29001", "ES"},  TPlace{"Łódź", "90-001", "PL"},
                               TPlace{"York", "YO1 7HH", "GB"},  TPlace{"Orléans", "45000", "FR"},
                               TPlace{"Malmö", "211 20", "SE"},  TPlace{"Torino", "10121", "IT"}};
struct TItem {
  const char* number;
  const char* text;
  std::int64_t cents;
};
constexpr std::array items = {
    TItem{"A-17", "Lamp, brass", 4'990},     TItem{"A-22", "Shade 12\"", 1'550},
    TItem{"B-03", "Table \"Oslo\"", 32'900}, TItem{"C-40", "Chair, beech", 8'925},
    TItem{"D-08", "Screws M6 & nuts", 415},  TItem{"E-99", "Rug 160 x 230", 12'999}};
constexpr std::array carriers = {"Post", "Bode & Co", "Courier <24h>"};

class TDice {
 public:
  explicit TDice(std::uint64_t seed) : numbers_(seed) {}

  /// From 0 to limit - 1, without the library's distributions, which differ from machine to machine. For
  /// the same reason no expression asks twice.
  std::int64_t below(std::int64_t limit) {
    return static_cast<std::int64_t>(numbers_() % static_cast<std::uint64_t>(limit));
  }
  bool oneIn(std::int64_t count) { return below(count) == 0; }

  template <typename T, std::size_t N>
  const T& of(const std::array<T, N>& list) {
    return list[static_cast<std::size_t>(below(N))];
  }

 private:
  std::mt19937_64 numbers_;
};

/// "1234.05"
std::string money(std::int64_t cents) {
  const std::string rest = std::to_string(cents % 100);
  return std::to_string(cents / 100) + (rest.size() < 2 ? ".0" : ".") + rest;
}

std::string dayText(std::int64_t moment) { return hollowmere::toIsoText(moment).substr(0, 10); }

const char* boolText(bool value) { return value ? "true" : "false"; }

std::string xmlText(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '&')
      out += "&amp;";
    else if (c == '<')
      out += "&lt;";
    else
      out += c;
  }
  return out;
}

void addAddress(TObject& object, TDice& dice) {
  const TPlace& place = dice.of(places);
  const std::string street = dice.of(streets);
  object.add("street", street + " " + std::to_string(1 + dice.below(200)));
  object.add("zip", place.zip);
  object.add("city", place.city);
  object.add("country", place.country);
}

TList makeLines(TDice& dice, std::int64_t& cents) {
  TList lines;
  for (std::int64_t left = 1 + dice.below(4); left > 0; --left) {
    const TItem& item = dice.of(items);
    const std::int64_t count = 1 + dice.below(5);
    cents += count * item.cents;
    lines.emplace_back(TObject{{"item", item.number},
                               {"text", item.text},
                               {"count", count},
                               {"price", static_cast<double>(item.cents) / 100}});
  }
  return lines;
}

/// What a shop keeps as a text of JSON.
std::string makeOptions(TDice& dice) {
  TObject options{{"gift", dice.oneIn(5)}, {"floor", dice.below(6)}};
  if (dice.oneIn(3)) options.add("note", "Ring at \"Müller\", please");
  return toJson(options);
}

/// What a carrier sends as a text of XML.
std::string makeShipping(TDice& dice) {
  std::string xml = "<shipping carrier=\"" + xmlText(dice.of(carriers)) + "\">";
  for (std::int64_t parcels = 1 + dice.below(2); parcels > 0; --parcels) {
    const std::int64_t number = 10'000'000 + dice.below(90'000'000);
    const std::int64_t kilos = 1 + dice.below(30);
    xml +=
        "<parcel number=\"P" + std::to_string(number) + "\"><kg>" + std::to_string(kilos) + "</kg></parcel>";
  }
  return xml + "</shipping>";
}

TValue makeSignature(TDice& dice) {
  std::string bytes;
  for (int i = 0; i < 24; ++i) bytes += static_cast<char>(dice.below(256));
  return TValue::binary(std::move(bytes));
}

std::string makeOrder(TDice& dice, std::int64_t line) {
  const bool secondPart = line % secondPartEvery == 0;
  const std::int64_t number = firstOrder + line - (secondPart ? secondPartOf : 0);
  const std::int64_t ordered = firstDay + dice.below(700 * day / second) * second;
  std::int64_t cents = 0;
  TList lines = makeLines(dice, cents);
  TObject order{
      {"order", number},
      {"invoice", "R-" + std::to_string(number) + (secondPart ? "-2" : "-1")},
      {"customer", 1 + dice.below(orderingCustomers)},
      {"ordered", hollowmere::toIsoText(ordered)},
      {"delivered", dice.oneIn(50) ? TValue() : TValue(dayText(ordered + (1 + dice.below(14)) * day))},
      {"amount", line % wordsEvery == wordsAt ? "on request" : money(cents)},
      {"paid", boolText(!dice.oneIn(10))}};
  addAddress(order, dice);
  order.add("lines", std::move(lines));
  order.add("options", makeOptions(dice));
  order.add("shipping", makeShipping(dice));
  order.add("signature", makeSignature(dice));
  return toJson(order);
}

std::string makeCustomer(TDice& dice, std::int64_t number) {
  std::string name = dice.of(firstNames);
  if (dice.oneIn(8)) name += " \"" + std::string(dice.of(nickNames)) + "\"";
  name += " " + std::string(dice.of(lastNames));
  TObject customer{{"number", number}, {"name", name}};
  customer.add("mail",
               dice.oneIn(40) ? TValue() : TValue("customer" + std::to_string(number) + "@example.com"));
  customer.add("since", dayText(firstDay - dice.below(3000) * day));
  customer.add("vip", boolText(dice.oneIn(20)));
  customer.add("credit", money(dice.below(1'000'000)));
  addAddress(customer, dice);
  return toJson(customer);
}

class TFile {
 public:
  explicit TFile(const std::string& name) : name_(name), out_(name, std::ios::binary) {}

  void line(std::string_view text) { out_ << text << '\n'; }
  void close() {
    out_.close();
    if (!out_) throw std::runtime_error("unable to write " + name_);
  }

 private:
  std::string name_;
  std::ofstream out_;
};

void writeOrders(const std::string& folder) {
  TDice dice(20'072);
  TFile file(folder + "/orders.json");
  for (std::int64_t line = 1; line <= orderLines; ++line) {
    const std::string order = makeOrder(dice, line);
    file.line(order);
    // As if a transfer had been cut off and begun again; within ASCII, so that the text stays UTF-8.
    if (line % brokenEvery == 0) file.line(std::string_view(order).substr(0, 60));
  }
  file.close();
}

void writeCustomers(const std::string& folder) {
  TDice dice(72);
  TFile file(folder + "/customers.json");
  for (std::int64_t number = 1; number <= customers; ++number) file.line(makeCustomer(dice, number));
  file.close();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: hm-demo-data FOLDER\n";
    return 2;
  }
  try {
    writeOrders(argv[1]);
    writeCustomers(argv[1]);
  } catch (const std::exception& error) {
    std::cerr << "hm-demo-data: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
