complete -c tobrin -f
complete -c tobrin -l probe -d 'Measure keystrokes on the motion sensor'
complete -c tobrin -l selftest -d 'Check key capture, sound and sensor'
complete -c tobrin -l micwatch -d 'Show when the microphone is in use'
complete -c tobrin -l snapshot -d 'Draw the panel into an image file'
complete -c tobrin -l version -d 'Print the version'
complete -c tobrin -s h -l help -d 'Print the options'
