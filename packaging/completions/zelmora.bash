# bash completion for zelmora

_zelmora() {
    local cur prev words cword
    _init_completion || return
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W '--help --version' -- "$cur")
    else
        _filedir
    fi
} && complete -F _zelmora zelmora
