// Of audio/devices.h: the lists of outputs and inputs, and which of them the saved settings mean.
#include <algorithm>
#include <string>
#include <vector>

#include "audio/devices.h"
#include "audio/upcalls.h"
#include "engine/bass.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/devices_settings.h"
#include "startup/upcalls.h"

namespace zv {

std::vector<std::string> InputNames, OutputNames;

namespace {

constexpr const char* kByName = "Name";

int indexOf(const std::vector<std::string>& names, const std::string& name) {
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

/// `standard`: the row of the output that the system calls its default.
void settleByName(int standard) {
    if (!deviceSettings.DeviceName.empty()) {
        Device[0] = std::max(0, indexOf(OutputNames, deviceSettings.DeviceName)) + 1;
    } else if (!OutputNames.empty()) {
        deviceSettings.DeviceName = OutputNames[static_cast<std::size_t>(standard)];
        Device[0] = standard + 1;
    }
    const std::string& aux = deviceSettings.DeviceAuxName;
    const bool none = aux.empty() || aux == Ln("sNoDevice") || OutputNames.empty();
    Device[1] = none ? 0 : std::max(0, indexOf(OutputNames, aux)) + 1;
}

void settleById() {
    const int size = static_cast<int>(OutputNames.size());
    Device[0] = DeviceId[0] > size ? 1 : DeviceId[0];
    Device[1] = DeviceId[1] > size ? 0 : DeviceId[1];
}

}  // namespace

OutputLists CurrentOutputs() {
    OutputLists lists;
    BASS_DEVICEINFO info{};
    for (DWORD n = 1; BASS_GetDeviceInfo(n, &info); ++n) {
        lists.main.emplace_back(info.name);
        lists.aux.emplace_back(info.name);
    }
    lists.aux.push_back(Ln("sNoDevice"));
    lists.mainSelected = Device[0] - 1;
    lists.auxSelected = Device[1] == 0 ? static_cast<int>(lists.aux.size()) - 1 : Device[1] - 1;
    lists.byName = deviceSettings.SavDevBy == kByName;
    return lists;
}

InputLists CurrentInputs() {
    InputLists lists;
    BASS_DEVICEINFO info{};
    for (DWORD n = 0; BASS_RecordGetDeviceInfo(n, &info); ++n) lists.inputs.emplace_back(info.name);
    const bool there = deviceSettings.DeviceIn < static_cast<int>(lists.inputs.size());
    lists.selected = there ? deviceSettings.DeviceIn : -1;
    return lists;
}

void ListOutDev() {
    guarded("modDevices.ListOutDev", [] {
        DeviceId = {deviceSettings.Device, deviceSettings.DeviceAux};
        OutputNames.clear();
        BASS_DEVICEINFO info{};
        int standard = 0;  // of the list
        for (DWORD n = 1; BASS_GetDeviceInfo(n, &info); ++n) {
            OutputNames.emplace_back(info.name);
            if ((info.flags & BASS_DEVICE_DEFAULT) != 0) standard = static_cast<int>(n) - 1;
        }
        if (deviceSettings.SavDevBy == kByName)
            settleByName(standard);
        else
            settleById();
    });
}

void ListInDev() {
    guarded("modDevices.ListInDev", [] {
        InputNames = CurrentInputs().inputs;
        InputLists lists{InputNames, -1};
        const int last = static_cast<int>(InputNames.size()) - 1;
        if (last >= 0) {
            if (deviceSettings.SavDevBy == kByName) {
                if (!deviceSettings.DeviceInName.empty())
                    deviceSettings.DeviceIn = std::max(0, indexOf(InputNames, deviceSettings.DeviceInName));
                if (deviceSettings.DeviceIn <= last) lists.selected = deviceSettings.DeviceIn;
            } else {
                if (deviceSettings.DeviceIn > last) deviceSettings.DeviceIn = 0;
                lists.selected = deviceSettings.DeviceIn;
            }
        }
        callUp(audioUpcalls.inputsListed, lists);
    });
}

}  // namespace zv
