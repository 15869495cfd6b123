# bash completion for zelmora-convert

_zelmora_convert_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$cur")
}

# The argument of --set: KEY=, then the values of the key.
_zelmora_convert_set() {
    local key=${cur%%=*}
    if [[ $cur != *=* ]]; then
        _zelmora_convert_words 'nameExtensionArray= allowConvertNoNameExtension=
            allowConvertHiddenFiles= htmlExtensionArray= xmlExtensionArray= lineBreakCode=
            encodingCode= littleEndian= putBOM= sjisDeviceCharRead= sjisDeviceCharWrite=
            halfToFullKatakana= replaceMETA= exportMETA= replaceXMLProc= replaceCSSCharSet=
            exportCSSCharSet= replaceLink= actionForCreator= creatorCode= actionForFileType=
            fileType= convertExtension= extensionOfDstFiles= actionForAddingExtension= autoBackup=
            backupDataDir= actionForDupBackupFiles= createLogFile= logFilePath= autoQuit=
            displayManualAlert='
        compopt -o nospace
        return
    fi
    cur=${cur#*=}
    case $key in
        encodingCode) _zelmora_convert_words '0 1 2 3 4 5 6' ;;
        lineBreakCode) _zelmora_convert_words '0 1 2 3 4' ;;
        sjisDeviceChar*) _zelmora_convert_words '0 1' ;;
        actionFor* | convertExtension) _zelmora_convert_words '0 1 2' ;;
        backupDataDir) _filedir -d ;;
        logFilePath) _filedir ;;
        *Array | creatorCode | fileType | extensionOfDstFiles) ;;
        *) _zelmora_convert_words 'YES NO' ;;
    esac
}

_zelmora_convert() {
    local cur prev words cword split
    _init_completion -s || return
    case $prev in
        --encoding)
            _zelmora_convert_words 'shift_jis iso-2022-jp euc-jp utf-8 utf-16 utf-32 keep'
            return
            ;;
        --byte-order)
            _zelmora_convert_words 'little big'
            return
            ;;
        --line-break)
            _zelmora_convert_words 'lf cr crlf ls keep'
            return
            ;;
        --mapping)
            _zelmora_convert_words 'mac windows'
            return
            ;;
        --backup)
            _filedir -d
            return
            ;;
        --log | --report)
            _filedir
            return
            ;;
        --set)
            _zelmora_convert_set
            return
            ;;
        --ext) return ;;
    esac
    $split && return
    if [[ $cur == -* ]]; then
        _zelmora_convert_words '--encoding --byte-order --bom --no-bom --line-break --mapping
            --katakana --html --xml --css --ext --backup --no-backup --log --report --set --save
            --detect --quiet --help --version'
    else
        _filedir
    fi
} && complete -F _zelmora_convert zelmora-convert
