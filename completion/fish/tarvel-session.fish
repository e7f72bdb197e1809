# Completion for fish: the options of tarvel-session, and session files.
complete -c tarvel-session -kfa '(__fish_complete_suffix .session)'
complete -c tarvel-session -l scenario -kxa '(__fish_complete_suffix .toml)' \
    -d 'The simulated modem with this scenario'
complete -c tarvel-session -l replay -kxa '(__fish_complete_suffix .pcapng)' -d 'Plays a recording'
complete -c tarvel-session -l device -xa '(__fish_complete_directories)' -d 'The real modem'
complete -c tarvel-session -l scripted -d 'The scripted library'
complete -c tarvel-session -l speed -x -d 'How fast a recording is played'
complete -c tarvel-session -l repeat -x -d 'Runs of each session'
complete -c tarvel-session -l set -x -d 'NAME=VALUE: what ${NAME} stands for'
complete -c tarvel-session -l limit -x -d 'How long a run may take'
complete -c tarvel-session -l junit -kxa '(__fish_complete_suffix .xml)' -d "The verdicts in JUnit's form"
complete -c tarvel-session -l record -xa '(__fish_complete_directories)' -d 'A recording of each failed run'
complete -c tarvel-session -l keep -d 'Keeps the recordings of the others as well'
complete -c tarvel-session -l programs -xa '(__fish_complete_directories)' -d 'Where the client is'
complete -c tarvel-session -l help -d 'What there is'
