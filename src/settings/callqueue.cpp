#include "settings/callqueue.h"

#include <chrono>
#include <exception>

namespace hollowmere {

struct TCallQueue::TCall {
  const std::function<void()>& function;
  bool done = false;
  std::exception_ptr error;
};

TCallQueue::TCallQueue() : mainThread_(std::this_thread::get_id()) {}

void TCallQueue::run(const std::function<void()>& call) {
  if (std::this_thread::get_id() == mainThread_) return call();
  TCall waiting{call, false, nullptr};
  std::unique_lock lock(mutex_);
  calls_.push_back(&waiting);
  came_.notify_one();
  done_.wait(lock, [&waiting] { return waiting.done; });
  if (waiting.error) std::rethrow_exception(waiting.error);
}

void TCallQueue::pump(int milliseconds) {
  std::unique_lock lock(mutex_);
  came_.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return !calls_.empty(); });
  while (!calls_.empty()) {
    TCall* call = calls_.front();
    calls_.pop_front();
    lock.unlock();
    try {
      call->function();
    } catch (...) {
      call->error = std::current_exception();
    }
    lock.lock();
    call->done = true;
    done_.notify_all();
  }
}

}  // namespace hollowmere
