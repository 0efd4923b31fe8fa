#pragma once

#include <cstdint>
#include <functional>

#include "json/value.h"
#include "project/projectmodel.h"

namespace hollowmere {

/// Gives the number of rows of a data source; throws when it cannot.
using TSourceCounter = std::function<std::int64_t(const TDataSource&)>;

/// The project as the JSON document of the project file, its members in their fixed order. What is not
/// configured is left out of the lists. The count of a file source is the size of the file; that of others
/// is 0, or what the counter says. Throws TProjectError naming the data source when the counter throws.
TObject toDocument(const TProject& project, const TSourceCounter& counter = {});

/// Reads such a document, also that of older versions. Throws TProjectError: "Invalid project file." for
/// what is no object, with the place of the fault behind it (datasourcelist[2].name, counted from 0) for a
/// member that is missing, of a wrong type or beyond its bounds. Members it does not know are passed over.
TProject fromDocument(const TValue& document);

}  // namespace hollowmere
