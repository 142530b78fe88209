# Completion of kest-settings-ctl for fish: commands, options, and the paths of the menu that the agent shows.
complete -c kest-settings-ctl -f
complete -c kest-settings-ctl -n __fish_use_subcommand -a 'menu get choose watch'
complete -c kest-settings-ctl -n '__fish_seen_subcommand_from get choose' \
    -a '(kest-settings-ctl menu --paths --timeout 2 2>/dev/null)'
complete -c kest-settings-ctl -l json -d 'Print JSON'
complete -c kest-settings-ctl -l paths -d 'menu: print paths'
complete -c kest-settings-ctl -l yes -d 'choose: confirm that files are deleted'
complete -c kest-settings-ctl -l timeout -x -d 'Maximum seconds to wait for a reply'
complete -c kest-settings-ctl -l help -d 'Print help'
complete -c kest-settings-ctl -l version -d 'Print the version'
