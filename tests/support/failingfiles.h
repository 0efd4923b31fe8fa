#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "settings/safefile.h"

namespace hollowmere {

/// Real files on a disk that is full after that many bytes.
class TFailingFiles : public TSafeFiles {
 public:
  explicit TFailingFiles(std::size_t room) : room_(room) {}

  std::unique_ptr<TSafeFile> create(const std::string& path) override {
    return std::make_unique<TFile>(disk_.create(path), path, room_);
  }

 private:
  class TFile : public TSafeFile {
   public:
    TFile(std::unique_ptr<TSafeFile> file, std::string path, std::size_t room)
        : file_(std::move(file)), path_(std::move(path)), room_(room) {}

    void write(std::string_view bytes) override {
      const std::size_t part = bytes.size() < room_ ? bytes.size() : room_;
      file_->write(bytes.substr(0, part));
      room_ -= part;
      if (part < bytes.size()) throw TFileError("Unable to write file", path_, "No space left on device");
    }
    void commit() override { file_->commit(); }

   private:
    std::unique_ptr<TSafeFile> file_;
    std::string path_;
    std::size_t room_;
  };

  TDiskFiles disk_;
  std::size_t room_;
};

}  // namespace hollowmere
