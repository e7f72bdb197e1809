# shellcheck shell=bash
# Sourced by the scripts beside it: how long inputs of each target are at most. Short runs of the
# client find more in the same time, and messages have zeroes behind them anyway.
# shellcheck disable=SC2034
declare -A longest=([console]=512 [callback]=10300 [scenario]=4096 [state]=1024 [requests]=10300
    [bytes]=512 [recording]=16384 [control]=2048)
