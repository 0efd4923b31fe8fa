#include "connectors/mongodb/childprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <optional>

namespace hollowmere {

namespace {

constexpr int sliceMilliseconds = 50;
constexpr std::int64_t graceMilliseconds = 2000;
constexpr std::size_t errorLimit = 16 * 1024;

std::int64_t ticks() {
  const auto time = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

/// A file descriptor that closes itself.
class TDescriptor {
 public:
  explicit TDescriptor(int number = -1) : number_(number) {}
  ~TDescriptor() { close(); }
  TDescriptor(const TDescriptor&) = delete;
  TDescriptor& operator=(const TDescriptor&) = delete;

  void reset(int number) {
    close();
    number_ = number;
  }
  void close() {
    if (number_ >= 0) ::close(number_);
    number_ = -1;
  }
  [[nodiscard]] int get() const { return number_; }

 private:
  int number_;
};

struct TPipe {
  TDescriptor reading;
  TDescriptor writing;

  /// False when the system has no more of them.
  bool open() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    reading.reset(ends[0]);
    writing.reset(ends[1]);
    return fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0;
  }
};

/// What posix_spawn() is to do between fork and exec.
class TSpawnPlan {
 public:
  TSpawnPlan(int output, int errors) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, errors, STDERR_FILENO);
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setpgroup(&attributes_, 0);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~TSpawnPlan() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  TSpawnPlan(const TSpawnPlan&) = delete;
  TSpawnPlan& operator=(const TSpawnPlan&) = delete;

  /// 0 or the system's error number.
  int start(const TChildJob& job, std::vector<std::string> environment, pid_t& child) {
    std::vector<std::string> words{job.program};
    words.insert(words.end(), job.arguments.begin(), job.arguments.end());
    return posix_spawn(&child, job.program.c_str(), &actions_, &attributes_, pointers(words).data(),
                       pointers(environment).data());
  }

 private:
  static std::vector<char*> pointers(std::vector<std::string>& words) {
    std::vector<char*> made;
    for (std::string& word : words) made.push_back(word.data());
    made.push_back(nullptr);
    return made;
  }

  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& changed) {
  std::vector<std::string> made;
  for (char** at = environ; at && *at; ++at) {
    const std::string entry = *at;
    if (!changed.contains(entry.substr(0, entry.find('=')))) made.push_back(entry);
  }
  for (const auto& [name, value] : changed) made.push_back(name + "=" + value);
  return made;
}

/// One running program.
class TChild {
 public:
  explicit TChild(const TChildJob& job) : job_(job) {}
  /// Also when a caller's function threw: nothing stays behind.
  ~TChild() {
    if (pid_ <= 0) return;
    ::kill(-pid_, SIGKILL);
    reap();
  }
  TChild(const TChild&) = delete;
  TChild& operator=(const TChild&) = delete;

  TChildResult run() {
    if (!out_.open() || !err_.open()) return {TChildEnd::NotStarted, errno, {}};
    const int fault =
        TSpawnPlan(out_.writing.get(), err_.writing.get()).start(job_, environmentWith(job_.changed), pid_);
    if (fault != 0) return {TChildEnd::NotStarted, fault, {}};
    // A program that is done shows by the end of its output only when we hold no end of the pipe.
    out_.writing.close();
    err_.writing.close();
    while (!ended()) {
      watch();
      wait();
      drain();
    }
    // What it started may hold the pipe open for ever.
    ::kill(-pid_, SIGKILL);
    drain();
    return result();
  }

 private:
  /// Looks after time, stop and size; tells the group to end when one of them says so.
  void watch() {
    const std::int64_t now = ticks();
    if (!cause_) {
      if (job_.stop && job_.stop->isSet())
        end(TChildEnd::Stopped);
      else if (job_.timeoutMilliseconds > 0 && now - started_ >= job_.timeoutMilliseconds)
        end(TChildEnd::TimedOut);
      else if (bytes_ > job_.outputLimit || (job_.goesOn && !job_.goesOn()))
        end(TChildEnd::TooMuchOutput);
    } else if (now - endingSince_ >= graceMilliseconds) {
      ::kill(-pid_, SIGKILL);
    }
  }

  void end(TChildEnd cause) {
    cause_ = cause;
    endingSince_ = ticks();
    ::kill(-pid_, SIGTERM);
    // A stopped process takes no other signal.
    ::kill(-pid_, SIGCONT);
  }

  void wait() {
    std::array<pollfd, 2> ends{pollfd{out_.reading.get(), POLLIN, 0}, pollfd{err_.reading.get(), POLLIN, 0}};
    // Closed ones have the number -1, which poll() passes over.
    ::poll(ends.data(), ends.size(), sliceMilliseconds);
  }

  void drain() {
    read(out_.reading, [this](std::string_view piece) {
      bytes_ += piece.size();
      if (!cause_ && bytes_ <= job_.outputLimit && job_.output) job_.output(piece);
    });
    read(err_.reading, [this](std::string_view piece) {
      errors_ += piece.substr(0, errorLimit - std::min(errorLimit, errors_.size()));
    });
  }

  /// As far as bytes are there, but never without end: time and size are looked at in between.
  template <typename Take>
  void read(TDescriptor& end, Take take) {
    std::array<char, 64 * 1024> buffer;
    for (int pieces = 0; pieces < 64 && end.get() >= 0; ++pieces) {
      const ssize_t got = ::read(end.get(), buffer.data(), buffer.size());
      if (got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR)) return end.close();
      if (got < 0) return;
      take(std::string_view(buffer.data(), static_cast<std::size_t>(got)));
    }
  }

  bool ended() {
    // Left as it is until its group was killed: the number may not come to stand for another group.
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == pid_;
  }

  int reap() {
    int status = 0;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    return status;
  }

  TChildResult result() {
    const int status = reap();
    if (!cause_ && bytes_ > job_.outputLimit) cause_ = TChildEnd::TooMuchOutput;
    if (cause_) return {*cause_, 0, std::move(errors_)};
    if (WIFSIGNALED(status)) return {TChildEnd::Signalled, WTERMSIG(status), std::move(errors_)};
    return {TChildEnd::Exited, WEXITSTATUS(status), std::move(errors_)};
  }

  const TChildJob& job_;
  TPipe out_;
  TPipe err_;
  pid_t pid_ = -1;
  const std::int64_t started_ = ticks();
  std::int64_t endingSince_ = 0;
  std::size_t bytes_ = 0;
  std::string errors_;
  std::optional<TChildEnd> cause_;
};

}  // namespace

TChildResult runChild(const TChildJob& job) { return TChild(job).run(); }

}  // namespace hollowmere
