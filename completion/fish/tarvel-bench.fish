# Completion for fish: the options of tarvel-bench.
complete -c tarvel-bench -f
complete -c tarvel-bench -l scenario -kxa '(__fish_complete_suffix .toml)' \
    -d 'What the simulated modem does'
complete -c tarvel-bench -l replay -kxa '(__fish_complete_suffix .pcapng)' \
    -d 'Plays a recording in the place of the simulated modem'
complete -c tarvel-bench -l record -rF -d 'Records the session'
complete -c tarvel-bench -l control -rF -d 'Where simctl steers the simulated modem'
complete -c tarvel-bench -l extended -d "Starts the client's extended menu"
complete -c tarvel-bench -l help -d 'What there is'
