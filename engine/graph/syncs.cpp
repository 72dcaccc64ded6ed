#include "engine/graph/syncs.h"

#include <algorithm>

namespace zv::engine {

void Syncs::count(const Channel& channel, int syncs) {
    if (channel.isBus()) onBuses_ += syncs;
}

void Syncs::findFirst(AudioState& a) {
    a.firstSync = SyncNode::kNever;
    for (const SyncNode* node = a.syncs; node; node = node->next)
        a.firstSync = std::min(a.firstSync, node->frame);
}

void Syncs::add(Channel& channel, SyncNode* node) {
    AudioState& a = channel.audio;
    node->next = a.syncs;
    a.syncs = node;
    a.firstSync = std::min(a.firstSync, node->frame);
    count(channel, 1);
}

void Syncs::remove(Channel& channel, HSYNC handle, Trash& trash) {
    AudioState& a = channel.audio;
    for (SyncNode** at = &a.syncs; *at;) {
        SyncNode* node = *at;
        if (handle != 0 && node->handle != handle) {
            at = &node->next;
            continue;
        }
        *at = node->next;
        if (a.timed == node) a.timed = nullptr;
        trash.add(node);
        count(channel, -1);
    }
    findFirst(a);
}

void Syncs::tieSlide(const Command& command) {
    AudioState& a = command.channel->audio;
    for (SyncNode* node = a.syncs; node; node = node->next) {
        if (node->handle != command.a) continue;
        node->slides = true;
        node->value = command.value;
        node->ms = command.ms;
        node->flags = command.flags;
        a.timed = node;
        a.timedDue = false;
    }
}

void Syncs::forget(const Channel& channel) {
    for (const SyncNode* node = channel.audio.syncs; node; node = node->next) count(channel, -1);
}

bool Syncs::tell(Channel& channel, SyncNode& node) {
    if (!events_.push({node.handle, channel.handle, channel.root().audio.moves, node.slides})) return false;
    if (node.once) node.frame = SyncNode::kNever;
    return true;
}

void Syncs::passed(Channel& channel, std::uint64_t from, std::uint64_t to) {
    AudioState& a = channel.audio;
    if (to <= a.firstSync) return;
    bool fired = false;
    for (SyncNode* node = a.syncs; node; node = node->next) {
        if (node->frame < from || node->frame >= to || !tell(channel, *node)) continue;
        fired = true;
        if (node == a.timed) a.timedDue = true;
    }
    if (fired) findFirst(a);
}

}  // namespace zv::engine
