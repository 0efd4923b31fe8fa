#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace hollowmere {

/// One argument of a filter: a text in single quotes (here without them, its doubled quotes single), or a
/// bare word: a number, true or false, a comparison; or the parameter that will be such a thing.
struct THBaseFilterArgument {
  std::string text;
  std::size_t at = 0;  ///< where it begins
  bool quoted = false;
  bool parameter = false;
};

enum class TFilterKind { Simple, And, Or, Skip, While };

/// An expression of the filter language.
struct THBaseFilter {
  TFilterKind kind = TFilterKind::Simple;
  std::string name;  ///< of a simple one: "PrefixFilter", ...
  std::vector<THBaseFilterArgument> arguments;
  std::vector<THBaseFilter> parts;  ///< of the others
};

/// What makes a text no filter, naming the word or sign and its place, counted from 1.
class THBaseFilterError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads a filter as a server's parser does; the text is not empty. A server that refuses one does not say
/// why. Filters with names that HBase does not bring along may be a server's own: they are taken as they are.
/// Source: the filter language's chapter of HBase's reference guide, and its ParseFilter class.
/// Throws THBaseFilterError.
enum class TFilterParameters { Refused, Allowed };  ///< as :name in the place of an argument
THBaseFilter parseHBaseFilter(std::string_view text,
                              TFilterParameters parameters = TFilterParameters::Refused);

/// Behind the parameter (:name or :"name") whose colon stands there; there itself when it is none.
std::size_t parameterEnd(std::string_view text, std::size_t colon);

/// The first filter in it that HBase does not bring along; empty when there is none.
std::string unknownFilterName(const THBaseFilter& filter);

/// Whether a value may stand without quotes as that argument, from 0, of a filter: a number or a truth value
/// where it takes one.
bool takesBare(std::string_view filter, std::size_t index, std::string_view value);

/// Whether it says of each row the same, whatever rows came before. Not so: WHILE, ColumnCountGetFilter and
/// PageFilter, and filters of a server's own, of which nothing is known.
enum class TPages { Refused, Allowed };  ///< what is said of a PageFilter
bool judgesRowsAlone(const THBaseFilter& filter, TPages pages = TPages::Refused);

/// The keys to which an expression limits its rows, so that a scan need not look at others: that of an exact
/// or a beginning row key, alone or joined by AND. The texts are as in THBaseRange. None for a filter that
/// must see the rows before, too.
struct THBaseKeyLimits {
  std::string from;
  std::string before;
};
THBaseKeyLimits keyLimits(const THBaseFilter& filter);

}  // namespace hollowmere
