set -l commands record replay
complete -c tobrin-force -n "not __fish_seen_subcommand_from $commands" -f
complete -c tobrin-force -n "not __fish_seen_subcommand_from $commands" -l version -d 'Print the version'
complete -c tobrin-force -s h -l help -d 'Print help'
complete -c tobrin-force -n "not __fish_seen_subcommand_from $commands" -a record -d 'Record the motion sensor'
complete -c tobrin-force -n "not __fish_seen_subcommand_from $commands" -a replay -d 'What becomes of a recording'
complete -c tobrin-force -n '__fish_seen_subcommand_from record' -x -l seconds -d 'For how long'
complete -c tobrin-force -n '__fish_seen_subcommand_from replay' -x -l sensitivity -d 'As in the settings'
complete -c tobrin-force -n '__fish_seen_subcommand_from replay' -l json -d 'One JSON document'
