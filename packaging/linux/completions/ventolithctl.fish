# Completion of ventolithctl's commands, options and files for fish.
# Installed as share/fish/vendor_completions.d/ventolithctl.fish.

set -l commands snapshot watch record replay check hold status apply set full-blast auto helper
set -l actions install uninstall status restart
set -l first "not __fish_seen_subcommand_from $commands"
set -l in_helper "__fish_seen_subcommand_from helper; and not __fish_seen_subcommand_from $actions"
set -l no_helper "not __fish_seen_subcommand_from helper; and __fish_seen_subcommand_from"

complete -c ventolithctl -f
complete -c ventolithctl -s h -l help -d 'Show the help'
complete -c ventolithctl -n "$first" -l version -d 'Show the version'

complete -c ventolithctl -n "$first" -a snapshot -d 'Show the temperatures and fans of this moment'
complete -c ventolithctl -n "$first" -a watch -d 'Show them as they change'
complete -c ventolithctl -n "$first" -a record -d 'Write them to a trace'
complete -c ventolithctl -n "$first" -a replay -d 'Show what a plan would do on a trace'
complete -c ventolithctl -n "$first" -a check -d 'Say whether a plan is valid'
complete -c ventolithctl -n "$first" -a hold -d 'Hold the fans by a plan, without the helper'
complete -c ventolithctl -n "$first" -a status -d 'Show whether there is a helper, and what it does'
complete -c ventolithctl -n "$first" -a apply -d 'Have the helper hold the fans by a plan'
complete -c ventolithctl -n "$first" -a set -d 'Hold one fan at a speed'
complete -c ventolithctl -n "$first" -a full-blast -d 'Hold every fan at its maximum'
complete -c ventolithctl -n "$first" -a auto -d 'Give every fan back to the firmware'
complete -c ventolithctl -n "$first" -a helper -d 'Install the helper, or see to it'

complete -c ventolithctl -n "$in_helper" -a install -d 'Register the helper, and start it'
complete -c ventolithctl -n "$in_helper" -a uninstall -d 'Stop the helper and take it from the system'
complete -c ventolithctl -n "$in_helper" -a status -d 'Show whether the helper is registered'
complete -c ventolithctl -n "$in_helper" -a restart -d 'Stop the helper and start the one that is installed'

complete -c ventolithctl -n "$no_helper snapshot" -l json -d 'One JSON object'
complete -c ventolithctl -n "$no_helper status" -l json -d 'One JSON object'
complete -c ventolithctl -n "$no_helper watch" -l seconds -x -d 'End after so long'
complete -c ventolithctl -n "$no_helper record" -l seconds -x -d 'End after so long'
complete -c ventolithctl -n "$no_helper record" -a '(__fish_complete_suffix .jsonl)'
complete -c ventolithctl -n "$no_helper replay" -l plan -x -a '(__fish_complete_suffix .json)' -d 'The plan'
complete -c ventolithctl -n "$no_helper replay" -l trace -x -a '(__fish_complete_suffix .jsonl)' -d 'The run'
complete -c ventolithctl -n "$no_helper replay" -l json -d 'One JSON object a tick'
complete -c ventolithctl -n "$no_helper replay" -l every -x -d 'A row at least every N ticks'
complete -c ventolithctl -n "$no_helper check" -l trace -x -a '(__fish_complete_suffix .jsonl)' -d 'A trace of the machine'
complete -c ventolithctl -n "$no_helper check" -a '(__fish_complete_suffix .json)'
complete -c ventolithctl -n "$no_helper hold" -l plan -x -a '(__fish_complete_suffix .json)' -d 'The plan'
complete -c ventolithctl -n "$no_helper hold" -l seconds -x -d 'End after so long'
complete -c ventolithctl -n "$no_helper hold" -l json -d 'Each state as a JSON line'
complete -c ventolithctl -n "$no_helper apply" -l hold -d 'Stay until Ctrl-C'
complete -c ventolithctl -n "$no_helper apply" -a '(__fish_complete_suffix .json)'
complete -c ventolithctl -n "$no_helper set" -a '0 1 2 3 4 5 6 7 8 9' -d 'Fan'
