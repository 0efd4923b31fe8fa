#pragma once

#include <bson/bson.h>

#include <string>

namespace hollowmere::mongowire {

/// Two values are equal to the server exactly when their keys are: 1, 1.0 and a long 1 share one.
std::string valueKey(const bson_iter_t& value);
/// A server's order of values: by kind of type first, numbers together, then by value. Below, at or above 0.
int compareValues(const bson_iter_t& left, const bson_iter_t& right);
/// As a server prints a value in an error text: 1, "x", ObjectId('...').
std::string shellText(const bson_iter_t& value);
/// Throws TCommandError when the filter holds an operator or a dotted name, which matches() cannot judge.
void checkFilter(const bson_t* filter);
/// Whether the document has each top-level field of the filter with an equal value (a whole array counts as
/// one value); null also matches a missing field.
bool matches(const bson_t* document, const bson_t* filter);

}  // namespace hollowmere::mongowire
