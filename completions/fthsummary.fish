# Completion of fthsummary for fish.

complete -c fthsummary -f
complete -c fthsummary -l input -x -a '(__fish_complete_directories)' -d 'Directory of fathomix analyze HTML reports'
complete -c fthsummary -s o -r -F -d 'Summary HTML file to write'
complete -c fthsummary -l json -d 'Also write the summary as JSON, next to the HTML file'
complete -c fthsummary -l version -d 'Print the version'
complete -c fthsummary -l help -s h -d 'Print the usage text'
