#include "engine/graph/command_queue.h"

#include "engine/graph/channel.h"

namespace zv::engine {

static_assert(std::is_trivially_copyable_v<Command>);

bool CommandQueue::urgent(const Command& command) {
    const bool silences = command.kind == CommandKind::Stop ||
                          (command.kind == CommandKind::Volume && (command.flags & kSlideStops) != 0);
    const bool busGain = command.kind == CommandKind::Voldsp && command.channel->kind == Kind::Split;
    return silences || busGain;
}

void CommandQueue::flush() {
    while (!waiting_.empty() && ring_.free() > kReserved) {
        ring_.push(waiting_.front());
        waiting_.pop_front();
    }
}

void CommandQueue::send(const Command& command) {
    flush();
    const bool hurry = urgent(command);
    if (waiting_.empty() ? ring_.free() > (hurry ? 0 : kReserved) : hurry && ring_.free() > 0) {
        if (hurry && !waiting_.empty()) {
            // The command overtakes what waits: starts that it would have ended are dropped.
            std::erase_if(waiting_, [&](const Command& older) {
                return older.channel == command.channel &&
                       (older.kind == CommandKind::Play || older.kind == command.kind);
            });
            for (Command& older : waiting_)
                if (older.channel == command.channel) older.flags &= ~kBegins;
        }
        ring_.push(command);
        return;
    }
    overflows_.fetch_add(1, std::memory_order_relaxed);
    waiting_.push_back(command);
}

}  // namespace zv::engine
