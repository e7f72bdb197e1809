# Completion for fish: what simctl takes.
complete -c simctl -f

# In the place of a socket.
complete -c simctl -n '__fish_is_nth_token 1' -l watch -rF -d "Shows the modem's state, once a second"
complete -c simctl -n '__fish_is_nth_token 1' -l check -kxa '(__fish_complete_suffix .toml)' \
    -d 'What is wrong with a scenario'
complete -c simctl -n '__fish_is_nth_token 1' -l help -d 'What there is'
complete -c simctl -n '__fish_is_nth_token 1' -F

# Behind it, commands and kinds of events; behind "fault" kinds of faults.
set -l at_command '__fish_is_nth_token 2; and not __fish_contains_opt watch check'
set -l commands fault state stations advance until time-scale seed save load help
set -l events fade vanish appear link-loss dreg reset paging complete-wake-up firmware-shutdown \
    half-mini-card-shutdown half-mini-card-wake-up flow-deleted handover traffic-waits crash \
    ip-filter-status device-unload message flow-added flow-changed move request
set -l faults fail drop delay repeat reorder truncate corrupt on off
complete -c simctl -n $at_command -a "$commands" -d Command
complete -c simctl -n $at_command -a "$events" -d Event
complete -c simctl -n '__fish_is_nth_token 3; and __fish_seen_subcommand_from fault' -a "$faults"
complete -c simctl -n '__fish_is_nth_token 3; and __fish_seen_subcommand_from until' -a idle
complete -c simctl -n '__fish_is_nth_token 3; and __fish_seen_subcommand_from save load' -F
