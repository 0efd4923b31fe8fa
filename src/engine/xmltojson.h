#pragma once

#include <string_view>

#include "json/value.h"

namespace hollowmere {

/// The JSON form of an XML text: an object with the root element's name as its one member. An element is
/// an object of its attributes ("@name") and child elements, in order; elements of one name become a list
/// in the place of the first. Text beside attributes or children is the member "#text"; an element that
/// holds only text is that text, an empty one is null. Comments and declarations are left out. Entities of
/// a document type are not expanded. Null when the text is not well-formed or has no element.
TValue xmlToJson(std::string_view xml);

}  // namespace hollowmere
