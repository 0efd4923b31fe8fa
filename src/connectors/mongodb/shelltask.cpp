#include "connectors/mongodb/shelltask.h"

namespace hollowmere {

TShellTask::TShellTask(TShellSettings settings, std::string recordText, TShellCommand command,
                       std::function<void()> ended) {
  settings.stop = &stop_;
  thread_ = std::thread([this, settings = std::move(settings), recordText = std::move(recordText),
                         command = std::move(command), ended = std::move(ended)]() mutable {
    result_ = TShellRunner(std::move(settings), dates_).run(recordText, command);
    over_.store(true, std::memory_order_release);
    if (ended) ended();
  });
}

TShellTask::~TShellTask() {
  stop_.set();
  thread_.join();
}

}  // namespace hollowmere
