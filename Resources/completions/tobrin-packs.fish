set -l commands list check generate loudness render slice build
set -l none "not __fish_seen_subcommand_from $commands"
complete -c tobrin-packs -n $none -f
complete -c tobrin-packs -n $none -l version -d 'Print the version'
complete -c tobrin-packs -s h -l help -d 'Print help'
complete -c tobrin-packs -n $none -a list -d 'List the packs on this machine'
complete -c tobrin-packs -n $none -a check -d 'Load a pack and list its takes'
complete -c tobrin-packs -n $none -a generate -d 'Write the starter packs'
complete -c tobrin-packs -n $none -a loudness -d 'Measure loudness'
complete -c tobrin-packs -n $none -a render -d 'Play typing through a pack into a WAV file'
complete -c tobrin-packs -n $none -a slice -d 'Find the keystrokes of a recording'
complete -c tobrin-packs -n $none -a build -d 'Build a pack from recordings'

complete -c tobrin-packs -n '__fish_seen_subcommand_from list check loudness slice build' -l json -d 'One JSON document'
complete -c tobrin-packs -n '__fish_seen_subcommand_from generate' -f -a 'cream blue-click panda dome typewriter'
complete -c tobrin-packs -n '__fish_seen_subcommand_from generate build' -r -l into -d 'Folder to write'

set -l render '__fish_seen_subcommand_from render'
complete -c tobrin-packs -n $render -r -l out -d 'WAV file to write'
complete -c tobrin-packs -n $render -x -l text -d 'Text to type'
complete -c tobrin-packs -n $render -r -l text-file -d 'File of text'
complete -c tobrin-packs -n $render -r -l script -d 'JSON file of keys'
complete -c tobrin-packs -n $render -x -l wpm -d 'Words a minute'
complete -c tobrin-packs -n $render -x -l seed -d 'Seed of the rhythm'
complete -c tobrin-packs -n $render -x -l strength -d '0 (soft) to 3 (slam)'
complete -c tobrin-packs -n $render -x -l tail -d 'Seconds after the last key'
complete -c tobrin-packs -n $render -r -l settings -d 'Engine settings'
complete -c tobrin-packs -n $render -x -l format -a 's16 f32' -d 'Sample format'

complete -c tobrin-packs -n '__fish_seen_subcommand_from slice' -r -l options -d 'Slicer options'
complete -c tobrin-packs -n '__fish_seen_subcommand_from slice' -r -l plot -d 'SVG file to draw'
complete -c tobrin-packs -n '__fish_seen_subcommand_from build' -r -l cache -d 'Where recordings are kept'
