#include "app/program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace hollowmere {

namespace {

/// In the child: never returns.
[[noreturn]] void become(const std::string& in, const std::string& out, const std::string& err,
                         std::vector<char*>& words) {
  const auto redirect = [](const std::string& file, int flags, int to) {
    dup2(open(file.c_str(), flags, 0600), to);
  };
  redirect(in, O_RDONLY, STDIN_FILENO);
  redirect(out, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
  redirect(err, O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
  execv(words[0], words.data());
  _exit(127);
}

}  // namespace

TProgramRun::TProgramRun(const TTempFolder& folder, const std::string& program,
                         std::vector<std::string> arguments, const std::string& input)
    : out_(folder.file("stdout")), err_(folder.file("stderr")) {
  const std::string in = folder.file("stdin");
  writeBytes(in, input);
  writeBytes(out_, {});
  writeBytes(err_, {});
  setenv("HOLLOWMERE_DATA", folder.file("data").c_str(), 1);
  setenv("HOLLOWMERE_SETTINGS", folder.file("settings.ini").c_str(), 1);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  arguments.insert(arguments.begin(), program);
  std::vector<char*> words;
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  process_ = fork();
  if (process_ < 0) throw std::runtime_error("unable to start a process");
  if (process_ == 0) become(in, out_, err_, words);
}

TProgramRun::~TProgramRun() {
  if (process_ == 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

std::optional<int> TProgramRun::wait(std::chrono::milliseconds most) {
  const auto end = std::chrono::steady_clock::now() + most;
  while (std::chrono::steady_clock::now() < end) {
    int status = 0;
    if (waitpid(process_, &status, WNOHANG) == process_) {
      process_ = 0;
      return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return std::nullopt;
}

void TProgramRun::signal(int number) const { kill(process_, number); }

}  // namespace hollowmere
