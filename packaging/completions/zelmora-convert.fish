# fish completion for zelmora-convert

complete -c zelmora-convert -l encoding -x -d 'The encoding to convert to' \
    -a 'shift_jis iso-2022-jp euc-jp utf-8 utf-16 utf-32 keep'
complete -c zelmora-convert -l byte-order -x -d 'For UTF-16 and UTF-32' -a 'little big'
complete -c zelmora-convert -l bom -d 'With a byte-order mark'
complete -c zelmora-convert -l no-bom -d 'Without a byte-order mark'
complete -c zelmora-convert -l line-break -x -d 'The line break to convert to' \
    -a 'lf cr crlf ls keep'
complete -c zelmora-convert -l mapping -x -d 'How Shift_JIS is read and written' -a 'mac windows'
complete -c zelmora-convert -l katakana -d 'Make half-width katakana full-width'
complete -c zelmora-convert -l html -d 'Charset declarations of HTML follow the encoding'
complete -c zelmora-convert -l xml -d 'Encoding declarations of XML follow the encoding'
complete -c zelmora-convert -l css -d 'Charset rules of style sheets follow the encoding'
complete -c zelmora-convert -l ext -x -d 'Convert files with these extensions only'
complete -c zelmora-convert -l backup -x -d 'Copy what is handed over into this folder first' \
    -a '(__fish_complete_directories)'
complete -c zelmora-convert -l no-backup -d 'Make no copy'
complete -c zelmora-convert -l log -r -F -d 'Write what is done to the end of this file'
complete -c zelmora-convert -l report -r -F \
    -d 'List the characters that could not be kept in this new file'
complete -c zelmora-convert -l set -x -d 'Any setting, for this run only' \
    -a 'nameExtensionArray= htmlExtensionArray= xmlExtensionArray= creatorCode= fileType=
        extensionOfDstFiles= backupDataDir= logFilePath= encodingCode={0,1,2,3,4,5,6}
        lineBreakCode={0,1,2,3,4} sjisDeviceCharRead={0,1} sjisDeviceCharWrite={0,1}
        actionForCreator={0,1,2} actionForFileType={0,1,2} convertExtension={0,1,2}
        actionForAddingExtension={0,1,2} actionForDupBackupFiles={0,1,2}
        allowConvertNoNameExtension={YES,NO} allowConvertHiddenFiles={YES,NO}
        littleEndian={YES,NO} putBOM={YES,NO} halfToFullKatakana={YES,NO} replaceMETA={YES,NO}
        exportMETA={YES,NO} replaceXMLProc={YES,NO} replaceCSSCharSet={YES,NO}
        exportCSSCharSet={YES,NO} replaceLink={YES,NO} autoBackup={YES,NO} createLogFile={YES,NO}
        autoQuit={YES,NO} displayManualAlert={YES,NO}'
complete -c zelmora-convert -l save -d 'Keep the settings given here for later runs'
complete -c zelmora-convert -l detect -d 'Change nothing, tell what each file is'
complete -c zelmora-convert -l quiet -d 'No closing line'
complete -c zelmora-convert -l help -d 'Show a help text and exit'
complete -c zelmora-convert -l version -d 'Show the version and exit'
