#include "engine/api/playing.h"

namespace zv::engine {

void primeTempo(Engine& engine, Channel& channel, std::uint64_t frame) {
    // What a disk has not given yet is left to the workers: the caller never waits for it.
    if (channel.tempo && (engine.offline() || channel.root().sound->readyAt(frame)))
        channel.tempo->prime(frame);
}

void sendMove(Engine& engine, Channel& channel, std::uint64_t frame) {
    Channel& root = channel.root();
    ControlState& c = root.control;
    ++c.moves;
    c.movedTo = frame;
    c.readTo.reset();
    if (root.sound) {
        root.sound->setHead(frame);
        if (!root.sound->sounding()) root.sound->setFocus(frame);
        primeTempo(engine, channel, frame);
    }
    engine.send({.kind = CommandKind::Move, .channel = &root, .a = frame, .b = c.moves});
}

void sendPlay(Engine& engine, Channel& channel) {
    ControlState& c = channel.control;
    c.playing = true;
    c.paused = false;
    engine.send({.kind = CommandKind::Play, .channel = &channel, .a = ++c.generation});
    engine.dispatcher.watch();
}

void sendStop(Engine& engine, Channel& channel) {
    engine.send({.kind = CommandKind::Stop, .channel = &channel});
}

std::uint64_t positionOf(Channel& channel) {
    Channel& root = channel.root();
    if (root.control.readTo) return *root.control.readTo;
    if (root.shared.appliedMoves.load(std::memory_order_acquire) != root.control.moves)
        return root.control.movedTo;
    return root.shared.heard.load(std::memory_order_relaxed);
}

void settleRead(Engine& engine, Channel& channel) {
    if (const auto frame = channel.root().control.readTo) sendMove(engine, channel, *frame);
}

}  // namespace zv::engine
