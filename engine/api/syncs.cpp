// Of engine/bass.h, from "channels": position syncs.
#include "engine/api/engine.h"

using namespace zv::engine;

extern "C" {

HSYNC BASS_ChannelSetSync(DWORD handle, DWORD type, QWORD position, SYNCPROC* procedure, void* user) {
    const Call call;
    Engine& e = call.engine;
    const auto channel = e.find(handle);
    if (!channel) return fail<HSYNC>(BASS_ERROR_HANDLE, 0);
    if (!procedure) return fail<HSYNC>(BASS_ERROR_ILLPARAM, 0);
    if ((type & ~BASS_SYNC_ONETIME) != BASS_SYNC_POS) return fail<HSYNC>(BASS_ERROR_ILLTYPE, 0);
    try {
        const HSYNC sync = e.newHandle();
        e.syncs[sync] = {handle, procedure, user, (type & BASS_SYNC_ONETIME) != 0};
        auto node = std::make_unique<SyncNode>();
        node->handle = sync;
        node->frame = position / channel->root().frameBytes();
        node->once = (type & BASS_SYNC_ONETIME) != 0;
        e.send({.kind = CommandKind::AddSync, .channel = channel.get(), .object = node.release()});
        e.dispatcher.watch();
        return succeed(sync);
    } catch (...) {
        return fail<HSYNC>(BASS_ERROR_MEM, 0);
    }
}

bool BASS_ChannelRemoveSync(DWORD handle, HSYNC sync) {
    Call call;
    Engine& e = call.engine;
    const auto channel = e.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    const auto at = e.syncs.find(sync);
    if (at == e.syncs.end() || at->second.channel != handle) return fail(BASS_ERROR_HANDLE, false);
    e.removeSync(*channel, sync, call.lock);
    return succeed(true);
}

}  // extern "C"
