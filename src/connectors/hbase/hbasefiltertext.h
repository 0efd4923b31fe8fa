#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace hollowmere {

/// One argument of a filter: a text in single quotes (here without them, its doubled quotes single), or a
/// bare word: a number, true or false, a comparison.
struct THBaseFilterArgument {
  std::string text;
  bool quoted = false;
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
/// why. Names of filters are not checked, since a server may have some of its own.
/// Source: the filter language's chapter of HBase's reference guide, and its ParseFilter class.
/// Throws THBaseFilterError.
THBaseFilter parseHBaseFilter(std::string_view text);

/// The first filter in it that HBase does not bring along; empty when there is none.
std::string unknownFilterName(const THBaseFilter& filter);

/// Whether a filter of that name is part of it.
bool holdsFilter(const THBaseFilter& filter, std::string_view name);

/// The keys to which an expression limits its rows, so that a scan need not look at others: that of an exact
/// or a beginning row key, alone or joined by AND. The texts are as in THBaseRange.
struct THBaseKeyLimits {
  std::string from;
  std::string before;
};
THBaseKeyLimits keyLimits(const THBaseFilter& filter);

}  // namespace hollowmere
