# Completes the command line of quillagent in fish.
complete -c quillagent -f
complete -c quillagent -a -silent -d 'Do not ask; ten percentages and the name of the file'
complete -c quillagent -a -debug -d 'Store the unchanged output of the profiler, for support'
complete -c quillagent -a -ip: -d 'The current address of this computer'
complete -c quillagent -a -log -d 'Show the phases of the scan'
complete -c quillagent -a -modern -d 'Also read what macOS 10.12 and later say in forms of their own'
complete -c quillagent -a -login: -d 'The account that the scan runs for'
complete -c quillagent -a --help -d 'Show a short help text'
complete -c quillagent -a '-\?' -d 'Show a short help text'
