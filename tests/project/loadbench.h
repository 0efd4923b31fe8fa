#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <regex>
#include <string>

#include "connectors/jsonfile/jsonfileconnector.h"
#include "project/runcontrol.h"
#include "settings/callqueue.h"
#include "support/scriptedprompt.h"
#include "support/tempfolder.h"
#include "support/testclock.h"
#include "support/toystore.h"

namespace hollowmere {

/// A project between toy collections, ready to run with real threads.
class TLoadBench {
 public:
  TLoadBench() {
    stores.add(makeToyConnector(server));
    stores.add(makeJsonFileConnector());
    project.projectName = "Trial";
    project.ignoreNulls = true;
    project.logFile = folder.file("log.txt");
    project.discFile = folder.file("discard.txt");
    project.source = project.target = {"Toy", TObject{{"host", "toy"}}};
  }

  /// A root mapping of the collection to "out-" + collection: "_id" as a number and "name".
  void map(const std::string& collection) {
    project.dataSources.push_back(toySource(collection, collection));
    project.dataTargets.push_back({"t-" + collection, "out-" + collection, {}});
    project.mapping.push_back({"t-" + collection,
                               collection,
                               "String",
                               {{"_id", "_id", "Number", {}}, {"name", "name", "String", {}}}});
  }
  void sourceFile(const std::string& bytes) {
    project.source = {"JSON File", folder.file("in.json")};
    writeBytes(folder.file("in.json"), bytes);
  }
  void targetFile() { project.target = {"JSON File", folder.file("out.json")}; }

  TRunControl& open(bool batch) {
    TRunServices services{.stores = stores,
                          .prompt = prompt,
                          .mainThread = mainThread,
                          .clock = clock,
                          .dates = dates,
                          .bufferBytes = 1000,
                          .background = [](const auto& call, TStopFlag&) { call(); },
                          .logged = {}};
    return control.emplace(project, std::move(services), batch);
  }

  /// Starts and runs to the end; atTick is called at every tick. Gives the exit code.
  int run(bool batch = true, const std::function<void(TRunControl&)>& atTick = {}) {
    if (!batch)
      prompt.expect(TPromptKind::Confirmation, "Are you sure to start load operation?", TAnswer::Yes);
    TRunControl& run = open(batch);
    if (!run.start()) return run.exitCode();
    while (run.tick()) {
      mainThread.pump(5);
      if (atTick) atTick(run);
    }
    EXPECT_FALSE(run.busy());
    EXPECT_EQ(run.status(), "Ready");
    return run.exitCode();
  }

  [[nodiscard]] TLoadCounts counts() const { return control->progress().counts; }
  /// The log; times and the folder of the test are masked.
  [[nodiscard]] std::string log() const {
    const std::regex time("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}");
    std::string text = std::regex_replace(readBytes(project.logFile), time, "<time>");
    for (std::size_t at = 0; (at = text.find(folder.file(""), at)) != std::string::npos;)
      text.replace(at, folder.file("").size(), "<folder>");
    return text;
  }
  [[nodiscard]] bool logged(const std::string& text) const { return log().find(text) != std::string::npos; }
  [[nodiscard]] std::string discards() const { return readBytes(project.discFile); }

  TTempFolder folder;
  std::shared_ptr<TToyServer> server = std::make_shared<TToyServer>();
  TStoreRegistry stores;
  TScriptedPrompt prompt;
  TCallQueue mainThread;
  TTestClock clock;
  TDateTimeText dates{"C"};
  TProject project;
  std::optional<TRunControl> control;  // last: it uses all of the above
};

}  // namespace hollowmere
