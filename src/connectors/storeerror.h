#pragma once

#include <stdexcept>
#include <string>

namespace hollowmere {

/// What went wrong, and with it how far the fault reaches.
enum class TStoreErrorKind {
  Connect,      ///< no connection: the run of this thread ends
  Read,         ///< this row cannot be had; the next can
  Write,        ///< this document is refused; the next may pass
  DataSource,   ///< this data source cannot go on
  Unsupported,  ///< the store cannot do this at all
};

/// An error of a store. Our own fixed text and the store's message are kept apart; what() joins them by
/// a blank.
class TStoreError : public std::runtime_error {
 public:
  TStoreError(TStoreErrorKind kind, const std::string& text, const std::string& detail = {})
      : std::runtime_error(detail.empty() ? text
                           : text.empty() ? detail
                                          : text + " " + detail),
        kind_(kind),
        text_(text),
        detail_(detail) {}

  [[nodiscard]] TStoreErrorKind kind() const { return kind_; }
  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] const std::string& detail() const { return detail_; }

 private:
  TStoreErrorKind kind_;
  std::string text_;
  std::string detail_;
};

}  // namespace hollowmere
