#pragma once

#include <QObject>
#include <QTimer>
#include <map>
#include <memory>
#include <thread>

#include "engine/preview.h"
#include "engine/sampling.h"
#include "project/maptree.h"
#include "project/projectmodel.h"
#include "ui/windowcontext.h"

namespace hollowmere {

/// What a preview of one root mapping found.
struct TPreviewResult {
  std::vector<TPreviewRow> rows;
  std::map<TNodePath, std::vector<TSampledField>> fields;  ///< by path below the root
  std::string error;                                       ///< why there is nothing more
};

/// Reads and assembles the first rows of a root mapping on a thread of its own. A new request, and the
/// end of this object, stop the one that runs. Main thread.
class TPreviewJob : public QObject {
  Q_OBJECT

 public:
  explicit TPreviewJob(TWindowContext& context, QObject* parent = nullptr);
  ~TPreviewJob() override;

  /// Starts some moments later, so that quick edits make one reading.
  void request(const TProject& project, std::size_t root);

 Q_SIGNALS:
  void finished(std::size_t root, const hollowmere::TPreviewResult& result);
  void started();

 private:
  struct TRequest;

  void start();
  void onDone(const std::shared_ptr<TRequest>& request);

  TWindowContext& context_;
  QTimer delay_;
  std::shared_ptr<TRequest> waiting_;
  std::shared_ptr<TRequest> running_;
  std::jthread worker_;
};

}  // namespace hollowmere
