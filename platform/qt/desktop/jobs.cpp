// Jobs on the desktop: a pool of workers whose results are handed over by the event loop.
#include "platform/jobs.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <memory>
#include <utility>

#include "platform/qt/view/shell.h"
#include "platform/workers/worker_pool.h"

namespace zv {
namespace {

QEvent::Type resultsEvent() {
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

/// Takes the event that workers post when results wait.
class ResultsTarget final : public QObject {
  public:
    std::shared_ptr<WorkerPool> pool;

    bool event(QEvent* e) override {
        if (e->type() != resultsEvent()) return QObject::event(e);
        pool->deliver();
        shell::flushChanged();
        return true;
    }
};

/// Neither target nor pool ever ends: a worker that hangs may outlive main().
WorkerPool& pool() {
    static const auto* const target = [] {
        auto* made = new ResultsTarget;
        made->pool =
            WorkerPool::create([made] { QCoreApplication::postEvent(made, new QEvent(resultsEvent())); });
        return made;
    }();
    return *target->pool;
}

}  // namespace

Job startJob(JobOrder order) { return pool().start(std::move(order)); }

bool endJobs(int patienceMs) { return pool().end(patienceMs); }

}  // namespace zv
