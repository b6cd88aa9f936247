# It takes one document and no options.
complete -c CoordWorkSpaceSectionConverter0_3 -n 'test (count (commandline -opc)) -gt 1' -f
