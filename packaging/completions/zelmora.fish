# fish completion for zelmora

complete -c zelmora -l help -d 'Show a help text and exit'
complete -c zelmora -l version -d 'Show the version and exit'
