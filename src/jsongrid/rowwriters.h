#pragma once

#include "jsongrid/export.h"

namespace hollowmere {

// One for each group of formats; makeRowWriter() chooses.
std::unique_ptr<TRowWriter> makeAlignedWriter(const TGridTable& table);
std::unique_ptr<TRowWriter> makeTabbedWriter(const TGridTable& table);
std::unique_ptr<TRowWriter> makeCsvWriter(const TGridTable& table, bool guarded);
std::unique_ptr<TRowWriter> makeHtmlWriter(const TGridTable& table, const std::string& title);
std::unique_ptr<TRowWriter> makeXmlWriter(const TGridTable& table);
std::unique_ptr<TRowWriter> makeJsonWriter(const TGridTable& table, bool list);

}  // namespace hollowmere
