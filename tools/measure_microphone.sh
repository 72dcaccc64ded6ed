#!/bin/bash
# From a real input to a real output: the engine's whole mix topology between a microphone and an output of a sound
# server of its own. Prints the median of 20 clicks in milliseconds, less what the server itself takes from an output to
# an input. A measurement: a busy machine gives other numbers.
#   measure_microphone.sh BIN_FOLDER
set -eu
"$1/test_sound" --gtest_filter='OnAir.MicrophoneReachesTheOutput' 2>/dev/null | grep 'input to output'
