#pragma once

#include <QObject>
#include <QTimer>
#include <memory>
#include <thread>

#include "startup/webaddresses.h"
#include "ui/windowcontext.h"

namespace hollowmere {

/// What comes some seconds after the main window is there: the hint for 64-bit Windows and the update
/// check. The page is fetched on a thread of its own; the end of this object stops that.
class TStartUp : public QObject {
  Q_OBJECT

 public:
  TStartUp(TWindowContext& context, TWebAddresses addresses, QObject* parent);
  ~TStartUp() override;

  /// Once. delay in milliseconds.
  void begin(int delay);

 Q_SIGNALS:
  /// The update check has ended, whatever came of it.
  void checked();

 private:
  struct TFetch;

  void onTimer();
  void warnAbout64Bit();
  void fetchPage();
  void onPage(const std::string& page);

  TWindowContext& context_;
  TWebAddresses addresses_;
  QTimer timer_;
  std::shared_ptr<TFetch> fetch_;
  std::jthread worker_;
};

}  // namespace hollowmere
